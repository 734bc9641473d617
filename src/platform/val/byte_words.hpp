// SPDX-License-Identifier: MIT
// Eight bytes of text at a time, as one number: for texts that are read whenever somebody asks for a font.
#pragma once

#include <cstdint>

namespace vellum {

// Eight times the same byte.
constexpr uint64_t RepeatByte(uint8_t byte) noexcept {
    return uint64_t{0x0101010101010101} * byte;
}

// True when a byte is less than `bound`, which is at most 0x80.
constexpr bool HasByteBelow(uint64_t word, uint8_t bound) noexcept {
    return ((word - RepeatByte(bound)) & ~word & RepeatByte(0x80)) != 0;
}
constexpr bool HasByte(uint64_t word, uint8_t byte) noexcept {
    return HasByteBelow(word ^ RepeatByte(byte), 1);
}

// Eight ASCII characters with small letters for capitals. No sum reaches the next byte.
constexpr uint64_t LowerAsciiWord(uint64_t word) noexcept {
    const uint64_t from_a = word + RepeatByte(0x80 - 'A'), behind_z = word + RepeatByte(0x7F - 'Z');
    return word | (from_a & ~behind_z & RepeatByte(0x80)) >> 2;
}

} // namespace vellum
