// SPDX-License-Identifier: MIT
#include "server/font_roots.hpp"

#include "platform/fs/folder.hpp"
#include "platform/process/process.hpp"
#include "server/shared_register.hpp"
#include "store/font_path_index.hpp"
#include "store/system_fonts.hpp"

#include <sys/statfs.h>

#include <algorithm>
#include <utility>

namespace vellum {

namespace {

// Where the user puts fonts.
std::string UserFontFolder() {
    const char *data = GetEnvironment("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + "/fonts";
    const char *home = GetEnvironment("HOME");
    return home && *home == '/' ? std::string(home) + "/.local/share/fonts" : std::string();
}

} // namespace

FontRoot *FontRoots::Find(const std::string &path) {
    const auto found = roots_.find(NormalizePath(path));
    return found == roots_.end() ? nullptr : &found->second;
}

const FontRoot *FontRoots::Over(const std::string &folder) const {
    std::string path = NormalizePath(folder);
    const size_t whole = path.size();
    while (!path.empty()) {
        const auto root = roots_.find(path);
        const bool is_over =
            root != roots_.end() && (root->second.depth == FolderDepth::kTree || path.size() == whole);
        if (is_over) return &root->second;
        path.resize(path.size() == 1 ? 0 : std::max<size_t>(path.rfind('/'), 1));
    }
    return nullptr;
}

FontRoot &FontRoots::Add(FontRoot root) {
    const FolderDepth depth = root.depth;
    std::string name = NormalizePath(root.path);
    FontRoot &known = roots_.emplace(std::move(name), std::move(root)).first->second;
    if (depth == FolderDepth::kTree) known.depth = depth;
    return known;
}

void FontRoots::Erase(const std::string &path) {
    roots_.erase(NormalizePath(path));
}

void FontRoots::AddOwn() {
    // With its own root the system has exactly the folders that it says; else whole trees, whose folders
    // are named one by one.
    const FolderDepth depth =
        GetEnvironment("VELLUM_FONTS_ROOT") ? FolderDepth::kAlone : FolderDepth::kTree;
    for (const std::string &folder : SystemFontDirectories()) {
        const uint32_t priority = IsLocalFontDirectory(folder) ? kLocalPriority : kSystemPriority;
        Add({folder, depth, priority, kSystemFontFlags});
    }
    if (const std::string own = UserFontFolder(); !own.empty())
        Add({own, FolderDepth::kTree, kUserPriority, 0});
}

FontRoot RootFor(const SavedDirectory &directory) noexcept {
    const FolderDepth depth = directory.options & 1 ? FolderDepth::kAlone : FolderDepth::kTree;
    return {directory.path, depth, kUserPriority, directory.flags, true};
}

std::string NameOfFolder(const std::string &path) {
    const std::string real = RealFolderPath(path);
    return real.empty() ? NormalizePath(path) : real;
}

bool IsOfFiles(const std::string &folder) noexcept {
    struct statfs system = {};
    if (::statfs(folder.c_str(), &system) != 0) return false;
    for (const long kind :
         {0x9fa0L /* proc */, 0x62656572L /* sys */, 0x1cd1L /* pts */, 0x27e0ebL /* cgroup */,
          0x63677270L /* cgroup 2 */, 0x64626720L /* debug */, 0x74726163L /* trace */})
        if (static_cast<long>(system.f_type) == kind) return false;
    return true;
}

bool IsBelow(const std::string &path, const std::string &folder) noexcept {
    return path.starts_with(folder) && (path[folder.size()] == '/' || folder == "/") && path != folder;
}

} // namespace vellum
