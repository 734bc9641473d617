// SPDX-License-Identifier: MIT
// From the bytes of a font file to its faces.
#pragma once

#include "platform/font/face.hpp"
#include "platform/font/font_source.hpp"

#include <vector>

namespace vellum {

// The faces that `source` holds, in parser order: those of the collection, then the instances.
// Empty when it holds none. `reading` is a round of that source.
std::vector<TFacePtr> LoadFaces(const TFontSourcePtr &source, const TReading &reading);

} // namespace vellum
