// SPDX-License-Identifier: MIT
// Writing files in a process that is somebody else's: one that grows past the process's limit is an error
// of the write, and not the process's end.
#pragma once

#include <signal.h>

#include <cerrno>
#include <ctime>

namespace vellum {

// While it lives, SIGXFSZ does not reach this thread; errno is kept at its end.
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

} // namespace vellum
