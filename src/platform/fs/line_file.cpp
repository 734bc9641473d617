// SPDX-License-Identifier: MIT
#include "platform/fs/line_file.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace vellum {

namespace {

// Keeps SIGXFSZ, which a file at its limit raises, from ending the process.
class FileLimitGuard {
public:
    FileLimitGuard() noexcept {
        ::sigemptyset(&signals_);
        ::sigaddset(&signals_, SIGXFSZ);
        ::pthread_sigmask(SIG_BLOCK, &signals_, &former_);
    }
    FileLimitGuard(const FileLimitGuard &) = delete;
    FileLimitGuard &operator=(const FileLimitGuard &) = delete;
    ~FileLimitGuard() {
        const int error = errno;
        const timespec now{};
        if (!::sigismember(&former_, SIGXFSZ)) ::sigtimedwait(&signals_, nullptr, &now);
        ::pthread_sigmask(SIG_SETMASK, &former_, nullptr);
        errno = error;
    }

private:
    sigset_t signals_{};
    sigset_t former_{};
};

} // namespace

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
