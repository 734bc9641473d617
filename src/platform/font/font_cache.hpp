// SPDX-License-Identifier: MIT
// The faces of the files that were asked for last, so that asking again for a file that has not
// changed gives the same objects.
#pragma once

#include "platform/font/font_source.hpp"

#include <vellum/values.hpp>

#include <string>

namespace vellum {

struct TFontFileKey {
    std::string path;
    Ref<const ValURL> url; // without fragment; fonts answer URLs made from it
};

// The faces of the file as it is now, if they are known.
Ref<const ValArray> CopyCachedFonts(const TFontFileKey &key);

// Keeps the faces of a file, unless another thread was faster: the faces that are kept come back.
Ref<const ValArray> KeepFonts(const TFontFileKey &key, const TFileIdentity &identity,
                              Ref<const ValArray> fonts);

// Forgets one path, or, with null, everything.
void ForgetFonts(const std::string *path);

} // namespace vellum
