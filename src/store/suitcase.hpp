// SPDX-License-Identifier: MIT
// Font suitcases: files whose second fork lists families of fonts. The outlines of a family's PostScript
// fonts lie in files of their own beside the suitcase; printer_font_name.hpp says how they are called.
#pragma once

#include "platform/font/font_source.hpp"

#include <vellum/values.hpp>

#include <cstddef>

namespace vellum {

// Entries of font association tables that are read of one suitcase. Each stands for a resource of the
// suitcase, so that this is as many as are believed of those.
inline constexpr size_t kMaximumSuitcaseEntries = 4096;

// Where the outlines of the fonts in a suitcase should lie: absolute file URLs, one for each entry of each
// family, in the suitcase's order; a face of several sizes has several. Nothing says that the files are
// there. What is malformed ends the list; empty for what is no suitcase or cannot be read. Null only when
// memory is exhausted.
Ref<const ValArray> CreatePlatenFontURLsFromSuitcase(const ValURL *suitcase) noexcept;

// The same for the fork of a suitcase in a folder, whose URL ends with a slash.
Ref<const ValArray> CreatePlatenFontURLsFromFork(const TReading &fork, const ValURL *folder) noexcept;

} // namespace vellum
