// SPDX-License-Identifier: MIT
// The fonts that a program ships in its bundle: they are the process's own from the beginning.
//
// Info.vlist asks for them: with "LDRegisterBundleFonts" true for the resource folder Fonts, with
// "FountApplicationFontsPath" for a folder or a file of the resources.
#pragma once

#include "frame/registry/glyphary_protocol.hpp"
#include "platform/app/main_bundle.hpp"

#include <string>

namespace vellum {

// The fonts of the running program's bundle. What fails is passed over; may throw std::bad_alloc.
void RegisterBundleFonts(const TGlypharyProtocol &registry);

// The same for a bundle.
void RegisterFontsOfBundle(const TGlypharyProtocol &registry, const MainBundle &bundle);

// Registers the fonts of a folder, one batch a folder, those of the folders in it before its own.
void RegisterFontsForDirectory(const TGlypharyProtocol &registry, const std::string &directory);

} // namespace vellum
