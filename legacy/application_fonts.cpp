// SPDX-License-Identifier: MIT
// Changes of a configuration's application fonts. fontconfig has a way to take all of them out, and none
// for one: its set is changed in place.
#include "application_fonts.hpp"

#include "freetype_faces.hpp"

#include <algorithm>
#include <atomic>
#include <string_view>

namespace vellum::legacy {
namespace {

// Which file's a font is to be, by the font's address. The program may have cleared the set, and another
// font have come to lie there: a font counts when it is of the file, too.
using FontFiles = std::unordered_map<const FcPattern *, std::string_view>;

bool Has(const FontFiles &fonts, const FcPattern *font) {
    const auto found = fonts.find(font);
    return found != fonts.end() && found->second == FileOf(font);
}

bool Has(const FcFontSet *set, const FcPattern *font, std::string_view file) noexcept {
    if (!set) return false;
    FcPattern **const end = set->fonts + set->nfont;
    FcPattern **const found = std::find(set->fonts, end, font);
    return found != end && FileOf(*found) == file;
}

FontList Hold(const FcFontSet &set, const FontFiles &fonts) {
    FontList held;
    for (int i = 0; i < set.nfont; ++i) {
        if (!Has(fonts, set.fonts[i])) continue;
        held.emplace_back();
        FcPatternReference(set.fonts[i]);
        held.back().reset(set.fonts[i]);
    }
    return held;
}

// A thread that walks over the set meanwhile may miss a font or see one twice. It finds none that is no
// more, not even behind the new end, where the places keep what they had: the caller holds what goes.
void TakeOut(FcFontSet &set, const FontFiles &gone) noexcept {
    int kept = 0;
    for (int i = 0; i < set.nfont; ++i) {
        FcPattern *const font = set.fonts[i];
        if (Has(gone, font)) {
            FcPatternDestroy(font); // the reference that the set had
            continue;
        }
        if (kept != i) std::atomic_ref(set.fonts[kept]).store(font, std::memory_order_release);
        ++kept;
    }
    std::atomic_ref(set.nfont).store(kept, std::memory_order_release);
}

// Nobody has come to know these yet but who walks over the set just now.
void CutOff(FcFontSet &set, int first) noexcept {
    while (set.nfont > first) FcPatternDestroy(set.fonts[--set.nfont]);
}

// fontconfig makes the set when it is to add a file, though that be none.
FcFontSet *MakeApplicationFonts(FcConfig *config) noexcept {
    if (!FcConfigGetFonts(config, FcSetApplication)) FcConfigAppFontAddFile(config, AsFontconfig(""));
    return FcConfigGetFonts(config, FcSetApplication);
}

void Share(FcFontSet &set, FcPattern *font) noexcept {
    FcPatternReference(font);
    if (!FcFontSetAdd(&set, font)) FcPatternDestroy(font);
}

} // namespace

bool TApplicationFonts::IsIn(const FcFontSet *set, const Own &own) noexcept {
    return Has(set, own.fonts.front(), own.file);
}

bool TApplicationFonts::Follow(FcConfig *config) {
    retired_.Trim();
    // The program takes all application fonts out or none: any one of ours tells.
    const FcFontSet *set = FcConfigGetFonts(config, FcSetApplication);
    if (config == config_ && (own_.empty() || IsIn(set, own_.begin()->second))) return true;
    config_ = config;
    own_.clear();
    return false;
}

bool TApplicationFonts::SystemHas(FcConfig *config, const std::string &path) {
    return system_.Has(FcConfigGetFonts(config, FcSetSystem), path);
}

// What the set has from a place on, which must be something.
TApplicationFonts::Own TApplicationFonts::OwnFrom(const FcFontSet &set, int first) {
    Own own;
    own.fonts.assign(set.fonts + first, set.fonts + set.nfont);
    own.file = FileOf(own.fonts.front());
    own.faces = static_cast<size_t>(std::count_if(own.fonts.begin(), own.fonts.end(), IsRegularFont));
    return own;
}

void TApplicationFonts::Add(FcConfig *config, const std::string &path) {
    const FcFontSet *former = FcConfigGetFonts(config, FcSetApplication);
    if (Owns(path) || application_.Has(former, path) || !IsFontFile(path)) return;
    const int first = former ? former->nfont : 0;
    FcConfigAppFontAddFile(config, AsFontconfig(path));
    FcFontSet *const set = FcConfigGetFonts(config, FcSetApplication);
    if (!set || set->nfont == first) return;
    try {
        own_.emplace(path, OwnFrom(*set, first));
    } catch (...) { // what nobody knows for ours would never go
        CutOff(*set, first);
        throw;
    }
}

void TApplicationFonts::Remove(FcConfig *config, const std::unordered_set<std::string> &paths) {
    FontFiles gone;
    for (const std::string &path : paths) {
        const auto own = own_.find(path);
        if (own == own_.end()) continue;
        for (const FcPattern *font : own->second.fonts) gone.emplace(font, own->second.file);
    }
    if (FcFontSet *const set = FcConfigGetFonts(config, FcSetApplication)) {
        retired_.Keep(Hold(*set, gone));
        TakeOut(*set, gone);
    }
    application_ = TFontSetIndex(); // which knows fonts by where they stand
    for (const std::string &path : paths) own_.erase(path);
}

void TApplicationFonts::CopyForeign(FcConfig *from, FcConfig *into) const {
    const FcFontSet *fonts = FcConfigGetFonts(from, FcSetApplication);
    FcFontSet *const set = fonts ? MakeApplicationFonts(into) : nullptr;
    if (!set) return;
    FontFiles ours;
    for (const auto &[path, own] : own_) {
        for (const FcPattern *font : own.fonts) ours.emplace(font, own.file);
    }
    for (int i = 0; i < fonts->nfont; ++i) {
        if (!Has(ours, fonts->fonts[i])) Share(*set, fonts->fonts[i]);
    }
}

size_t TApplicationFonts::FacesOf(const std::string &path) const {
    const auto own = own_.find(path);
    return own == own_.end() ? 0 : own->second.faces;
}

} // namespace vellum::legacy
