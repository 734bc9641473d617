// SPDX-License-Identifier: MIT
// Registration of font files.
#include "describe/directory_flags.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "frame/registry/generation_seed.hpp"
#include "platform/font/gx_font_round.hpp"
#include "platform/font/type_identifier.hpp"
#include "store/change_each.hpp"
#include "store/legacy_bridge.hpp"
#include "store/local_glyphary_imp.hpp"

#include <utility>

namespace vellum {

namespace {

// A file is registered whole: a fragment that names one of its faces is dropped. In the URL of a
// font in memory the fragment is part of the name.
Ref<const ValURL> WholeFile(const ValURL *url) {
    return TGxFont::IsInMemoryURL(url) ? Retain(url) : Adopt(ValURLCopyWithFragment(url, nullptr));
}

// True when the flags ask for a copy in stable storage. What lies on the root volume stays there.
bool WantsStableCopy(const ValURL *url, VLFontFlags flags) {
    return (flags & kVLFontFlagCopyToStable) && !(DirectoryFlags(url) & kVLFontFlagRootVolume);
}

// Whether a file holds nothing but the outlines of a suitcase's fonts, which are reached through it:
// neither the legacy font service nor stable storage is to have it.
bool IsOutlines(const ValURL *url) {
    return ConformsToTypeTag(url, "com.adobe.postscript-ptfn-font");
}

} // namespace

void TLocalGlypharyImp::NoteChange() const noexcept {
    ++change_count_;
    TGenerationSeed::UpdateGeneration();
}

void TLocalGlypharyImp::AddFace(FontReference reference, const GxFont *font) const {
    enabled_.Add(reference, font);
    AddFontToIndexes(reference, font);
}

void TLocalGlypharyImp::RemoveFace(FontReference reference) const noexcept {
    RemoveFontFromIndexes(reference, nullptr);
    TakeOutOfIndex(kDisabledPathIndex, reference, nullptr);
    enabled_.Remove(reference);
}

bool TLocalGlypharyImp::RegisterFont(const ValURL *url, const ValDictionary *, VLFontFlags flags,
                                     VLScope scope) const {
    if (!ReferencesForURL(kPathIndex, url).empty()) return false;
    // Outlines have no faces: of files that are not copied, only those without faces are asked about them.
    const bool wants_copy = (flags & kVLFontFlagCopyToStable) != 0;
    if (wants_copy && IsOutlines(url)) return false;
    auto file = WholeFile(url);
    if (WantsStableCopy(url, flags)) {
        Ref<const ValURL> copy;
        if (!MoveFileToStableStorage(file.Get(), copy)) return false;
        if (!ReferencesForURL(kPathIndex, copy.Get()).empty()) return false;
        file = std::move(copy);
    }
    const GxFontRound round; // of reading the faces and, for the indexes, their names
    const auto fonts = CreateFontsFromURL(file.Get());
    const size_t count = ValArrayGetCount(fonts.Get());
    if (count == 0 && !wants_copy && !(scope & kVLScopeLegacyTold) && IsOutlines(url)) return false;
    DoRegisterURLWithFount(file.Get(), true, flags, scope);
    if (count == 0) return false;

    std::vector<FontReference> added;
    added.reserve(count);
    try {
        for (size_t i = 0; i < count; ++i) {
            added.push_back(TakeNextReference());
            AddFace(added.back(), static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), i)));
        }
    } catch (...) { // memory is exhausted: a file is registered whole or not at all
        for (const FontReference reference : added) RemoveFace(reference);
        return false;
    }
    NoteChange();
    return true;
}

bool TLocalGlypharyImp::RegisterFonts(const ValArray *urls, const ValDictionary *, VLFontFlags flags,
                                      VLScope scope, ErrorArray errors) const {
    if ((scope & kVLScopeAll) != kVLScopeProcess) return false;
    return ChangeEach(urls, errors,
                      [&](const ValURL *url) { return RegisterFont(url, nullptr, flags, scope); });
}

} // namespace vellum
