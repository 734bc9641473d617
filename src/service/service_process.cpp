// SPDX-License-Identifier: MIT
#include "service/service_process.hpp"

#include "platform/port/service_address.hpp"
#include "platform/process/random.hpp"

#include <signal.h>
#include <sys/resource.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace vellum {

std::string FolderForService(const ServerName &name) {
    std::string folder = ServicesFolder(IfMissing::kMake);
    if (folder.empty())
        throw std::runtime_error("there is no folder for services that is this user's alone");
    if (!name.IsValid()) throw std::runtime_error("VL_SERVICE_NAME_SUFFIX makes no name for a service");
    return folder;
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
