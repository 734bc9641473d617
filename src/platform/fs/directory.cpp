// SPDX-License-Identifier: MIT
#include "platform/fs/directory.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace vellum {

namespace {

struct CloseDirectory {
    void operator()(DIR *directory) const noexcept { ::closedir(directory); }
};
using OpenDirectory = std::unique_ptr<DIR, CloseDirectory>;

// Some file systems do not say in the listing what an entry is.
bool IsDirectory(DIR *parent, const dirent &entry) noexcept {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
    struct stat status;
    return ::fstatat(::dirfd(parent), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
}

bool IsSelfOrParent(const char *name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

std::vector<DirectoryEntry> ListDirectory(const char *path) {
    std::vector<DirectoryEntry> entries;
    const OpenDirectory directory(::opendir(path));
    if (!directory) return entries;
    while (const dirent *entry = ::readdir(directory.get()))
        if (!IsSelfOrParent(entry->d_name))
            entries.push_back({entry->d_name, IsDirectory(directory.get(), *entry)});
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    return entries;
}

bool CanOpenDirectory(const char *path) noexcept {
    return OpenDirectory(::opendir(path)) != nullptr;
}

} // namespace vellum
