// SPDX-License-Identifier: MIT
// What the index keeps of a font file: its names, in every language and of every face.
#pragma once

#include "beacon/name_index.hpp"

#include <string>
#include <string_view>

namespace vellum {

// True for names that font files have, by their suffix, whatever is in them.
bool HasFontSuffix(std::string_view name) noexcept;

// True for names without any suffix: what lies there may be a font.
bool HasNoSuffix(std::string_view name) noexcept;

// True when a file begins as fonts do. Its first bytes are read, and no others.
bool BeginsAsFont(const std::string &path) noexcept;

// Reads a file's names: of each face of a collection and each named instance of a variable font. Of a font
// with a table directory nothing is read but what names need. Without faces for what is no font. Throws
// std::bad_alloc.
IndexedFile ReadFontNames(const std::string &path, const TFileIdentity &identity);

} // namespace vellum
