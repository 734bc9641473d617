// SPDX-License-Identifier: MIT
// What FreeType tells of an open face, as values.
#pragma once

#include "platform/font/freetype_face.hpp"
#include "platform/late/freetype.hpp"

namespace vellum {

TFreeTypeFacts GatherFreeTypeFacts(FT_Face face);

// The code points of the face's Unicode character map; empty without one.
Ref<const ValCharacterSet> GatherFreeTypeCoverage(FT_Face face);

} // namespace vellum
