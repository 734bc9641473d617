// SPDX-License-Identifier: MIT
// Exported: the flags of volumes.
#include "describe/directory_flags.hpp"

#include "frame/exports/guard.hpp"

using namespace vellum;

uint32_t VLGetDirectoryFlags(const ValURL *directory) noexcept {
    return Guard([&] { return DirectoryFlags(directory); });
}

uint32_t VLGetFontFlagsForDirFlags(uint32_t directoryFlags) noexcept {
    return FontFlagsForDirectoryFlags(directoryFlags);
}
