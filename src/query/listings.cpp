// SPDX-License-Identifier: MIT
// Lists of what the enabled fonts are called and where they are.
#include "describe/client_font_entity.hpp"
#include "store/local_glyphary_imp.hpp"
#include "values/val_array.hpp"
#include "values/val_set.hpp"

namespace vellum {

namespace {

// The distinct answers of `copy` to each font, null ones left out; null when there are none.
template <class Copy>
Ref<const ValArray> ListDistinct(const FontTable &fonts, Copy copy) {
    TValMutableSet distinct;
    for (const auto &[reference, font] : fonts.Snapshot())
        if (const auto value = copy(TClientFontEntity(font))) distinct.Add(value.Get());
    TValMutableArray list;
    size_t cursor = 0;
    for (const void *member; ValSetNext(distinct.Get(), &cursor, &member);) list.Append(member);
    return list.IsEmpty() ? nullptr : list.Publish();
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

} // namespace vellum
