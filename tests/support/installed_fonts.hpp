// SPDX-License-Identifier: MIT
// The fonts of this machine, as its packages installed them.
#pragma once

#include <vellum/values.hpp>

#include <vector>

namespace vellum::test {

// The URL of every font file under the folders where Debian's font packages put theirs.
std::vector<Ref<const ValURL>> InstalledFonts();

} // namespace vellum::test
