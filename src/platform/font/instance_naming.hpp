// SPDX-License-Identifier: MIT
// PostScript names for instances that state none, after Adobe's rules for variable fonts.
#pragma once

#include "platform/font/gx_font.hpp"

#include <span>
#include <string>
#include <string_view>

namespace vellum {

// "Prefix-Subfamily", of both the ASCII letters and digits alone; empty when either has none.
std::string NamedInstancePostScriptName(std::string_view prefix, std::string_view subfamily);

// "Prefix_700wght_75wdth": every axis that is not at its default. Empty without a prefix.
std::string UnnamedInstancePostScriptName(std::string_view prefix, std::span<const GxAxis> axes,
                                          std::span<const double> coordinates);

// A number in the shortest form that reads back as the same number, whatever the locale.
std::string ShortestNumber(double number);

} // namespace vellum
