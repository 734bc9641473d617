// SPDX-License-Identifier: MIT
// FreeType's objects, closed whatever happens.
#include "freetype_faces.hpp"

#include <sys/stat.h>

#include <memory>

namespace vellum::legacy {
namespace {

constexpr FT_Long kMostFaces = 0xFFFF; // as many as the lower half of a number can name

using LibraryRef = std::unique_ptr<FT_LibraryRec_, decltype(&FT_Done_FreeType)>;
using FaceRef = std::unique_ptr<FT_FaceRec_, decltype(&FT_Done_Face)>;

LibraryRef OpenFreeType() noexcept {
    FT_Library library = nullptr;
    return {FT_Init_FreeType(&library) ? nullptr : library, FT_Done_FreeType};
}

FaceRef OpenFace(FT_Library library, const std::string &path, FT_Long index) noexcept {
    FT_Face face = nullptr;
    return {FT_New_Face(library, path.c_str(), index, &face) ? nullptr : face, FT_Done_Face};
}

} // namespace

bool IsFontFile(const std::string &path) noexcept {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void ForEachFace(const std::string &path, const std::function<void(FT_Library, FT_Face)> &look) {
    if (!IsFontFile(path)) return;
    const LibraryRef library = OpenFreeType();
    FT_Long faces = library ? 1 : 0;
    for (FT_Long i = 0; i < faces && i < kMostFaces; ++i) {
        const FaceRef face = OpenFace(library.get(), path, i);
        if (!face) return;
        faces = face->num_faces;
        look(library.get(), face.get());
    }
}

} // namespace vellum::legacy
