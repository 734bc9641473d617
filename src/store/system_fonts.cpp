// SPDX-License-Identifier: MIT
#include "store/system_fonts.hpp"

#include "platform/fs/directory.hpp"
#include "platform/process/process.hpp"
#include "values/val_str.hpp"
#include "values/val_url.hpp"

namespace vellum {

namespace {

// The roots of the two font trees of a Linux machine.
constexpr const char *kSystemFonts = "/usr/share/fonts";
constexpr const char *kLocalFonts = "/usr/local/share/fonts";

// Folders this deep below the root of a font tree are not looked into.
constexpr int kDeepestFolder = 32;

void AppendTree(std::vector<std::string> &directories, const std::string &directory, int depth) {
    directories.push_back(directory);
    if (depth == kDeepestFolder) return;
    for (const DirectoryEntry &entry : ListDirectory(directory.c_str()))
        if (entry.is_directory) AppendTree(directories, directory + "/" + entry.name, depth + 1);
}

void RegisterDirectory(TGlypharyProtocol &registry, const std::string &directory) {
    for (const DirectoryEntry &entry : ListDirectory(directory.c_str())) {
        if (entry.is_directory) continue;
        const TValURL url = TValURL::FromPath(directory + "/" + entry.name);
        if (url) registry.RegisterFont(url.Get(), nullptr, kSystemFontFlags, kVLScopeProcess);
    }
}

} // namespace

std::vector<std::string> SystemFontDirectories() {
    const char *root = GetEnvironment("VELLUM_FONTS_ROOT");
    // The paths begin with a slash already: the doubled one is kept and shows in the fonts' URLs.
    if (root && CanOpenDirectory(root))
        return {std::string(root) + "/" + kSystemFonts, std::string(root) + "/" + kLocalFonts};
    std::vector<std::string> directories;
    AppendTree(directories, kSystemFonts, 0);
    AppendTree(directories, kLocalFonts, 0);
    return directories;
}

bool IsLocalFontDirectory(const std::string &directory) {
    return directory.find(kLocalFonts) != std::string::npos;
}

void RegisterSystemFontsLocally(TGlypharyProtocol &registry) {
    for (const std::string &directory : SystemFontDirectories()) RegisterDirectory(registry, directory);
}

} // namespace vellum
