// SPDX-License-Identifier: MIT
#include "tools/wanted_font.hpp"

#include "tools/text.hpp"

#include <sys/xattr.h>

#include <algorithm>

namespace vellum::tool {

namespace {

constexpr VLActivationOptions kActivatesNothing =
    kVLActivationNotFromProviders | kVLActivationNotFromSearch;

Ref<const ValDictionary> RequestFor(const ValString *key, const std::string &name) {
    const auto text = Adopt(ValStringCreateWithUTF8(name.data(), name.size()));
    const void *keys[] = {key}, *values[] = {text.Get()};
    return Adopt(ValDictionaryCreate(keys, values, text ? 1 : 0));
}

std::vector<std::string> FilesOf(const Ref<const ValArray> &fonts) {
    std::vector<std::string> files;
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) {
        std::string path = PathOf(static_cast<const ValURL *>(ValArrayGetValue(fonts.Get(), i)));
        if (std::ranges::count(files, path) == 0) files.push_back(std::move(path));
    }
    return files;
}

// The files for the first kind of name under which `find(request)` has some.
template <class Find>
std::vector<std::string> FindByAnyName(const std::string &name, Find find) {
    for (const ValString *key : {kVLFontPropertyName, kVLFontPropertyFullName, kVLFontPropertyFamilyName}) {
        auto files = FilesOf(Adopt(find(RequestFor(key, name).Get())));
        if (!files.empty()) return files;
    }
    return {};
}

const char *WordFor(WantedFont::State state) {
    return state == WantedFont::State::kActive  ? "active"
           : state == WantedFont::State::kFound ? "found"
                                                : "missing";
}

} // namespace

WantedFont FindWantedFont(const std::string &name) {
    WantedFont font{name, WantedFont::State::kActive, false, {}};
    font.files = FindByAnyName(name, [](const ValDictionary *request) {
        return VLCopyFontsWithProperties(request, kVLScopeAll, kActivatesNothing);
    });
    if (!font.files.empty()) return font;
    font.state = WantedFont::State::kFound;
    font.files = FindByAnyName(name, [](const ValDictionary *request) {
        return VLCopyActivatableFonts(request, kVLActivationNotFromSearch);
    });
    font.is_offered = !font.files.empty();
    if (font.is_offered) return font;
    font.files = FindByAnyName(name, [](const ValDictionary *request) {
        return VLCopyActivatableFonts(request, kVLActivationNotFromProviders);
    });
    if (font.files.empty()) font.state = WantedFont::State::kMissing;
    return font;
}

bool IsDownloaded(const std::string &path) {
    return ::getxattr(path.c_str(), "user.xdg.origin.url", nullptr, 0) >= 0;
}

Json ToJson(const WantedFont &font) {
    Json files = Json::array();
    for (const std::string &path : font.files)
        files.push_back({{"path", path}, {"downloaded", IsDownloaded(path)}});
    return {{"name", font.name},
            {"state", WordFor(font.state)},
            {"offered", font.is_offered},
            {"files", files}};
}

} // namespace vellum::tool
