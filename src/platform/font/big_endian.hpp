// SPDX-License-Identifier: MIT
// Reading of big-endian numbers from borrowed bytes. Nothing here reads outside of its bytes: a
// number that is not wholly there reads as 0, a stretch is cut to what there is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vellum {

using TBytes = std::span<const uint8_t>;

constexpr uint16_t ReadU16(TBytes bytes, size_t at) noexcept {
    if (at > bytes.size() || bytes.size() - at < 2) return 0;
    return static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

constexpr uint32_t ReadU32(TBytes bytes, size_t at) noexcept {
    if (at > bytes.size() || bytes.size() - at < 4) return 0;
    return static_cast<uint32_t>(bytes[at]) << 24 | static_cast<uint32_t>(bytes[at + 1]) << 16 |
           static_cast<uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

// A signed 16.16 fixed-point number.
constexpr double ReadFixed(TBytes bytes, size_t at) noexcept {
    return static_cast<int32_t>(ReadU32(bytes, at)) / 65536.0;
}

constexpr TBytes Slice(TBytes bytes, size_t at, size_t length) noexcept {
    if (at >= bytes.size()) return {};
    return bytes.subspan(at, length < bytes.size() - at ? length : bytes.size() - at);
}

} // namespace vellum
