// SPDX-License-Identifier: MIT
#include "describe/font_entity.hpp"

#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

#include <vellum/vellum.h>

#include <iterator>

namespace vellum {

Ref<const ValDictionary> TFontEntity::CopyProperties(const ValSet *keys, bool all) const {
    TValMutableDict properties;
    for (const void *member : TValSet(Retain(keys))) {
        const auto *key = Cast<ValString>(member);
        if (!key) continue;
        if (const auto value = CopyProperty(key, all)) properties.Set(key, value.Get());
    }
    return properties.Publish();
}

Ref<const ValDictionary> TFontEntity::CopyRegistrationProperties() const {
    const void *const keys[] = {
        kVLFontPropertyURL,
        kVLFontPropertyBookmark,
        kVLFontPropertyName,
        kVLFontPropertyFamilyName,
        kVLFontPropertyFullName,
        kVLFontPropertySubfamilyName,
        kVLFontPropertyInstanceName,
        kVLFontPropertyTraits,
        kVLFontPropertyLocalizedNames,
        kVLFontPropertyCharacterSet,
        kVLFontPropertyVariations,
        kVLFontPropertyVariationAxes,
        kVLFontPropertySupportedLanguages,
        kVLFontPropertyDesignLanguages,
        kVLFontPropertyFlags,
        kVLFontPropertyFormat,
        kVLFontPropertyStringEncoding,
        kVLFontPropertyIgnoreScriptAnalysis,
        kVLFontPropertyUnicodeRanges,
    };
    return CopyProperties(OrBadAlloc(Adopt(ValSetCreate(keys, std::size(keys)))).Get(), false);
}

} // namespace vellum
