// SPDX-License-Identifier: MIT
// The languages that the bits of an "OS/2" table stand for. Most bits stand for none: they name alphabets
// that many languages share.
#pragma once

#include <cstdint>
#include <string_view>

namespace vellum {

struct TBitLanguage {
    uint8_t bit;
    std::string_view language;
};

// By bit of ulCodePageRange1 and 2.
inline constexpr TBitLanguage kUnicodeCodePageLanguages[] = {
    {2, "ru"},  {3, "el"},  {4, "tr"},       {5, "he"},  {6, "ar"},       {8, "vi"},
    {16, "th"}, {17, "ja"}, {18, "zh-Hans"}, {19, "ko"}, {20, "zh-Hant"}, {21, "ko"},
    {48, "el"}, {49, "ru"}, {51, "ar"},      {53, "he"}, {54, "is"},      {56, "tr"},
    {57, "ru"}, {60, "el"}, {61, "ar"},      {63, "en"},
};

// By bit of ulUnicodeRange1 to 4.
inline constexpr TBitLanguage kUnicodeRangeLanguages[] = {
    {7, "el"},  {9, "ru"},  {10, "hy"},  {11, "he"}, {13, "ar"}, {17, "pa"},
    {18, "gu"}, {24, "th"}, {25, "lo"},  {26, "ka"}, {28, "ko"}, {49, "ja"},
    {50, "ja"}, {70, "bo"}, {76, "chr"}, {77, "iu"}, {81, "mn"},
};

} // namespace vellum
