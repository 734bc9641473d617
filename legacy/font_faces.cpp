// SPDX-License-Identifier: MIT
// Faces by name, and named instances by where they stand on their axes: fontconfig and this library call an
// instance by different names.
#include "font_faces.hpp"

#include "font_instances.hpp"
#include "font_names.hpp"
#include "fontconfig.hpp"
#include "freetype_faces.hpp"

#include <algorithm>
#include <functional>
#include <map>

namespace vellum::legacy {
namespace {

bool HasName(const FontFace &face, const std::string &name) noexcept {
    return !name.empty() && FcStrCmpIgnoreCase(AsFontconfig(face.postscript_name), AsFontconfig(name)) == 0;
}

void KeepNumbers(std::vector<FontFace> &faces, const std::vector<int> &numbers) {
    std::erase_if(faces, [&](const FontFace &face) {
        return std::find(numbers.begin(), numbers.end(), face.index) == numbers.end();
    });
}

// Of what stands at the place that the URL names, what has its name; of a file without such a place, what
// has its name, as fontconfig has it or else as the font states it.
std::vector<FontFace> FindFaces(std::vector<FontFace> faces, const FontURL &url) {
    const std::string &name = url.face.postscript_name;
    const auto is_named = [&](const FontFace &face) { return HasName(face, name); };
    const auto places = FindInstances(url.path, url.face.axes);
    if (!places.empty()) KeepNumbers(faces, places);
    if (std::any_of(faces.begin(), faces.end(), is_named))
        std::erase_if(faces, std::not_fn(is_named));
    else if (places.empty())
        KeepNumbers(faces, FindStatedName(url.path, name));
    return faces;
}

// A name that several faces have says nothing of any of them.
void DropSharedNames(std::vector<FontFace> &faces) {
    std::map<std::string, int> times;
    for (const FontFace &face : faces) ++times[face.postscript_name];
    for (FontFace &face : faces) {
        if (times[face.postscript_name] > 1) face.postscript_name.clear();
    }
}

// All that fontconfig finds in a file; may be null.
FontSetRef ReadFonts(const std::string &path) {
    FontSetRef set(FcFontSetCreate());
    int count = 0;
    if (set && IsFontFile(path))
        FcFreeTypeQueryAll(AsFontconfig(path), static_cast<unsigned>(-1), nullptr, &count, set.get());
    return set;
}

} // namespace

bool FontFace::IsSame(const FontFace &other) const noexcept {
    if (postscript_name.empty() || other.postscript_name.empty()) return index >= 0 && index == other.index;
    return HasName(*this, other.postscript_name);
}

std::vector<FontFace> ReadFaces(const std::string &path) {
    std::vector<FontFace> faces;
    const FontSetRef set = ReadFonts(path);
    for (int i = 0; set && i < set->nfont; ++i) {
        const FcPattern *font = set->fonts[i];
        if (IsRegularFont(font))
            faces.push_back({IndexOf(font), std::string(TextOf(font, FC_POSTSCRIPT_NAME))});
    }
    DropSharedNames(faces);
    return faces;
}

bool HasFonts(const std::string &path) {
    const FontSetRef set = ReadFonts(path);
    return set && set->nfont > 0;
}

SelectedFont Select(const FontURL &url) {
    SelectedFont font{url.path, true, {}, {}};
    if (url.face.IsWholeFile()) return font;
    font.all = ReadFaces(url.path);
    font.faces = FindFaces(font.all, url);
    if (font.faces.empty() && !url.face.postscript_name.empty())
        font.faces = {{-1, url.face.postscript_name}};
    font.is_whole_file = HoldsAll(font.faces, font.all);
    return font;
}

bool Holds(const std::vector<FontFace> &faces, const FontFace &face) noexcept {
    return std::any_of(faces.begin(), faces.end(), [&](const FontFace &one) { return one.IsSame(face); });
}

bool HoldsAll(const std::vector<FontFace> &faces, const std::vector<FontFace> &all) noexcept {
    return !all.empty() &&
           std::all_of(all.begin(), all.end(), [&](const FontFace &face) { return Holds(faces, face); });
}

} // namespace vellum::legacy
