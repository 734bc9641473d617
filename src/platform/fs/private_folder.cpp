// SPDX-License-Identifier: MIT
#include "platform/fs/private_folder.hpp"

#include "platform/process/process.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vellum {

namespace {

constexpr mode_t kPrivateMode = 0700;

int CheckPrivateFolder(const std::string &path) noexcept {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return errno;
    if (!S_ISDIR(status.st_mode)) return ENOTDIR;
    return status.st_uid == ::geteuid() && (status.st_mode & 0777) == kPrivateMode ? 0 : EPERM;
}

} // namespace

int MakePrivateFolder(const std::string &path) noexcept {
    if (::mkdir(path.c_str(), kPrivateMode) != 0 && errno != EEXIST) return errno;
    return CheckPrivateFolder(path);
}

std::string UserTemporaryFolder() {
    const char *runtime = GetEnvironment("XDG_RUNTIME_DIR");
    if (!runtime || *runtime != '/') return {};
    const std::string folder = std::string(runtime) + "/vellum";
    return MakePrivateFolder(folder) == 0 ? folder : std::string();
}

} // namespace vellum
