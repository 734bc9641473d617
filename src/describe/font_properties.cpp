// SPDX-License-Identifier: MIT
#include "describe/font_properties.hpp"

#include "describe/client_font_entity.hpp"
#include "platform/val/string.hpp"

#include <type_traits>

namespace vellum {

namespace {

using Face = TClientFontEntity;
using ID = PropertyID;

// An operation of the face as a row holds it: only names are told whether all of them are wanted.
template <auto kCopy>
Ref<const void> Derive(const TClientFontEntity &face, bool all) {
    if constexpr (std::is_invocable_v<decltype(kCopy), const TClientFontEntity &, bool>)
        return (face.*kCopy)(all);
    else
        return (face.*kCopy)();
}

constexpr KindSet kString = KindBit(kValTypeString);
constexpr KindSet kNumber = KindBit(kValTypeNumber) | KindBit(kValTypeBoolean); // which reads as 1 or 0
constexpr KindSet kArray = KindBit(kValTypeArray);
constexpr KindSet kDictionary = KindBit(kValTypeDictionary);
constexpr KindSet kURL = KindBit(kValTypeURL);
constexpr KindSet kUUID = KindBit(kValTypeUUID);
constexpr KindSet kData = KindBit(kValTypeData);
constexpr KindSet kCharacters = KindBit(kValTypeCharacterSet);
constexpr KindSet kBoolean = KindBit(kValTypeBoolean);
constexpr KindSet kNone = 0;

// A name may be an array of names, of which the first counts where one is asked for.
//
// That some properties never match, and that variations always do, is deliberate and must stay: who asks
// for those resolves them in another way, and relies on it.
constexpr MatchRule kNever = MatchRule::kNever;
constexpr MatchRule kAlways = MatchRule::kAlways;
constexpr MatchRule kByName = MatchRule::kName;

constexpr PropertyRow kRows[] = {
    {&kVLFontPropertyName, ID::kName, kByName, kString | kArray, kString,
     Derive<&Face::CopyPostScriptName>},
    {&kVLFontPropertyFamilyName, ID::kFamilyName, kByName, kString | kArray, kString,
     Derive<&Face::CopyFamilyName>},
    {&kVLFontPropertyFullName, ID::kFullName, kByName, kString | kArray, kString,
     Derive<&Face::CopyFullName>},
    {&kVLFontPropertySubfamilyName, ID::kSubfamilyName, kNever, kString | kArray, kString,
     Derive<&Face::CopySubfamilyName>},
    {&kVLFontPropertyVersionName, ID::kVersionName, kByName, kString | kArray, kString,
     Derive<&Face::CopyVersionName>},
    {&kVLFontPropertyCopyrightName, ID::kCopyrightName, kByName, kString | kArray, kString,
     Derive<&Face::CopyCopyrightName>},
    {&kVLFontPropertyInstanceName, ID::kInstanceName, kByName, kString, kNone, nullptr},
    {&kVLFontPropertyLocalizedNames, ID::kLocalizedNames, kNever, kDictionary, kDictionary,
     Derive<&Face::CopyLocalizedNames>},
    {&kVLFontPropertyTraits, ID::kTraits, MatchRule::kTraits, kDictionary, kNumber,
     Derive<&Face::CopyTraits>},
    {&kVLFontPropertyURL, ID::kURL, MatchRule::kURL, kURL, kNone, Derive<&Face::CopyURL>},
    {&kVLFontPropertyUUID, ID::kUUID, kNever, kUUID, kNone, Derive<&Face::CopyUUID>},
    {&kVLFontPropertyBookmark, ID::kBookmark, kNever, kData, kNone, Derive<&Face::CopyBookmark>},
    {&kVLFontPropertyCharacterSet, ID::kCharacterSet, MatchRule::kCharacterSet, kCharacters, kNone,
     Derive<&Face::CopyCharacterSet>},
    {&kVLFontPropertyVariationAxes, ID::kVariationAxes, MatchRule::kEqual, kArray, kDictionary,
     Derive<&Face::CopyVariationAxes>},
    {&kVLFontPropertyVariations, ID::kVariations, kAlways, kDictionary, kNumber,
     Derive<&Face::CopyVariations>},
    {&kVLFontPropertySupportedLanguages, ID::kSupportedLanguages, MatchRule::kLanguages, kArray, kString,
     Derive<&Face::CopySupportedLanguages>},
    {&kVLFontPropertyDesignLanguages, ID::kDesignLanguages, kNever, kArray, kString,
     Derive<&Face::CopyDesignLanguages>},
    {&kVLFontPropertyEnabled, ID::kEnabled, kAlways, kNumber, kNone, nullptr},
    {&kVLFontPropertyPriority, ID::kPriority, kNever, kNumber, kNone, nullptr},
    {&kVLFontPropertyFormat, ID::kFormat, kNever, kNumber, kNone, Derive<&Face::CopyFormat>},
    {&kVLFontPropertyStringEncoding, ID::kStringEncoding, kNever, kNumber, kNone,
     Derive<&Face::CopyStringEncoding>},
    {&kVLFontPropertyIgnoreScriptAnalysis, ID::kIgnoreScriptAnalysis, kNever, kBoolean, kNone,
     Derive<&Face::CopyIgnoreScriptAnalysis>},
    {&kVLFontPropertyFontRef, ID::kFontRef, kNever, kNumber, kNone, nullptr},
    {&kVLFontPropertyDirectory, ID::kDirectory, kNever, kURL, kNone, nullptr},
    {&kVLFontPropertyScope, ID::kScope, kNever, kNumber, kNone, nullptr},
    {&kVLFontPropertyFlags, ID::kFlags, kNever, kNumber, kNone, Derive<&Face::CopyFlags>},
    {&kVLFontPropertyUnicodeRanges, ID::kUnicodeRanges, kNever, kArray, kNumber,
     Derive<&Face::CopyUnicodeRanges>},
};

constexpr bool IsInOrder() {
    uint32_t place = 0;
    for (const PropertyRow &row : kRows) {
        if (static_cast<uint32_t>(row.id) != ++place) return false;
    }
    return place == kPropertyCount;
}
static_assert(IsInOrder());

} // namespace

std::span<const PropertyRow, kPropertyCount> TFontProperties::Rows() noexcept {
    return kRows;
}

const PropertyRow *TFontProperties::Find(const ValString *key) noexcept {
    if (!key) return nullptr;
    for (const PropertyRow &row : kRows)
        if (*row.key == key) return &row;
    for (const PropertyRow &row : kRows)
        if (Text(**row.key) == Text(*key)) return &row;
    return nullptr;
}

} // namespace vellum
