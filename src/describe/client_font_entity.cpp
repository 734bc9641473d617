// SPDX-License-Identifier: MIT
#include "describe/client_font_entity.hpp"

#include "describe/font_format.hpp"
#include "describe/font_properties.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

namespace vellum {

Ref<const ValURL> TClientFontEntity::CopyURL() const {
    return TGxFont(font_).CopyURL();
}

Ref<const void> TClientFontEntity::CopyProperty(const ValString *key, bool all) const {
    switch (TFontProperties::GetPropertyID(key)) {
    case PropertyID::kName:
        return CopyPostScriptName(all);
    case PropertyID::kFamilyName:
        return CopyFamilyName(all);
    case PropertyID::kFullName:
        return CopyFullName(all);
    case PropertyID::kSubfamilyName:
        return CopySubfamilyName(all);
    case PropertyID::kURL:
        return CopyURL();
    case PropertyID::kCharacterSet:
        return CopyCharacterSet();
    case PropertyID::kVariationAxes:
        return CopyVariationAxes();
    case PropertyID::kVariations:
        return CopyVariations();
    case PropertyID::kFormat:
        return CopyFormat();
    default:
        return nullptr; // the register's own, or not derived
    }
}

Ref<const ValCharacterSet> TClientFontEntity::CopyCharacterSet() const {
    return GxFontCopyCharacterSet(font_.Get());
}

Ref<const ValArray> TClientFontEntity::CopyVariationAxes() const {
    TValMutableArray axes;
    for (const GxAxis &axis : GxFontGetVariationAxes(font_.Get())) {
        TValMutableDict entry;
        entry.Set(kVLVariationAxisName, axis.name.Get());
        entry.Set(kVLVariationAxisIdentifier, MakeNumber(static_cast<int32_t>(axis.tag)).Get());
        entry.Set(kVLVariationAxisDefaultValue, MakeNumber(axis.default_value).Get());
        entry.Set(kVLVariationAxisMaxValue, MakeNumber(axis.maximum).Get());
        entry.Set(kVLVariationAxisMinValue, MakeNumber(axis.minimum).Get());
        axes.Append(entry.Publish().Get());
    }
    return axes.IsEmpty() ? nullptr : axes.Publish();
}

Ref<const ValDictionary> TClientFontEntity::CopyVariations() const {
    return GxFontCopyVariations(font_.Get());
}

Ref<const ValNumber> TClientFontEntity::CopyFormat() const {
    return MakeNumber(static_cast<int32_t>(DetermineFormat(font_.Get())));
}

} // namespace vellum
