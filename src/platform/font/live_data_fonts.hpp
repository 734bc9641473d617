// SPDX-License-Identifier: MIT
// The fonts made from buffers that are alive in this process, by address. An address that came as
// text is looked up here and never followed.
#pragma once

#include "platform/font/gx_font.hpp"

namespace vellum {

void RememberLiveDataFont(const GxFont *font);
void ForgetLiveDataFont(const GxFont *font) noexcept;

// The live font at an address, retained; null when none stands there, or only a dying one.
Ref<const GxFont> CopyLiveDataFontAt(uintptr_t address) noexcept;

} // namespace vellum
