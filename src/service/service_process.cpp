// SPDX-License-Identifier: MIT
#include "service/service_process.hpp"

#include "platform/port/service_address.hpp"
#include "platform/process/random.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace vellum {

TDescriptor TakeServiceLock(const std::string &folder, const std::string &name, const char *what) {
    const std::string path = folder + "/" + name + ".lock";
    TDescriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock.IsOpen()) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    if (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error(std::string(what) + " of this name runs already");
    return lock;
}

TDescriptor ListenOrThrow(const std::string &name) {
    TDescriptor listener = ListenAsService(name.c_str());
    if (!listener.IsOpen())
        throw std::runtime_error("cannot listen as " + name + ": " + std::strerror(errno));
    return listener;
}

uint64_t MakeServiceInstance() {
    uint64_t instance = 0;
    while (instance == 0 && FillRandom(&instance, sizeof instance)) {
    }
    if (instance == 0) throw std::runtime_error("the system has no random bytes to give");
    return instance;
}

void RaiseDescriptorLimit() noexcept {
    rlimit limit;
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

TDescriptor EndingSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    return TDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

} // namespace vellum
