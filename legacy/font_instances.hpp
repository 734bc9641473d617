// SPDX-License-Identifier: MIT
// Named instances of variable fonts, found by their coordinates.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vellum::legacy {

// fontconfig's numbers of the instances in a font file that stand at a place: tags of axes, each with a
// value. Axes that are not named may have any. Where all axes stand at their defaults, that is the face
// itself.
std::vector<int> FindInstances(const std::string &path,
                               const std::vector<std::pair<std::string, double>> &axes);

} // namespace vellum::legacy
