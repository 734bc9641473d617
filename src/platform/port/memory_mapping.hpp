// SPDX-License-Identifier: MIT
// Memory that came from another process, in pages that nobody can change any more.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

namespace vellum {

class MemoryMapping {
public:
    // Maps the first `length` bytes, not none, of a memory file. Nothing unless it is sealed against
    // writing, lengthening and shortening and has that many: what another process could still change or
    // cut off is not looked at. The descriptor stays the caller's.
    static std::optional<MemoryMapping> Create(int descriptor, size_t length) noexcept;

    MemoryMapping() noexcept = default;
    MemoryMapping(MemoryMapping &&other) noexcept
        : bytes_(std::exchange(other.bytes_, {})), file_(other.file_) {}
    MemoryMapping &operator=(MemoryMapping &&other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(file_, other.file_);
        return *this;
    }
    ~MemoryMapping();

    std::span<const uint8_t> Bytes() const noexcept { return bytes_; }

    // True for two mappings of one file, of which both show as much: as nobody can change it, the bytes are
    // the same. While one of them lives no other file can be taken for it.
    bool IsSameAs(const MemoryMapping &other) const noexcept {
        return !bytes_.empty() && bytes_.size() == other.bytes_.size() && file_ == other.file_;
    }

private:
    struct File {
        dev_t device = 0;
        ino_t number = 0;
        bool operator==(const File &) const noexcept = default;
    };

    MemoryMapping(std::span<const uint8_t> bytes, File file) noexcept : bytes_(bytes), file_(file) {}

    std::span<const uint8_t> bytes_;
    File file_;
};

} // namespace vellum
