// SPDX-License-Identifier: MIT
// Memory that came from another process, in pages that nobody can change any more.
#pragma once

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
    MemoryMapping(MemoryMapping &&other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}
    MemoryMapping &operator=(MemoryMapping &&other) noexcept {
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    ~MemoryMapping();

    std::span<const uint8_t> Bytes() const noexcept { return bytes_; }

private:
    explicit MemoryMapping(std::span<const uint8_t> bytes) noexcept : bytes_(bytes) {}

    std::span<const uint8_t> bytes_;
};

} // namespace vellum
