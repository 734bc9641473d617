// SPDX-License-Identifier: MIT
// The PostScript name as the sfnt "name" table itself has it.
#pragma once

#include "platform/font/gx_font.hpp"

namespace vellum {

// What the first record with name identifier 6 says, in file order, whose platform and encoding are
// understood; null without one, and when its bytes do not fit them. Unlike the parser's choice it prefers
// no language, so that a font is also found under a name that only other systems give it.
Ref<const ValString> CopyNameTablePostScriptName(const GxFont *font);

} // namespace vellum
