// SPDX-License-Identifier: MIT
// Exported: the table of registration functions.
#include "frame/exports/changes.hpp"

namespace {

constexpr VLFunctions kFunctions = {
    VLRegisterFont,          VLUnregisterFont,          VLRegisterDataFont,  VLUnregisterDataFont,
    VLRegisterFonts,         VLUnregisterFonts,         VLEnableFont,        VLDisableFont,
    VLRegisterFontDirectory, VLUnregisterFontDirectory, VLGetDirectoryFlags, VLGetFontFlagsForDirFlags,
};

} // namespace

const VLFunctions *VLGetFunctions() noexcept {
    return &kFunctions;
}
