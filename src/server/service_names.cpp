// SPDX-License-Identifier: MIT
#include "server/service_names.hpp"

#include "ipc/messages/notification_rows.hpp"

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

// The hub's socket is always the server's own: nobody else listens there in its stead.
bool SomebodyAnswers() noexcept {
    return ConnectToService(ServerName(kNotificationHubName).Get()).IsOpen();
}

} // namespace

TDescriptor TakeRightToNames(const std::string &folder) {
    const std::string path = folder + "/" + ServerName().Get() + ".lock";
    TDescriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock.IsOpen()) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            throw std::runtime_error("cannot lock " + path + ": " + std::strerror(errno));
        if (SomebodyAnswers()) throw ServerRunsAlready();
        if (std::chrono::steady_clock::now() >= end)
            throw std::runtime_error("another font server holds " + path + " and does not answer");
        std::this_thread::sleep_for(kPause);
    }
    return lock;
}

TakenName::TakenName(const ServerName &name)
    : name_(name), listener_(ListenAsService(name.Get())), file_(FindServiceFile(name.Get())) {
    if (!listener_.IsOpen())
        throw std::runtime_error("cannot listen as " + std::string(name.Get()) + ": " +
                                 std::strerror(errno));
}

} // namespace vellum
