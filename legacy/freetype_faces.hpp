// SPDX-License-Identifier: MIT
// The faces of a font file as FreeType opens them, for what fontconfig does not tell of them.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <functional>
#include <string>

namespace vellum::legacy {

// Whether there is a file of bytes at a path: opening a pipe, for one, might never end.
bool IsFontFile(const std::string &path) noexcept;

// Calls `look` for each face, without named instances; for none when the file is no font.
void ForEachFace(const std::string &path, const std::function<void(FT_Library, FT_Face)> &look);

// fontconfig's number of a face.
inline int NumberOf(FT_Face face) noexcept {
    return static_cast<int>(face->face_index & 0xFFFF);
}

} // namespace vellum::legacy
