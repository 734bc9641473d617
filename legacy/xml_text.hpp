// SPDX-License-Identifier: MIT
// Texts as they stand in an XML file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vellum::legacy {

// Nothing when XML has no way of writing the text: it is no UTF-8, or holds a control character.
std::optional<std::string> XmlText(std::string_view text);

// A path as a pattern of fontconfig's <glob>. There "*" and "?" stand for others and nothing takes that
// meaning from them; a byte that can't stand in the file, or would stand for many, is written "?", any
// one byte. The path itself fits in every case.
std::string XmlGlob(std::string_view path);

} // namespace vellum::legacy
