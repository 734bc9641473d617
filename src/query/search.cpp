// SPDX-License-Identifier: MIT
// How the indexes narrow a request down to candidates.
#include "frame/registry/glyphary_imp.hpp"
#include "query/trace_stages.hpp"
#include "store/font_index.hpp"
#include "values/lookup_trace.hpp"

#include <vector>

namespace vellum {

namespace {

void AddAll(TValMutableSet &candidates, const ValSet *fonts) {
    size_t cursor = 0;
    for (const void *font; ValSetNext(fonts, &cursor, &font);) candidates.Add(font);
}

// Leaves those candidates that `fonts` has (null: none); they keep their order.
void KeepOnly(TValMutableSet &candidates, const ValSet *fonts) {
    std::vector<const void *> others;
    for (const void *font : candidates)
        if (!ValSetContains(fonts, font)) others.push_back(font);
    for (const void *font : others) candidates.Remove(font);
}

std::vector<Ref<const ValString>> KeysOf(const TValMutableDict &request) {
    std::vector<Ref<const ValString>> keys;
    for (const auto &[key, value] : request)
        if (const auto *string = Cast<ValString>(key)) keys.push_back(Retain(string));
    return keys;
}

} // namespace

Ref<const ValSet> TGlypharyImp::SearchNameIndicesForFonts(uint16_t first, uint16_t last,
                                                          const ValString *name) const {
    for (uint16_t id = first; id <= last; ++id) {
        const TFontIndex *index = GetIndex(id);
        if (!index) continue;
        auto fonts = index->CopyFontsForKey(name);
        TellIndex(index->GetIndexedProperty(), name, ValSetGetCount(fonts.Get()));
        if (fonts) return fonts;
    }
    return nullptr;
}

bool TGlypharyImp::SearchIndexForRequest(const ValString *key, TValMutableDict &request,
                                         TValMutableSet &candidates, bool &indexed) const {
    const auto value = Ref<const void>::Retain(request[key]);
    const TFontIndex *index = value ? GetIndexForProperty(key) : nullptr;
    if (!index) return false;
    indexed = true;
    const auto fonts = index->CopyFontsForKey(value.Get());
    TellIndex(key, value.Get(), ValSetGetCount(fonts.Get()));
    request.Remove(key);
    if (!fonts) return false;
    if (candidates.IsEmpty())
        AddAll(candidates, fonts.Get());
    else
        KeepOnly(candidates, fonts.Get());
    return true;
}

// A name that no font has as its PostScript name may be meant otherwise: people take a family's name, or
// a full one, for it.
bool TGlypharyImp::SearchPostScriptName(TValMutableDict &request, TValMutableSet &candidates,
                                        bool &indexed) const {
    const auto name = Ref<const void>::Retain(request[kVLFontPropertyName]);
    if (SearchIndexForRequest(kVLFontPropertyName, request, candidates, indexed)) return true;
    if (!indexed) return false;
    for (const ValString *key :
         {kVLFontPropertyFamilyName, kVLFontPropertyFullName, kVLFontPropertySubfamilyName}) {
        const TFontIndex *index = GetIndexForProperty(key);
        const auto fonts = index ? index->CopyFontsForKey(name.Get()) : nullptr;
        TellIndex(key, name.Get(), ValSetGetCount(fonts.Get()));
        if (!fonts) continue;
        AddAll(candidates, fonts.Get());
        break;
    }
    return !candidates.IsEmpty();
}

bool TGlypharyImp::SearchIndexedFontsForRequest(TValMutableDict &request, TValMutableSet &candidates,
                                                bool &indexed) const {
    indexed = false;
    if (request.IsEmpty()) return false;
    if (ValDictionaryContainsKey(request.Get(), kVLFontPropertyName)) {
        static_cast<void>(SearchPostScriptName(request, candidates, indexed));
        if (candidates.IsEmpty()) return false;
    }
    for (const ValString *key :
         {kVLFontPropertyFamilyName, kVLFontPropertyFullName, kVLFontPropertySubfamilyName})
        SearchIndexForRequest(key, request, candidates, indexed);

    for (const auto &key : KeysOf(request)) {
        bool key_is_indexed = false;
        const bool found = SearchIndexForRequest(key.Get(), request, candidates, key_is_indexed);
        if (!key_is_indexed) continue;
        indexed = true;
        if (found) continue;
        KeepOnly(candidates, nullptr);
        break;
    }
    return !candidates.IsEmpty();
}

} // namespace vellum
