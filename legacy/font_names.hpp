// SPDX-License-Identifier: MIT
// Faces by a PostScript name that fontconfig does not have: it makes one up, out of the family's name, for
// fonts whose own has characters that such names should not have.
#pragma once

#include <string>
#include <vector>

namespace vellum::legacy {

// fontconfig's numbers of the faces whose name tables have this name. ASCII alone: others are not found.
std::vector<int> FindStatedName(const std::string &path, const std::string &name);

} // namespace vellum::legacy
