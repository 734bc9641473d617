// SPDX-License-Identifier: MIT
#include "platform/port/doorbell.hpp"

#include "platform/port/service_address.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <cerrno>

namespace vellum {

namespace {

constexpr mode_t kPrivateMode = 0600;

// Empty where there is none.
std::string PathOfBell(const char *service) noexcept {
    try {
        const std::string folder = ServicesFolder(IfMissing::kLeave), name(service);
        if (folder.empty() || name.empty() || name.front() == '.' || name.find('/') != std::string::npos)
            return {};
        return folder + "/" + name + ".bell";
    } catch (...) { // memory is exhausted
        return {};
    }
}

// Whoever comes first makes the pipe. Closed for any other file, and to write when nobody waits.
TDescriptor OpenPipe(const std::string &path, int mode) noexcept {
    TDescriptor pipe(::open(path.c_str(), mode | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
    struct stat status;
    if (!pipe.IsOpen() || ::fstat(pipe.Get(), &status) != 0 || !S_ISFIFO(status.st_mode))
        return TDescriptor();
    return pipe;
}

} // namespace

void RingDoorbell(const char *service) noexcept {
    const std::string path = PathOfBell(service);
    if (!path.empty()) OpenPipe(path, O_WRONLY);
}

Doorbell::Doorbell(const char *service) noexcept : path_(PathOfBell(service)) {
    Open();
}

void Doorbell::Open() noexcept {
    if (path_.empty() || (::mkfifo(path_.c_str(), kPrivateMode) != 0 && errno != EEXIST)) return;
    pipe_ = OpenPipe(path_, O_RDONLY);
}

// A reader who came while nobody wrote is told of a hang-up once somebody has.
bool Doorbell::Wait(std::chrono::milliseconds time) noexcept {
    const auto end = std::chrono::steady_clock::now() + time;
    pollfd entry = {pipe_.Get(), POLLIN, 0}; // a descriptor of -1 is waited for in vain
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        const int ready = ::poll(&entry, 1, static_cast<int>(left.count()));
        if (ready == 0 || (ready < 0 && errno != EINTR)) return false;
        if (ready < 0) continue;
        pipe_ = TDescriptor();
        Open();
        return true;
    }
}

} // namespace vellum
