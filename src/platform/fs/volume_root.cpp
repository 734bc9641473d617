// SPDX-License-Identifier: MIT
#include "platform/fs/volume_root.hpp"

#include <sys/stat.h>

#include <climits>
#include <cstdlib>

namespace vellum {

std::string VolumeRoot(const std::string &path) {
    char real[PATH_MAX];
    struct stat file, folder;
    if (!path.starts_with('/') || !::realpath(path.c_str(), real) || ::stat(real, &file) != 0) return {};
    std::string root = real;
    while (root != "/") {
        std::string parent = root.substr(0, root.rfind('/'));
        if (parent.empty()) parent = "/";
        if (::stat(parent.c_str(), &folder) != 0 || folder.st_dev != file.st_dev) break;
        root = std::move(parent);
    }
    return root;
}

} // namespace vellum
