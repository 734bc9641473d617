// SPDX-License-Identifier: MIT
// The flags of the volume that a URL's file lies on; what VLGetDirectoryFlags answers.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

// kVLFontFlagLocalVolume and kVLFontFlagRootVolume; 0 for a volume of another machine and on failure.
uint32_t DirectoryFlags(const ValURL *url);

} // namespace vellum
