// SPDX-License-Identifier: MIT
// The configuration file that every program's fontconfig reads: the folder of registered fonts, and the
// fonts that are disabled.
#pragma once

#include "disabled_fonts.hpp"

#include <string>

namespace vellum::legacy {

// The whole file. Each font is rejected where it lies and where its link stands, if it has one; of what
// lies in a folder, the links that there are now.
std::string ConfigurationText(const TDisabledFonts &fonts);

// Whether a text is one of ours, and so may be replaced.
bool IsOurConfiguration(std::string_view text) noexcept;

} // namespace vellum::legacy
