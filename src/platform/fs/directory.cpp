// SPDX-License-Identifier: MIT
#include "platform/fs/directory.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace vellum {

namespace {

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

DirectoryReader::DirectoryReader(const char *path) noexcept : directory_(::opendir(path)) {}

void DirectoryReader::Close::operator()(void *directory) const noexcept {
    ::closedir(static_cast<DIR *>(directory));
}

std::optional<DirectoryEntry> DirectoryReader::Next() {
    auto *directory = static_cast<DIR *>(directory_.get());
    while (const dirent *entry = directory ? ::readdir(directory) : nullptr)
        if (!IsSelfOrParent(entry->d_name))
            return DirectoryEntry{entry->d_name, IsDirectory(directory, *entry)};
    return std::nullopt;
}

std::vector<DirectoryEntry> ListDirectory(const char *path) {
    std::vector<DirectoryEntry> entries;
    DirectoryReader directory(path);
    while (auto entry = directory.Next()) entries.push_back(std::move(*entry));
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    return entries;
}

bool CanOpenDirectory(const char *path) noexcept {
    return DirectoryReader(path).IsOpen();
}

bool HasEntry(const std::string &folder, const std::string &name) {
    struct stat status;
    return ::lstat((folder + "/" + name).c_str(), &status) == 0;
}

} // namespace vellum
