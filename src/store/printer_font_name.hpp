// SPDX-License-Identifier: MIT
// Which file the PostScript outlines of a face lie in: older systems have one file for each face, under
// the face's PostScript name cut to five letters of the first word and three of every later one.
#pragma once

#include <string>
#include <string_view>

namespace vellum {

// "Garamond-BoldItalic" gives "GaramBolIta". At most 32 bytes; empty, or it begins with one of A to Z. Any
// bytes that the name has may stand behind that one. May throw std::bad_alloc.
std::string PrinterFontName(std::string_view postscript_name);

// Whether a name, put behind that of a folder, names something that lies in the folder itself.
bool IsPlainFileName(std::string_view name) noexcept;

} // namespace vellum
