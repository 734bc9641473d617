// SPDX-License-Identifier: MIT
// Changes of a configuration's application fonts.
#include "application_fonts.hpp"

#include "freetype_faces.hpp"

#include <set>

namespace vellum::legacy {

bool TApplicationFonts::Follow(FcConfig *config) {
    const bool is_same = config == config_;
    config_ = config;
    // The program takes all application fonts out or none: any one of ours tells.
    const FcFontSet *set = FcConfigGetFonts(config, FcSetApplication);
    if (is_same && (own_.empty() || application_.Has(set, own_.begin()->first))) return true;
    own_.clear();
    return false;
}

bool TApplicationFonts::SystemHas(FcConfig *config, const std::string &path) {
    return system_.Has(FcConfigGetFonts(config, FcSetSystem), path);
}

TApplicationFonts::Own TApplicationFonts::AddFile(FcConfig *config, const std::string &path) {
    const FcFontSet *set = FcConfigGetFonts(config, FcSetApplication);
    const int before = set ? set->nfont : 0;
    if (IsFontFile(path)) FcConfigAppFontAddFile(config, AsFontconfig(path));
    set = FcConfigGetFonts(config, FcSetApplication);
    std::set<int> faces;
    for (int i = before; set && i < set->nfont; ++i) faces.insert(IndexOf(set->fonts[i]));
    return {set ? set->nfont - before : 0, faces.size()};
}

void TApplicationFonts::Add(FcConfig *config, const std::string &path) {
    if (application_.Has(FcConfigGetFonts(config, FcSetApplication), path)) return;
    const auto [place, is_new] = own_.try_emplace(path);
    if (!is_new) return;
    place->second = AddFile(config, path);
    if (place->second.fonts == 0) own_.erase(place);
}

TApplicationFonts::Files TApplicationFonts::FilesOf(FcConfig *config) {
    Files files;
    const FcFontSet *set = FcConfigGetFonts(config, FcSetApplication);
    for (int i = 0; set && i < set->nfont; ++i) {
        std::string path(FileOf(set->fonts[i]));
        if (++files.fonts[path] == 1) files.order.push_back(std::move(path));
    }
    return files;
}

// A file that was added here may have been added by the program since: then it is there more than once.
bool TApplicationFonts::IsForeign(const Files &files, const std::string &path) const {
    const auto own = own_.find(path);
    return own == own_.end() || files.fonts.at(path) > own->second.fonts;
}

void TApplicationFonts::Remove(FcConfig *config, const std::unordered_set<std::string> &paths) {
    const Files files = FilesOf(config);
    std::vector<std::string> kept;
    for (const std::string &path : files.order) {
        if (!paths.contains(path) || IsForeign(files, path)) kept.push_back(path);
    }
    for (const std::string &path : paths) own_.erase(path);
    // From here on nothing may fail before all is back.
    FcConfigAppFontClear(config);
    for (const std::string &path : kept) {
        const auto own = own_.find(path);
        const Own added = AddFile(config, path);
        if (own == own_.end()) continue;
        if (added.fonts == 0)
            own_.erase(own);
        else
            own->second = added;
    }
}

void TApplicationFonts::CopyForeign(FcConfig *from, FcConfig *into) const {
    const Files files = FilesOf(from);
    for (const std::string &path : files.order) {
        if (IsForeign(files, path)) AddFile(into, path);
    }
}

size_t TApplicationFonts::FacesOf(const std::string &path) const {
    const auto own = own_.find(path);
    return own == own_.end() ? 0 : own->second.faces;
}

} // namespace vellum::legacy
