// SPDX-License-Identifier: MIT
#include "platform/fs/line_file.hpp"

#include "platform/fs/file_limit_guard.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace vellum {

bool TLineFile::Open(const char *path) noexcept {
    constexpr mode_t kOwnerAlone = 0600;
    descriptor_ =
        ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, kOwnerAlone);
    struct stat status;
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) return false;
    identity_ = TFileIdentity::Of(status);
    errno = ENOTSUP;
    return S_ISREG(status.st_mode);
}

bool TLineFile::IsOurs() const noexcept {
    struct stat status;
    return ::fstat(descriptor_, &status) == 0 && status.st_dev == identity_.device &&
           status.st_ino == identity_.inode;
}

bool TLineFile::Append(std::string line) {
    if (!IsOurs()) return false;
    if (was_cut_) line.insert(line.begin(), '\n');
    line += '\n';
    const FileLimitGuard guard;
    ssize_t written = 0;
    do {
        written = ::write(descriptor_, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    if (written > 0) was_cut_ = static_cast<size_t>(written) < line.size();
    return true;
}

} // namespace vellum
