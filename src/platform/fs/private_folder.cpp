// SPDX-License-Identifier: MIT
#include "platform/fs/private_folder.hpp"

#include "platform/process/process.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vellum {

namespace {

constexpr mode_t kPrivateMode = 0700;
constexpr mode_t kOthersWrite = 022;

// A program that runs as somebody else than its caller may have the caller's environment: what it made
// there would be in the caller's way, and the caller in its.
bool IsOfUserAlone(const std::string &folder) noexcept {
    struct stat status;
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & kOthersWrite) == 0;
}

} // namespace

int CheckPrivateFolder(const std::string &path) noexcept {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) return errno;
    if (!S_ISDIR(status.st_mode)) return ENOTDIR;
    return status.st_uid == ::geteuid() && (status.st_mode & 0777) == kPrivateMode ? 0 : EPERM;
}

int MakePrivateFolder(const std::string &path) noexcept {
    if (::mkdir(path.c_str(), kPrivateMode) != 0 && errno != EEXIST) return errno;
    return CheckPrivateFolder(path);
}

std::string UserTemporaryFolder(PrivateFolderTest test, int *error) {
    const char *runtime = GetEnvironment("XDG_RUNTIME_DIR");
    std::string folder(runtime && *runtime == '/' ? runtime : "");
    while (folder.ends_with('/')) folder.pop_back(); // behind a link's name, a slash would have it followed
    const bool is_ours = !folder.empty() && IsOfUserAlone(folder);
    folder += "/vellum";
    const int problem = is_ours ? test(folder) : ENOTDIR;
    if (error) *error = problem;
    return problem == 0 ? folder : std::string();
}

} // namespace vellum
