// SPDX-License-Identifier: MIT
// How fonts leave the table of enabled fonts, and come back.
#include "describe/client_font_entity.hpp"
#include "frame/registry/generation_seed.hpp"
#include "store/change_each.hpp"
#include "store/local_glyphary_imp.hpp"

#include <algorithm>

namespace vellum {

namespace {

// The fragment of a URL that picks one face of a file, decoded; null for the whole file.
Ref<const ValString> FaceFragment(const ValURL *url) {
    return Adopt(ValURLCopyDecodedFragment(url));
}

bool FitsFragment(const GxFont *font, const ValString *fragment) {
    return !fragment || TClientFontEntity(Retain(font)).MatchesFragment(fragment);
}

} // namespace

std::vector<FontReference> TLocalGlypharyImp::ReferencesForURL(uint16_t index, const ValURL *url) const {
    return ReferencesIn(GetIndex(index)->CopyFontsForKey(url).Get());
}

bool TLocalGlypharyImp::DisableFont(const ValURL *url, VLScope) const {
    GetIndex(kDisabledPathIndex); // made, and filled from what is enabled, before anything moves
    const auto references = ReferencesForURL(kPathIndex, url);
    const auto fragment = FaceFragment(url);
    for (const FontReference reference : references) {
        const auto font = Retain(enabled_.Find(reference));
        if (!font || !FitsFragment(font.Get(), fragment.Get())) continue;
        disabled_.Add(reference, font.Get());
        enabled_.Remove(reference);
        RemoveFontFromIndexes(reference, font.Get());
        AddFontToIndex(*GetIndex(kDisabledPathIndex), reference, font.Get());
        TGenerationSeed::UpdateGeneration();
    }
    return !references.empty();
}

bool TLocalGlypharyImp::EnableFont(const ValURL *url, VLScope) const {
    const auto references = ReferencesForURL(kDisabledPathIndex, url);
    const auto fragment = FaceFragment(url);
    for (const FontReference reference : references) {
        const auto font = Retain(disabled_.Find(reference));
        if (!font || !FitsFragment(font.Get(), fragment.Get())) continue;
        enabled_.Add(reference, font.Get());
        disabled_.Remove(reference);
        AddFontToIndexes(reference, font.Get());
        RemoveFontFromIndex(*GetIndex(kDisabledPathIndex), reference, font.Get());
        TGenerationSeed::UpdateGeneration();
    }
    return !references.empty();
}

// A disabled font that is unregistered stays in the table of disabled fonts, where no index finds
// it any more: its reference stays taken. That is deliberate.
bool TLocalGlypharyImp::UnregisterFont(const ValURL *url, VLScope) const {
    auto references = ReferencesForURL(kPathIndex, url);
    for (const FontReference reference : ReferencesForURL(kDisabledPathIndex, url))
        if (std::ranges::find(references, reference) == references.end()) references.push_back(reference);
    for (const FontReference reference : references) {
        ForgetDataFont(reference, GetPossiblyDisabledFont(reference));
        RemoveFace(reference);
    }
    NoteChange();
    return true;
}

bool TLocalGlypharyImp::UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const {
    return ChangeEach(urls, errors, [&](const ValURL *url) { return UnregisterFont(url, scope); });
}

} // namespace vellum
