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

// Moves the faces under a URL that fit its fragment by move(reference, font). One for which memory does not
// suffice stays where it was, whole, and the others move. False when there was none at all, or none moved
// because of that: who is told false may take it that nothing changed.
template <class Move>
bool MoveFaces(const std::vector<FontReference> &references, const FontTable &from, const ValURL *url,
               Move move) {
    const auto fragment = FaceFragment(url);
    bool has_moved = false, has_failed = false;
    for (const FontReference reference : references) {
        try {
            const auto font = Retain(from.Find(reference));
            if (!font || !FitsFragment(font.Get(), fragment.Get())) continue;
            move(reference, font.Get());
            has_moved = true;
            TGenerationSeed::UpdateGeneration();
        } catch (...) {
            has_failed = true;
        }
    }
    return !references.empty() && (has_moved || !has_failed);
}

} // namespace

std::vector<FontReference> TLocalGlypharyImp::ReferencesForURL(uint16_t index, const ValURL *url) const {
    return GetIndex(index)->FontsForKey(url);
}

// All that may fail comes before the face leaves the table in which it is. What index 5 then holds of a
// face that did not move does no harm: it begins with enabled faces, too.
bool TLocalGlypharyImp::DisableFont(const ValURL *url, VLScope) const {
    // Made, and filled from what is enabled, before anything moves.
    TFontIndex &disabled_paths = *GetIndex(kDisabledPathIndex);
    return MoveFaces(ReferencesForURL(kPathIndex, url), enabled_, url,
                     [&](FontReference reference, const GxFont *font) {
                         RemoveFontFromIndex(disabled_paths, reference, font);
                         AddFontToIndex(disabled_paths, reference, font);
                         disabled_.Add(reference, font);
                         enabled_.Remove(reference);
                         RemoveFontFromIndexes(reference, font);
                     });
}

bool TLocalGlypharyImp::EnableFont(const ValURL *url, VLScope) const {
    return MoveFaces(ReferencesForURL(kDisabledPathIndex, url), disabled_, url,
                     [&](FontReference reference, const GxFont *font) {
                         enabled_.Add(reference, font);
                         disabled_.Remove(reference);
                         AddFontToIndexes(reference, font);
                         TakeOutOfIndex(kDisabledPathIndex, reference, font);
                     });
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
