// SPDX-License-Identifier: MIT
// What writer and reader of the flattened form agree on; docs/encoding.md is its grammar.
#pragma once

#include <vellum/values.h>

#include <cstddef>
#include <cstdint>

namespace vellum {

// Every item begins with one of these, a big-endian word. The numbers are those of the format.
enum class EncodingTag : uint32_t {
    kString = 7,
    kDictionary = 16,
    kArray = 17,
    kData = 18,
    kNumber = 22,
    kCharacterSet = 27,
    kSet = 256,
    kURL = 257,
    kUUID = 258,
    kBoolean = 259,
};

inline constexpr size_t kWordSize = 4;
inline constexpr size_t kUUIDSize = 16;

// Lengths and counts are signed: one above this reads as none at all. Nothing that is larger in
// whole is written either.
inline constexpr size_t kMaximumFlattenedLength = INT32_MAX;

// How many containers may stand inside of each other: more than any answer has, and little enough
// for any thread's stack.
inline constexpr size_t kMaximumNesting = 64;

// The bytes of a number of a type; 0 for what is no type.
constexpr size_t NumberSize(ValNumberType type) noexcept {
    constexpr uint8_t kSizes[] = {0, 1, 2, 4, 8, 4, 8};
    return type < sizeof kSizes ? kSizes[type] : 0;
}

} // namespace vellum
