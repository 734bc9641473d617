// SPDX-License-Identifier: MIT
// A program's own configuration is told from fontconfig's by the files that it was read from.
#include "current_configuration.hpp"

#include <sys/stat.h>

#include <unordered_set>

namespace vellum::legacy {
namespace {

std::unordered_set<std::string> FilesOf(FcConfig *config) {
    std::unordered_set<std::string> files;
    const std::unique_ptr<FcStrList, decltype(&FcStrListDone)> list(FcConfigGetConfigFiles(config),
                                                                    FcStrListDone);
    if (!list) return files;
    while (const FcChar8 *file = FcStrListNext(list.get())) files.emplace(AsText(file));
    return files;
}

bool IsThere(const std::string &path) noexcept {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

bool HasSameRoot(const FcConfig *a, const FcConfig *b) noexcept {
    const FcChar8 *root = FcConfigGetSysRoot(a);
    const FcChar8 *other = FcConfigGetSysRoot(b);
    return root && other ? AsText(root) == AsText(other) : root == other;
}

bool Succeeds(FcConfig *fresh, FcConfig *current) {
    const auto files = FilesOf(current);
    if (files.empty() || !HasSameRoot(fresh, current)) return false;
    const auto fresh_files = FilesOf(fresh);
    for (const std::string &file : files) {
        if (!fresh_files.contains(file) && IsThere(file)) return false;
    }
    return true;
}

} // namespace

ConfigurationRef ReadSuccessor(FcConfig *current) {
    ConfigurationRef fresh(FcInitLoadConfigAndFonts());
    if (!fresh || !Succeeds(fresh.get(), current)) return nullptr;
    FcConfigSetRescanInterval(fresh.get(), FcConfigGetRescanInterval(current));
    return fresh;
}

} // namespace vellum::legacy
