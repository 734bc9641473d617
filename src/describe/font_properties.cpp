// SPDX-License-Identifier: MIT
#include "describe/font_properties.hpp"

#include "platform/val/string.hpp"

#include <iterator>

namespace vellum {

namespace {

// The constants in the order of their identifiers. They are read through their addresses: what an
// exported constant holds is known only when the library has been loaded.
constexpr const ValString *const *kKeys[] = {
    &kVLFontPropertyName,
    &kVLFontPropertyFamilyName,
    &kVLFontPropertyFullName,
    &kVLFontPropertySubfamilyName,
    &kVLFontPropertyVersionName,
    &kVLFontPropertyCopyrightName,
    &kVLFontPropertyInstanceName,
    &kVLFontPropertyLocalizedNames,
    &kVLFontPropertyTraits,
    &kVLFontPropertyURL,
    &kVLFontPropertyUUID,
    &kVLFontPropertyBookmark,
    &kVLFontPropertyCharacterSet,
    &kVLFontPropertyVariationAxes,
    &kVLFontPropertyVariations,
    &kVLFontPropertySupportedLanguages,
    &kVLFontPropertyDesignLanguages,
    &kVLFontPropertyEnabled,
    &kVLFontPropertyPriority,
    &kVLFontPropertyFormat,
    &kVLFontPropertyStringEncoding,
    &kVLFontPropertyIgnoreScriptAnalysis,
    &kVLFontPropertyFontRef,
    &kVLFontPropertyDirectory,
    &kVLFontPropertyScope,
    &kVLFontPropertyFlags,
    &kVLFontPropertyUnicodeRanges,
};
static_assert(std::size(kKeys) == kPropertyCount);

} // namespace

PropertyID TFontProperties::GetPropertyID(const ValString *key) {
    if (!key) return PropertyID::kUnknown;
    for (size_t i = 0; i < kPropertyCount; ++i)
        if (*kKeys[i] == key) return static_cast<PropertyID>(i + 1);
    for (size_t i = 0; i < kPropertyCount; ++i)
        if (Text(**kKeys[i]) == Text(*key)) return static_cast<PropertyID>(i + 1);
    return PropertyID::kUnknown;
}

bool TFontProperties::IsNameKey(const ValString *key) {
    const PropertyID id = GetPropertyID(key);
    return id >= PropertyID::kName && id <= PropertyID::kCopyrightName;
}

} // namespace vellum
