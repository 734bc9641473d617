// SPDX-License-Identifier: MIT
#include "server/folder_reading.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace vellum {

namespace {

// The system is asked only where the owner and the mode do not tell.
bool IsReadable(const std::string &path, const struct stat &status) noexcept {
    if (status.st_uid == ::geteuid() ? status.st_mode & S_IRUSR
                                     : status.st_mode & S_IRGRP && status.st_mode & S_IROTH)
        return true;
    return ::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0;
}

} // namespace

FileState ReadFileState(const std::string &path) noexcept {
    FileState state;
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return state;
    state.is_link = S_ISLNK(status.st_mode);
    if (state.is_link && ::stat(path.c_str(), &status) != 0) return state;
    if (!S_ISREG(status.st_mode)) return state;
    state.is_file = true;
    state.is_readable = IsReadable(path, status);
    state.identity = TFileIdentity::Of(status);
    return state;
}

bool IsLinkOrHasSeveralNames(const std::string &path) noexcept {
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0 &&
           (S_ISLNK(status.st_mode) || (S_ISREG(status.st_mode) && status.st_nlink > 1));
}

bool FolderReading::ReadOn(int most) {
    for (int i = 0; i < most; ++i) {
        auto entry = reader_.Next();
        if (!entry) return false;
        (entry->is_directory ? folders_ : files_).insert(std::move(entry->name));
    }
    return true;
}

bool FolderReading::TakeFile(std::string &name) {
    if (files_.empty()) return false;
    name = std::move(files_.extract(files_.begin()).value());
    return true;
}

} // namespace vellum
