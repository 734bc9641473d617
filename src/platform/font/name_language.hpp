// SPDX-License-Identifier: MIT
// The languages of name records: Windows and Macintosh numbers as canonical identifiers, as
// platform/locale/locale_names.hpp has them, so that one language has one identifier on both platforms.
#pragma once

#include <cstdint>
#include <string_view>

namespace vellum {

// Null (a view without data) for a number that names no known language.
std::string_view LanguageOfWindowsNumber(uint16_t number) noexcept;
std::string_view LanguageOfMacintoshNumber(uint16_t number) noexcept;

// True for the Windows numbers of English, whatever the region.
constexpr bool IsWindowsEnglish(uint16_t number) noexcept {
    return number < 0x8000 && (number & 0x3FF) == 0x09;
}

} // namespace vellum
