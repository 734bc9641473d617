// SPDX-License-Identifier: MIT
// The bytes of one sfnt table, read field by field.
//
// Every multi-byte field is big-endian. What lies beyond the end reads as zero: files lie about
// their lengths, and no reader has to be trusted to have checked.
#pragma once

#include <vellum/values.hpp>

#include <cstdint>
#include <span>

namespace vellum {

class TableBytes {
public:
    explicit TableBytes(Ref<const ValData> table) noexcept
        : table_(std::move(table)), bytes_(ValDataGetBytes(table_.Get()), ValDataGetLength(table_.Get())) {}

    size_t Length() const noexcept { return bytes_.size(); }
    explicit operator bool() const noexcept { return static_cast<bool>(table_); }

    uint8_t U8(size_t offset) const noexcept {
        return offset < bytes_.size() ? bytes_[offset] : uint8_t{0};
    }
    uint16_t U16(size_t offset) const noexcept {
        return static_cast<uint16_t>(U8(offset) << 8 | U8(offset + 1));
    }
    int16_t S16(size_t offset) const noexcept { return static_cast<int16_t>(U16(offset)); }
    uint32_t U32(size_t offset) const noexcept {
        return static_cast<uint32_t>(U16(offset)) << 16 | U16(offset + 2);
    }

    // The bytes of a stretch; empty unless all of it is there.
    std::span<const uint8_t> Slice(size_t offset, size_t length) const noexcept {
        if (offset > bytes_.size() || length > bytes_.size() - offset) return {};
        return bytes_.subspan(offset, length);
    }

private:
    Ref<const ValData> table_;
    std::span<const uint8_t> bytes_;
};

} // namespace vellum
