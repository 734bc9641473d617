// SPDX-License-Identifier: MIT
// A face's names in one language.
#pragma once

#include "platform/font/gx_font.hpp"

#include <string_view>

namespace vellum {

// The name-table entry for a key in a language (a canonical identifier), else in the nearest language that
// contains it: who reads Austrian German gets German. Null without one, and for no language ("").
Ref<const ValString> CopyNameInLanguage(const GxFont *font, GxNameKey key, std::string_view language);

} // namespace vellum
