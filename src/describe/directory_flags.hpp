// SPDX-License-Identifier: MIT
// The flags of the volume that a URL's file lies on, and what a font there has of them: what
// VLGetDirectoryFlags and VLGetFontFlagsForDirFlags answer.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

// kVLFontFlagLocalVolume and kVLFontFlagRootVolume; 0 for a volume of another machine and on failure.
uint32_t DirectoryFlags(const ValURL *url);

// The two low bits are carried for callers that use them.
constexpr uint32_t FontFlagsForDirectoryFlags(uint32_t flags) noexcept {
    return flags & (kVLFontFlagLocalVolume | kVLFontFlagRootVolume | 0x3);
}

} // namespace vellum
