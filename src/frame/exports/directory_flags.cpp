// SPDX-License-Identifier: MIT
// Exported: the flags of volumes.
#include "store/directory_flags.hpp"

#include "frame/exports/guard.hpp"

using namespace vellum;

namespace {

// What a font inherits from its directory; the two low bits are carried for callers that use them.
constexpr VLFontFlags kInheritedFlags = kVLFontFlagLocalVolume | kVLFontFlagRootVolume | 0x3;

} // namespace

uint32_t VLGetDirectoryFlags(const ValURL *directory) noexcept {
    return Guard([&] { return DirectoryFlags(directory); });
}

uint32_t VLGetFontFlagsForDirFlags(uint32_t directoryFlags) noexcept {
    return directoryFlags & kInheritedFlags;
}
