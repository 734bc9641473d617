// SPDX-License-Identifier: MIT
// Keys for sorting many strings: comparing them by the user's language each time is slow.
#pragma once

#include "platform/val/string.hpp"

#include <string>

namespace vellum {

// Bytes whose order, as bytes, is that of ValStringCompare with kValCompareCaseInsensitive,
// kValCompareNumeric and kValCompareLocalized together; equal ones for strings that compare equal. Of a
// text with U+0000 in it, what stands before counts. Throws std::bad_alloc.
std::string MakeSortKey(const ValString &string);

} // namespace vellum
