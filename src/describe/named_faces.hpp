// SPDX-License-Identifier: MIT
// Faces of the system that their names and tables do not do justice. This is configuration: rows follow
// the fonts that the system ships, and the code follows the rows.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vellum {

struct NamedFace {
    std::string_view postscript_name; // exactly as the name table has it
    std::optional<float> weight;
    std::optional<uint32_t> face_class; // as OS/2's sFamilyClass numbers classes
};

// "Light" is what these families of the 35 PostScript fonts call the weight that text is set in, "Demi" and
// "Book" lie further from it than the words say, and C059 does not say that it has serifs.
inline constexpr NamedFace kNamedFaces[] = {
    {".Keyboard", 0.0F, std::nullopt},
    {"URWBookman-Light", 0.0F, std::nullopt},
    {"URWBookman-LightItalic", 0.0F, std::nullopt},
    {"URWGothic-Demi", 0.24F, std::nullopt},
    {"URWGothic-Book", -0.1F, std::nullopt},
    {"C059-Roman", std::nullopt, 1U},
};

} // namespace vellum
