// SPDX-License-Identifier: MIT
#include "platform/fs/folder.hpp"

#include <sys/stat.h>

#include <cstdlib>
#include <memory>

namespace vellum {

namespace {

struct FreePath {
    void operator()(char *path) const noexcept { std::free(path); }
};

} // namespace

bool IsFolder(std::string_view path) {
    // Behind a link's name, a slash would have it followed.
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    struct stat status;
    return ::lstat(std::string(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool LeadsToFolder(const char *path) noexcept {
    struct stat status;
    return ::stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

std::string RealFolderPath(const std::string &path) {
    const std::unique_ptr<char, FreePath> real(::realpath(path.c_str(), nullptr));
    return real && IsFolder(real.get()) ? real.get() : std::string();
}

} // namespace vellum
