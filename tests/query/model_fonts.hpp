// SPDX-License-Identifier: MIT
// Fonts made by chance, so that the names, traits and coverages of many faces meet each other.
#pragma once

#include "query/model_random.hpp"
#include "support/named_font.hpp"

namespace vellum::test {

// Writes files with at least so many faces into a folder and folders in it; answers their URLs in the order
// in which they are to be registered.
std::vector<Ref<const ValURL>> MakeModelFonts(const FontFolder &folder, size_t faces, ModelRandom &random);

} // namespace vellum::test
