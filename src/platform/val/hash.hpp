// SPDX-License-Identifier: MIT
// The hash behind every value: fast on short texts, computable at compile time, and the same in
// every process, because hashes are compared between processes.
//
// With its constant seeds it is no defence against texts that are made to collide.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace vellum {

using HashSeeds = std::array<uint64_t, 3>;
inline constexpr HashSeeds kHashSeeds = {0xa0761d6478bd642f, 0xe7037ed1a0b428db, 0x8ebc6af09c88c6e3};

// Both halves of the 128-bit product folded together.
constexpr uint64_t MixHash(uint64_t a, uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    Wide product = static_cast<Wide>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

constexpr uint64_t HashInteger(uint64_t value) noexcept {
    return MixHash(value ^ kHashSeeds[0], kHashSeeds[1]);
}

// Adds one more thing to a hash; the order counts.
constexpr uint64_t CombineHash(uint64_t hash, uint64_t more) noexcept {
    return MixHash(hash ^ kHashSeeds[2], more ^ kHashSeeds[0]);
}

// `count` (at most 8) bytes as a little-endian number.
constexpr uint64_t LoadBytes(const char *bytes, size_t count) noexcept {
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little) {
        if (count == 8) {
            uint64_t value;
            std::memcpy(&value, bytes, sizeof value);
            return value;
        }
        if (count == 4) {
            uint32_t value;
            std::memcpy(&value, bytes, sizeof value);
            return value;
        }
    }
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i) {
        value |= static_cast<uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    }
    return value;
}

// Seeds that nobody else knows make a hash of a process's own, for tables that strangers fill.
constexpr uint64_t HashBytes(std::string_view bytes, const HashSeeds &seeds = kHashSeeds) noexcept {
    const char *at = bytes.data();
    size_t left = bytes.size();
    uint64_t hash = seeds[0];
    for (; left > 16; at += 16, left -= 16) {
        hash = MixHash(LoadBytes(at, 8) ^ seeds[1], LoadBytes(at + 8, 8) ^ hash);
    }
    uint64_t first = 0;
    uint64_t last = 0;
    if (left >= 8) { // the two words overlap where there are less than 16 bytes
        first = LoadBytes(at, 8);
        last = LoadBytes(at + left - 8, 8);
    } else if (left >= 4) {
        first = LoadBytes(at, 4);
        last = LoadBytes(at + left - 4, 4);
    } else {
        first = LoadBytes(at, left);
    }
    return MixHash(seeds[1] ^ bytes.size(), MixHash(first ^ seeds[1], last ^ hash));
}

} // namespace vellum
