// SPDX-License-Identifier: MIT
// The flattened form's words are big-endian, whatever the processor.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vellum {

// Turns an element of 2, 4 or 8 bytes from the processor's order to big-endian, where it lies; an
// element of any other size stays as it is.
inline void ConvertToBigEndian(uint8_t *element, size_t size) noexcept {
    if constexpr (std::endian::native == std::endian::big) return;
    if (size == 2 || size == 4 || size == 8) std::reverse(element, element + size);
}

// The way back is the same.
inline void ConvertToNative(uint8_t *element, size_t size) noexcept {
    ConvertToBigEndian(element, size);
}

// One word; StoreWord answers where the next one goes.
inline uint8_t *StoreWord(uint8_t *out, uint32_t word) noexcept {
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap32(word);
    std::memcpy(out, &word, sizeof word);
    return out + sizeof word;
}
inline uint32_t LoadWord(const uint8_t *bytes) noexcept {
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap32(word);
    return word;
}

} // namespace vellum
