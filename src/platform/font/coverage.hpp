// SPDX-License-Identifier: MIT
// The code points that a face's character map covers.
#pragma once

#include "platform/font/big_endian.hpp"

#include <vellum/values.hpp>

namespace vellum {

// Never null but for memory. Empty for a map that cannot be read, or whose reading would cost more
// than its coverage could ever need. `os2` tells the code page of an old symbol font.
Ref<const ValCharacterSet> ReadCoverage(TBytes cmap, TBytes os2, unsigned int glyphs);

} // namespace vellum
