// SPDX-License-Identifier: MIT
// Fonts in memory. The table from buffer to font holds no reference of its own to the font: the
// table of enabled fonts does, and whatever takes a font out of it must call ForgetDataFont.
#include "describe/gx_font_wrapper.hpp"
#include "store/legacy_bridge.hpp"
#include "store/local_glyphary_imp.hpp"

namespace vellum {

const GxFont *TLocalGlypharyImp::FindDataFont(const ValData *data) const noexcept {
    return static_cast<const GxFont *>(ValDictionaryGetValue(data_fonts_.Get(), data));
}

bool TLocalGlypharyImp::RegisterDataFont(const ValData *data, uint32_t legacy_container, VLFontFlags,
                                         VLScope) const {
    if (!data || FindDataFont(data)) return false;
    TGxFont font(data);
    // A font without a PostScript name has no URL, and could never be found again to be removed.
    if (!font.Font() || !font.CopyURL()) return false;

    const FontReference reference = TakeNextReference();
    try {
        legacy_containers_.Set(AsItem(reference), AsItem(legacy_container));
        data_fonts_.Set(data, font.Font().Get());
        AddFace(reference, font.Font().Get());
    } catch (...) { // memory is exhausted
        ForgetDataFont(reference, font.Font().Get());
        RemoveFace(reference);
        return false;
    }
    NoteChange();
    return true;
}

bool TLocalGlypharyImp::UnregisterDataFont(const ValData *data, VLScope) const {
    const GxFont *found = FindDataFont(data);
    if (!found) return false;
    TGxFont font(Retain(found));
    const auto url = font.CopyURL();
    const auto references = ReferencesForURL(kPathIndex, url.Get());
    if (references.empty()) return false;
    for (const FontReference reference : references) {
        ForgetDataFont(reference, found);
        RemoveFace(reference);
    }
    NoteChange();
    return true;
}

const GxFont *TLocalGlypharyImp::GetDataFont(const ValData *data, uint32_t *legacy_container) const {
    const GxFont *found = FindDataFont(data);
    if (!found || !legacy_container) return found;
    *legacy_container = 0;
    enabled_.ForEach([&](FontReference reference, const GxFont *font) {
        if (font == found)
            *legacy_container =
                AsReference(ValDictionaryGetValue(legacy_containers_.Get(), AsItem(reference)));
    });
    return found;
}

// A legacy font id leads to a font in memory through the legacy font service, which says in which container
// the font lies; without that service it leads nowhere.
Ref<const ValURL> TLocalGlypharyImp::CopyURLForDataFont(const ValData *data, uint32_t legacy_font) const {
    if (data) {
        const GxFont *found = FindDataFont(data);
        auto url = found ? TGxFont(Retain(found)).CopyURL() : nullptr;
        if (url) return url;
    }
    const uint32_t container = FindFountContainer(legacy_font);
    if (container == 0) return nullptr;
    for (const auto &[reference, held] : legacy_containers_) {
        if (AsReference(held) != container) continue;
        const GxFont *font = enabled_.Find(AsReference(reference));
        return font ? TGxFont(Retain(font)).CopyURL() : nullptr;
    }
    return nullptr;
}

uint32_t TLocalGlypharyImp::GetDataFontFountFont(const ValURL *url) const {
    const FontReference first = GetFontReference(url);
    return FindFountFont(AsReference(ValDictionaryGetValue(legacy_containers_.Get(), AsItem(first))));
}

void TLocalGlypharyImp::ForgetDataFont(FontReference reference, const GxFont *font) const noexcept {
    if (!ValDictionaryRemoveValue(legacy_containers_.Get(), AsItem(reference))) return;
    size_t cursor = 0;
    for (const void *data, *entry; ValDictionaryNext(data_fonts_.Get(), &cursor, &data, &entry);) {
        if (entry != font) continue;
        ValDictionaryRemoveValue(data_fonts_.Get(), data);
        return;
    }
}

} // namespace vellum
