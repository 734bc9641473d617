// SPDX-License-Identifier: MIT
// The languages of name records: Windows and Macintosh numbers as canonical BCP 47 identifiers.
//
// A language's principal region is left out ("en", "ja"), so that one language has one identifier
// on both platforms; other regions stand ("en-GB"). Chinese is told apart by script.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vellum {

// Null (a view without data) for a number that names no known language.
std::string_view LanguageOfWindowsNumber(uint16_t number) noexcept;
std::string_view LanguageOfMacintoshNumber(uint16_t number) noexcept;

// True for the Windows numbers of English, whatever the region.
constexpr bool IsWindowsEnglish(uint16_t number) noexcept {
    return number < 0x8000 && (number & 0x3FF) == 0x09;
}

// A language tag with the letter case and the hyphens that BCP 47 wants: "zh_hant" is "zh-Hant".
std::string CanonicalLanguageTag(std::string_view tag);

} // namespace vellum
