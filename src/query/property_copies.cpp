// SPDX-License-Identifier: MIT
// Copies of font properties, for one URL, for several, for all fonts.
#include "describe/client_font_entity.hpp"
#include "describe/font_properties.hpp"
#include "store/local_glyphary_imp.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

namespace vellum {

FontReference TLocalGlypharyImp::FindFont(const ValURL *url, bool disabled_too) const {
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    auto candidates = ReferencesForURL(kPathIndex, absolute.Get());
    if (disabled_too)
        for (const FontReference reference : ReferencesForURL(kDisabledPathIndex, absolute.Get()))
            candidates.push_back(reference);
    const auto fragment = Adopt(ValURLCopyDecodedFragment(absolute.Get()));
    for (const FontReference reference : candidates) {
        const GxFont *font = GetPossiblyDisabledFont(reference);
        if (!font) continue;
        if (!fragment || TClientFontEntity(Retain(font)).MatchesFragment(fragment.Get())) return reference;
    }
    return 0;
}

// The register's own values stand in place of what the font says.
Ref<const void> TLocalGlypharyImp::CopyFontProperty(FontReference reference, const ValString *key) const {
    switch (TFontProperties::GetPropertyID(key)) {
    case PropertyID::kEnabled:
        return MakeNumber(int32_t{enabled_.Find(reference) != nullptr});
    case PropertyID::kScope:
        return MakeNumber(int64_t{kVLScopeProcess});
    case PropertyID::kPriority:
        return MakeNumber(int64_t{kProcessPriority});
    default:
        return TClientFontEntity(Retain(GetPossiblyDisabledFont(reference))).CopyProperty(key, false);
    }
}

Ref<const ValDictionary> TLocalGlypharyImp::CopyFontProperties(FontReference reference,
                                                               const ValSet *keys) const {
    TValMutableDict properties;
    size_t cursor = 0;
    for (const void *member; ValSetNext(keys, &cursor, &member);) {
        const auto *key = Cast<ValString>(member);
        if (!key) continue;
        if (const auto value = CopyFontProperty(reference, key)) properties.Set(key, value.Get());
    }
    return properties.IsEmpty() ? nullptr : properties.Publish();
}

Ref<const ValDictionary> TLocalGlypharyImp::CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                                  VLScope) const {
    const FontReference font = FindFont(url, ValSetContains(keys, kVLFontPropertyEnabled));
    return font ? CopyFontProperties(font, keys) : nullptr;
}

Ref<const ValDictionary> TLocalGlypharyImp::CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                                   VLScope scope) const {
    TValMutableDict properties;
    for (size_t i = 0; i < ValArrayGetCount(urls); ++i) {
        const auto *url = Cast<ValURL>(ValArrayGetValue(urls, i));
        if (!url) continue;
        if (const auto found = CopyPropertiesForFont(url, keys, scope)) properties.Set(url, found.Get());
    }
    return properties.IsEmpty() ? nullptr : properties.Publish();
}

Ref<const ValDictionary> TLocalGlypharyImp::CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                                 VLScope) const {
    const bool disabled_too = TFontProperties::GetPropertyID(key) == PropertyID::kEnabled;
    TValMutableDict values;
    for (size_t i = 0; i < ValArrayGetCount(urls); ++i) {
        const auto *url = Cast<ValURL>(ValArrayGetValue(urls, i));
        const FontReference font = url ? FindFont(url, disabled_too) : 0;
        if (font == 0) continue;
        if (const auto value = CopyFontProperty(font, key)) values.Set(url, value.Get());
    }
    return values.IsEmpty() ? nullptr : values.Publish();
}

Ref<const ValArray> TLocalGlypharyImp::CopyPropertiesForAllFonts(const ValSet *keys, VLScope) const {
    TValMutableArray all;
    for (const auto &[reference, font] : enabled_.Snapshot())
        all.Append(TClientFontEntity(font).CopyProperties(keys, false).Get());
    return all.IsEmpty() ? nullptr : all.Publish();
}

} // namespace vellum
