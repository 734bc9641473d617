// SPDX-License-Identifier: MIT
// Collation by the user's locale.
#pragma once

#include <string>
#include <string_view>

namespace vellum {

// -1, 0 or 1: two UTF-8 texts in the order of LC_COLLATE as the environment had it when this was
// first called, whatever locale the program has set; by code points where that locale is missing
// or is none of UTF-8.
int Collate(std::string_view a, std::string_view b) noexcept;

// Appends bytes to `key` whose order, as bytes, is the order of the texts. No text's bytes begin those of
// another; a text with U+0000 in it counts up to there. Throws std::bad_alloc.
void AppendCollationKey(std::string &key, std::string_view text);

} // namespace vellum
