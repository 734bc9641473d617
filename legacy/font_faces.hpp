// SPDX-License-Identifier: MIT
// The faces that fontconfig finds in a font file, and which of them a URL means.
#pragma once

#include "font_url.hpp"

#include <string>
#include <vector>

namespace vellum::legacy {

struct FontFace {
    int index = -1;              // fontconfig's number of the face; negative: not known
    std::string postscript_name; // as fontconfig has it; empty: none that is its own alone, or not known

    // Whether both are one face of a file. Names, where there are any, outlive a new version of the file,
    // numbers may not.
    bool IsSame(const FontFace &other) const noexcept;
};

// All faces of a file but for the one that stands for every instance of a variable font: that is no face
// that a URL names. Empty when fontconfig can't read the file.
std::vector<FontFace> ReadFaces(const std::string &path);

// Whether fontconfig finds any font in a file.
bool HasFonts(const std::string &path);

// What a font URL means in its file.
struct SelectedFont {
    std::string path;
    bool is_whole_file = true;   // said so, or by naming the only face; or all below a folder
    std::vector<FontFace> faces; // which are meant, when it is not the whole file
    std::vector<FontFace> all;   // which there are, then
};

// A face that can't be found in the file is one of that name, whose number is not known.
SelectedFont Select(const FontURL &url);

// Whether a face is one of these.
bool Holds(const std::vector<FontFace> &faces, const FontFace &face) noexcept;

// Whether these are all faces of a file, of which it has some.
bool HoldsAll(const std::vector<FontFace> &faces, const std::vector<FontFace> &all) noexcept;

} // namespace vellum::legacy
