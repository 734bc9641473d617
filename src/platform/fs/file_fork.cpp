// SPDX-License-Identifier: MIT
#include "platform/fs/file_fork.hpp"

#include <sys/stat.h>
#include <sys/xattr.h>

namespace vellum {

namespace {

constexpr char kForkFolder[] = ".rsrc/";

} // namespace

std::string ForkFileOf(const std::string &path) {
    const size_t name = path.rfind('/') + 1;
    return path.substr(0, name) + kForkFolder + path.substr(name);
}

uint64_t ForkSize(const std::string &path) {
    if (const ssize_t size = getxattr(path.c_str(), kForkAttribute, nullptr, 0); size > 0)
        return static_cast<uint64_t>(size);
    struct stat status;
    if (stat(ForkFileOf(path).c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<uint64_t>(status.st_size);
}

} // namespace vellum
