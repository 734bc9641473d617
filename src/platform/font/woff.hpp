// SPDX-License-Identifier: MIT
// WOFF and WOFF2: packed sfnt fonts. FreeType unpacks them; what comes out is read as any sfnt.
#pragma once

#include "platform/font/face.hpp"
#include "platform/font/font_source.hpp"

#include <vector>

namespace vellum {

// Appends the faces and instances of a packed font.
void LoadWoffFaces(const TFontSourcePtr &source, const TReading &reading, std::vector<TFacePtr> &faces,
                   std::vector<TFacePtr> &instances);

// Lets go of the font that was unpacked last, which is kept for the next round of reading.
void ForgetUnpackedFont() noexcept;

} // namespace vellum
