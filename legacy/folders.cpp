// SPDX-License-Identifier: MIT
// What lies in a folder.
#include "folders.hpp"

#include <dirent.h>

#include <memory>

namespace vellum::legacy {
namespace {

struct FolderClose {
    void operator()(DIR *folder) const noexcept { closedir(folder); }
};

} // namespace

std::vector<std::string> NamesIn(const std::string &folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, FolderClose> open(opendir(folder.c_str()));
    if (!open) return names;
    while (const dirent *entry = readdir(open.get())) {
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    return names;
}

} // namespace vellum::legacy
