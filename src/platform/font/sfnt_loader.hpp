// SPDX-License-Identifier: MIT
// The faces of an sfnt file or collection.
#pragma once

#include "platform/font/face.hpp"
#include "platform/font/font_source.hpp"

#include <vector>

namespace vellum {

// Appends the valid faces to `faces` and their instances to `instances`. `head` holds the first
// bytes. A face is valid when it has glyphs and a whole `head` (or `bhed`) table.
void LoadSfntFaces(const TFontSourcePtr &source, const TReading &reading, TBytes head,
                   std::vector<TFacePtr> &faces, std::vector<TFacePtr> &instances);

} // namespace vellum
