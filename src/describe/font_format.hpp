// SPDX-License-Identifier: MIT
// The format of a face: from the type of its file, corrected by the tables that it has.
#pragma once

#include "platform/font/gx_font.hpp"

namespace vellum {

// One of kVLFontFormat....
uint32_t DetermineFormat(const GxFont *font);

} // namespace vellum
