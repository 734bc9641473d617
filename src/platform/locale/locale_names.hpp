// SPDX-License-Identifier: MIT
// Language identifiers: one spelling for each language, so that they are compared as texts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vellum {

// What is longer names no language.
inline constexpr size_t kMaximumLanguageIdentifier = 64;

// The canonical identifier of a language in BCP 47's spelling, from any spelling of it:
// "ja_JP.UTF-8" is "ja", "iw" is "he", "zh_tw" is "zh-Hant".
//
// Names of languages, scripts, regions and variants that were replaced are told by their newer ones.
// The script is left out where the language is mostly written in it, but for Chinese, which is told
// apart by script: "zh-Hans", "zh-Hant". The region is left out where it is the principal one of the
// language in that script: "en" is the English of the United States. Variants stay, sorted.
// Extensions and private use go, and so do a POSIX locale's encoding and modifier, except for a
// modifier that names a script ("sr_RS@latin" is "sr-Latn"). What stands behind the first part that is
// not well-formed is not read. "C" and "POSIX" are "en".
//
// Empty for what names no language. Any bytes will do. A canonical identifier is its own.
std::string CanonicalLanguageIdentifier(std::string_view identifier);

// A canonical identifier and those of the languages that contain it, the nearest first: "de-AT", "de";
// "zh-Hant-HK", "zh-Hant". A script is never left out: who reads "zh-Hant" may not read "zh-Hans".
// Empty for the empty identifier.
std::vector<std::string> LanguageAndParents(std::string_view canonical);

} // namespace vellum
