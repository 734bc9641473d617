// SPDX-License-Identifier: MIT
// Reads name tables by way of FreeType, which gives out their records as they are.
#include "font_names.hpp"

#include "fontconfig.hpp"
#include "freetype_faces.hpp"

#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

#include <algorithm>
#include <string_view>

namespace vellum::legacy {
namespace {

// The ASCII text of a record; empty when it is no such text.
std::string AsciiOf(const FT_SfntName &record) {
    const std::string_view bytes(reinterpret_cast<const char *>(record.string), record.string_len);
    const size_t width = record.platform_id == TT_PLATFORM_MACINTOSH ? 1 : 2;
    std::string text;
    for (size_t i = 0; i + width <= bytes.size(); i += width) {
        const bool is_ascii = (width == 1 || bytes[i] == 0) && bytes[i + width - 1] > 0;
        if (!is_ascii) return {};
        text += bytes[i + width - 1];
    }
    return text;
}

bool States(FT_Face face, const std::string &name) {
    for (FT_UInt i = 0; i < FT_Get_Sfnt_Name_Count(face); ++i) {
        FT_SfntName record = {};
        if (FT_Get_Sfnt_Name(face, i, &record) || record.name_id != TT_NAME_ID_PS_NAME) continue;
        if (FcStrCmpIgnoreCase(AsFontconfig(AsciiOf(record)), AsFontconfig(name)) == 0) return true;
    }
    return false;
}

} // namespace

std::vector<int> FindStatedName(const std::string &path, const std::string &name) {
    std::vector<int> found;
    if (name.empty()) return found;
    ForEachFace(path, [&](FT_Library, FT_Face face) {
        if (States(face, name)) found.push_back(NumberOf(face));
    });
    return found;
}

} // namespace vellum::legacy
