// SPDX-License-Identifier: MIT
// Short ways to ask fonts in tests: answers as standard strings and vectors.
#pragma once

#include "platform/font/gx_font.hpp"
#include "support/bytes.hpp"
#include "support/font_builder.hpp"
#include "support/temp_dir.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

inline constexpr char kNull[] = "(null)";

// The text, or kNull.
std::string Str(const Ref<const ValString> &text);
std::string Str(const Ref<const ValURL> &url);
Ref<const ValString> Val(std::string_view text);

Ref<const ValData> Data(const Bytes &bytes);

// A font made from a buffer.
Ref<const GxFont> FontOf(const Bytes &bytes);
Ref<const GxFont> FontOf(const FontBuilder &builder);

// A font with exactly these name records.
Ref<const GxFont> FontWithNames(const std::vector<NameRecord> &records);

// The faces of a file.
Ref<const ValArray> FontsAt(std::string_view path);
Ref<const ValArray> FontsAt(const Ref<const ValURL> &url);
const GxFont *FaceOf(const Ref<const ValArray> &fonts, size_t index = 0);

std::string PostScriptName(const GxFont *font);
std::vector<std::string> PostScriptNames(const Ref<const ValArray> &fonts);
std::string Name(const GxFont *font, GxNameKey key);
std::string LocalizedName(const GxFont *font, GxNameKey key, std::string_view language);
std::vector<std::string> Languages(const GxFont *font);
std::vector<std::string> Tags(const GxFont *font);

// The covered code points as "41-5A 61".
std::string Coverage(const GxFont *font);

// The bytes of a table; `present` says whether there is one.
struct TableAnswer {
    bool present;
    Bytes bytes;
};
TableAnswer TableOf(const GxFont *font, std::string_view tag);

// Everything that can be asked, once; gives a number that depends on the answers.
size_t AskEverything(const GxFont *font);

} // namespace vellum::test
