// SPDX-License-Identifier: MIT
// The system's fonts, for a shared register that lives in this process.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"

#include <string>
#include <vector>

namespace vellum {

// The directories whose files are the system's fonts, each read without the folders below it: every
// directory of the system tree and of the local tree, in the order of their names. With
// VELLUM_FONTS_ROOT naming a directory that can be opened: exactly the two tree roots beneath it.
std::vector<std::string> SystemFontDirectories();

// What the fonts of those directories are registered with.
constexpr VLFontFlags kSystemFontFlags = kVLFontFlagRootVolume | kVLFontFlagLocalVolume | kVLFontFlagSystem;

// Whether one of those directories is of the local tree: what this machine's administrator has installed.
bool IsLocalFontDirectory(const std::string &directory);

// Registers every file in those directories; what is no font is passed over.
void RegisterSystemFontsLocally(TGlypharyProtocol &registry);

} // namespace vellum
