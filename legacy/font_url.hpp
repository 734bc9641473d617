// SPDX-License-Identifier: MIT
// The font URLs that the service is told of: a file each, and perhaps one face of it.
#pragma once

#include <vellum/values.h>

#include <string>
#include <utility>
#include <vector>

namespace vellum::legacy {

// What a fragment says of a face.
struct FaceSelector {
    std::string postscript_name;                      // empty: not said
    std::vector<std::pair<std::string, double>> axes; // tags of axes, and where the face stands on them

    bool IsWholeFile() const noexcept { return postscript_name.empty() && axes.empty(); }
};

struct FontURL {
    std::string path; // absolute, spelt as fontconfig spells paths
    FaceSelector face;
};

// The URLs of a ValURL or, when `is_array`, of a ValArray of them. Whatever names no file is left out.
std::vector<FontURL> ReadFontURLs(const void *fonts, bool is_array);

} // namespace vellum::legacy
