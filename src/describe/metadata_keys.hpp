// SPDX-License-Identifier: MIT
// The keys of a face's metadata that properties are read from, and the one way in which they say "true".
#pragma once

#include "platform/val/static_string.hpp"
#include "values/val_cast.hpp"

#include <string_view>

namespace vellum::metadata {

inline constinit const StaticString kPostScriptNameAliases("MTD_Typeface_ID_PostScriptName_Aliases");
inline constinit const StaticString kFamilyNameAliases("MTD_Typeface_ID_FamilyName_Aliases");
inline constinit const StaticString kFullNameAliases("MTD_Typeface_ID_FullName_Aliases");
inline constinit const StaticString kStyleNameAliases("MTD_Typeface_ID_StyleName_Aliases");

inline constinit const StaticString kUnicodeRanges("MTD_Typeface_UnicodeRanges");
inline constinit const StaticString kSupportedLanguages("MTD_Typeface_Repertoire_SupportedLanguages");
inline constinit const StaticString
    kPrimaryScriptLanguages("MTD_Typeface_Repertoire_PrimaryScriptLanguages");
inline constinit const StaticString kPrimaryLanguage("MTD_Typeface_Repertoire_PrimaryLanguage");
inline constinit const StaticString kIgnoreScriptAnalysis("MTD_Typeface_info_IgnoreScriptAnalysis");

inline constinit const StaticString kIsMeridianFont("MTD_Typeface_info_Is_Meridian_Font");
inline constinit const StaticString kIsCoreSystemFont("MTD_Typeface_info_Is_Core_System_Font");
inline constinit const StaticString kIsCriticalSystemFont("MTD_Typeface_info_Is_Critical_System_Font");
inline constinit const StaticString
    kIsSuperCriticalSystemFont("MTD_Typeface_info_Is_SuperCritical_System_Font");
inline constinit const StaticString kIsInvisible("MTD_Typeface_info_Is_Invisible");
inline constinit const StaticString kIsUIFont("MTD_Typeface_info_Is_UI_Font");

// The value under a key when it is of the kind that is asked for, else null. Borrowed.
template <class T>
const T *Find(const ValDictionary *metadata, const ValString &key) noexcept {
    return Cast<T>(ValDictionaryGetValue(metadata, &key));
}

// Only the string "TRUE" is true.
inline bool IsTrue(const ValDictionary *metadata, const ValString &key) noexcept {
    const auto *value = Find<ValString>(metadata, key);
    return value && Text(value) == "TRUE";
}

} // namespace vellum::metadata
