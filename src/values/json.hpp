// SPDX-License-Identifier: MIT
// Values as JSON, for people and programs that watch what the library does.
//
// Nothing is read back from it: what JSON has no form for is described. URLs are strings, sets are arrays,
// a character set tells its count and its first ranges, data its length.
#pragma once

#include <string>

namespace vellum {

// On one line. Null for null, for numbers that are not finite, for what is nested deeper than any value of
// ours, and for what stands behind 16 MiB of text. Strings of more than 4 KiB are cut.
std::string ToJson(const void *value);

} // namespace vellum
