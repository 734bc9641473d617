// SPDX-License-Identifier: MIT
// Lists of what the enabled fonts are called and where they are.
#include "describe/client_font_entity.hpp"
#include "store/local_glyphary_imp.hpp"
#include "values/val_array.hpp"
#include "values/val_set.hpp"

namespace vellum {

namespace {

// Null for an empty set.
Ref<const ValArray> Members(const TValMutableSet &set) {
    if (set.IsEmpty()) return nullptr;
    TValMutableArray list(kValValueCallbacks, set.Count());
    for (const void *member : set) list.Append(member);
    return list.Publish();
}

// The distinct answers of `copy` to each font, null ones left out; null when there are none.
template <class Copy>
Ref<const ValArray> ListDistinct(const FontTable &fonts, Copy copy) {
    TValMutableSet distinct;
    fonts.ForEach([&](FontReference, const GxFont *font) {
        if (const auto value = copy(TClientFontEntity(Retain(font)))) distinct.Add(value.Get());
    });
    return Members(distinct);
}

} // namespace

Ref<const ValArray> TLocalGlypharyImp::CopyAvailableFontNames(VLScope) const {
    return ListDistinct(enabled_,
                        [](const TClientFontEntity &font) { return font.CopyPostScriptName(false); });
}

Ref<const ValArray> TLocalGlypharyImp::CopyAvailableFontFamilyNames(VLScope) const {
    return ListDistinct(enabled_, [](const TClientFontEntity &font) { return font.CopyFamilyName(false); });
}

Ref<const ValArray> TLocalGlypharyImp::CopyAvailableFontURLs(VLScope) const {
    return ListDistinct(enabled_, [](const TClientFontEntity &font) { return font.CopyURL(); });
}

// A family is listed when one of its faces supports that very language: a region is not left out to find
// more.
Ref<const ValArray> TLocalGlypharyImp::CopyFamilyNamesForLanguage(const ValString *language, VLScope,
                                                                  uint32_t) const {
    TValMutableSet families;
    enabled_.ForEach([&](FontReference, const GxFont *font) {
        const TClientFontEntity entity(Retain(font));
        const auto family = entity.CopyFamilyName(false);
        if (!family || families.Contains(family.Get())) return;
        const auto languages = entity.CopySupportedLanguages();
        if (languages && ValArrayContains(languages.Get(), language)) families.Add(family.Get());
    });
    return Members(families);
}

// The process's register takes no part in the summary, by design: only the font server reads the query.
Ref<const ValDictionary> TLocalGlypharyImp::ExperimentalDataFunnel(const ValDictionary *, VLScope) const {
    return nullptr;
}

} // namespace vellum
