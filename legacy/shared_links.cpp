// SPDX-License-Identifier: MIT
// Links come and go for whole changes at a time.
#include "shared_links.hpp"

#include "folders.hpp"
#include "font_faces.hpp"
#include "freetype_faces.hpp"
#include "registered_links.hpp"
#include "user_list.hpp"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string_view>

namespace vellum::legacy {
namespace {

using Paths = std::set<std::string, std::less<>>;

// The folders that the system's fonts are in, but for those that are disabled.
Paths FontFolders(FcConfig *config) {
    Paths folders;
    const std::unique_ptr<FcStrList, decltype(&FcStrListDone)> list(FcConfigGetFontDirs(config),
                                                                    FcStrListDone);
    if (!list) return folders;
    while (const FcChar8 *folder = FcStrListNext(list.get())) folders.emplace(AsText(folder));
    return folders;
}

// Whether the system has a file by itself, be it disabled now: fontconfig looks into all that is below its
// folders, unless a name begins with a dot.
bool IsOfTheSystem(const Paths &folders, std::string_view path) {
    for (std::string_view folder = FolderAbove(path); !folder.empty(); folder = FolderAbove(folder)) {
        if (path[folder.size() + 1] == '.') return false;
        if (folders.contains(folder)) return true;
    }
    return false;
}

bool IsAtOrBelow(const Paths &paths, std::string_view path) {
    for (; !path.empty(); path = FolderAbove(path)) {
        if (paths.contains(path)) return true;
    }
    return false;
}

// The links to what lies in any of these, now or before they went.
std::vector<std::string> LinksInto(const Paths &folders) {
    std::vector<std::string> targets;
    if (folders.empty()) return targets;
    for (const RegisteredLink &link : RegisteredLinks()) {
        if (IsAtOrBelow(folders, link.target)) targets.push_back(link.target);
    }
    return targets;
}

} // namespace

void LinkForUser(FcConfig *config, const std::vector<FontURL> &urls) {
    const Paths folders = FontFolders(config);
    bool is_linked = false;
    for (const FontURL &url : urls) {
        if (!IsOfTheSystem(folders, url.path) && HasFonts(url.path)) is_linked |= AddLink(url.path);
    }
    if (is_linked) WriteUserConfiguration();
}

std::vector<std::string> UnlinkForUser(const std::vector<FontURL> &urls) {
    std::vector<std::string> targets;
    Paths folders;
    for (const FontURL &url : urls) {
        if (IsFontFile(url.path))
            targets.push_back(url.path);
        else
            folders.insert(url.path);
    }
    const auto below = LinksInto(folders);
    targets.insert(targets.end(), below.begin(), below.end());
    std::vector<std::string> removed;
    for (const std::string &target : targets) {
        if (RemoveLink(target)) removed.push_back(LinkPathOf(target));
    }
    if (!removed.empty()) WriteUserConfiguration();
    return removed;
}

} // namespace vellum::legacy
