// SPDX-License-Identifier: MIT
// Simple lower-case letters, from a table that generator/ makes of GLib's Unicode functions while the
// library is built: hashes of names are made with it, and must not depend on whether a library could be
// opened.
#pragma once

#include <cstddef>

namespace vellum {

// Letters that become others at one distance: each from first to last, or, as capitals and small letters
// take turns in many alphabets, every second one.
struct LowercaseRun {
    char32_t first;
    char32_t last;
    char32_t step;        // 1 or 2
    char32_t lower_first; // what the first one becomes
};

extern const LowercaseRun kLowercaseRuns[]; // by their letters
extern const size_t kLowercaseRunCount;

// The small letter of a letter; any other number itself.
char32_t SimpleLowercase(char32_t c) noexcept;

} // namespace vellum
