// SPDX-License-Identifier: MIT
#include "service/service_lock.hpp"

#include "platform/port/service_address.hpp"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace vellum {

namespace {

// How long one that is ending, or has not begun to answer, may take, and how often to look.
constexpr std::chrono::seconds kPatience(10);
constexpr std::chrono::milliseconds kPause(10);

} // namespace

TDescriptor TakeServiceLock(const std::string &folder, const std::string &name, const std::string &socket,
                            const std::string &what) {
    const std::string path = folder + "/" + name + ".lock";
    TDescriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock.IsOpen()) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            throw std::runtime_error("cannot lock " + path + ": " + std::strerror(errno));
        if (ConnectToService(socket.c_str()).IsOpen()) throw ServiceRunsAlready(what + " runs already");
        if (std::chrono::steady_clock::now() >= end)
            throw std::runtime_error(what + " holds " + path + " and does not answer");
        std::this_thread::sleep_for(kPause);
    }
    return lock;
}

} // namespace vellum
