// SPDX-License-Identifier: MIT
#include "server/folder_reading.hpp"

#include <sys/stat.h>

#include <utility>

namespace vellum {

FileState ReadFileState(const std::string &path) noexcept {
    FileState state;
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return state;
    state.is_link = S_ISLNK(status.st_mode);
    if (state.is_link && ::stat(path.c_str(), &status) != 0) return state;
    if (!S_ISREG(status.st_mode)) return state;
    state.is_file = true;
    state.identity = TFileIdentity::Of(status);
    state.mode = status.st_mode;
    state.owner = status.st_uid;
    state.group = status.st_gid;
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
