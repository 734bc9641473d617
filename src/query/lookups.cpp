// SPDX-License-Identifier: MIT
// Lookups in a register in the process, by name, by character, by URL.
#include "describe/client_font_entity.hpp"
#include "query/face_order.hpp"
#include "store/local_glyphary_imp.hpp"
#include "values/lookup_trace.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

namespace vellum {

namespace {

Ref<const ValDictionary> RequestForCharacter(uint32_t character) {
    TValMutableDict request;
    const auto characters = OrBadAlloc(Adopt(ValCharacterSetCreateWithRange(character, character)));
    request.Set(kVLFontPropertyCharacterSet, characters.Get());
    return request.Publish();
}

} // namespace

// Other names stand in for a PostScript name. Subfamily names do not, by design: "Bold" names no font.
Ref<const ValURL> TLocalGlypharyImp::CopyFontForName(const ValString *name, VLScope) const {
    const auto named = SearchNameIndicesForFonts(kPostScriptNameIndex, kFamilyNameIndex, name);
    auto fonts = ReferencesIn(named.Get());
    const auto context = TFontEntityComparisonContext::ForPostScriptName();
    PutInOrder(fonts, &context);
    return CopyFirstURL(fonts);
}

// The second word, which the font server reads, says nothing here.
Ref<const ValURL> TLocalGlypharyImp::CopyFontForCharacter(uint32_t character, uint32_t scope,
                                                          uint32_t) const {
    if (enabled_.IsEmpty() || character >= kCodePointCount) return nullptr;
    if (!LookupTrace::Current()) {
        const FaceOrder::Face *face = Order().FindCharacter(character);
        if (!face) return nullptr;
        if (face->is_sound) return CopyFirstURL({face->reference});
    }
    return CopyFontForRequest(RequestForCharacter(character).Get(), scope);
}

Ref<const ValArray> TLocalGlypharyImp::CopyFontsForURL(const ValURL *url, VLScope) const {
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    if (!Adopt(ValURLCopyFileSystemPath(absolute.Get()))) return nullptr;
    auto fonts = ReferencesForURL(kPathIndex, absolute.Get());
    const auto context = TFontEntityComparisonContext::ForPostScriptName();
    PutInOrder(fonts, &context);

    const auto fragment = Adopt(ValURLCopyDecodedFragment(absolute.Get()));
    TValMutableArray urls;
    for (const FontReference reference : fonts) {
        const TClientFontEntity font(Retain(enabled_.Find(reference)));
        if (fragment && !font.MatchesFragment(fragment.Get())) continue;
        if (const auto found = font.CopyURL()) urls.Append(found.Get());
    }
    return urls.IsEmpty() ? nullptr : urls.Publish();
}

// Names of other kinds that stand in for a PostScript name, and for none but that.
Ref<const ValSet> TLocalGlypharyImp::SearchIndexedFontsForName(uint16_t id, const ValString *name) const {
    if (id != kPostScriptNameIndex) return nullptr;
    return SearchNameIndicesForFonts(kFullNameIndex, kSubfamilyNameIndex, name);
}

} // namespace vellum
