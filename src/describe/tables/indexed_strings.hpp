// SPDX-License-Identifier: MIT
// Lists of strings that are found by number, as the resources of old font suitcases have them.
#pragma once

#include <vellum/values.h>

#include <cstdint>

namespace vellum {

// A list is a big-endian count of two bytes, then as many strings: a length byte and that many bytes.
//
// The length byte of string number `index`, counted from 1. All of the string is there to be read, and
// is the list's own: it lives as long. Null for an absent list, for 0, for an index above the count,
// and when the bytes end before that string does.
const uint8_t *FindIndexedString(const ValData *list, uint32_t index) noexcept;

} // namespace vellum
