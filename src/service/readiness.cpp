// SPDX-License-Identifier: MIT
#include "service/readiness.hpp"

#include "platform/process/process.hpp"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace vellum {

namespace {

constexpr int kFirstInherited = 3; // the protocol of systemd's socket activation

bool IsListener(int descriptor) noexcept {
    int type = 0, listens = 0;
    socklen_t size = sizeof type;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) != 0 || type != SOCK_SEQPACKET)
        return false;
    size = sizeof listens;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0 && listens;
}

bool HasInherited() noexcept {
    const char *process = GetEnvironment("LISTEN_PID"), *count = GetEnvironment("LISTEN_FDS");
    return process && count && std::atol(process) == ::getpid() && std::atoi(count) == 1;
}

} // namespace

bool IsUnderServiceManager() noexcept {
    return GetEnvironment("NOTIFY_SOCKET") || HasInherited();
}

TDescriptor InheritedListener() noexcept {
    if (!HasInherited() || !IsListener(kFirstInherited)) return TDescriptor();
    ::fcntl(kFirstInherited, F_SETFD, FD_CLOEXEC);
    ::fcntl(kFirstInherited, F_SETFL, ::fcntl(kFirstInherited, F_GETFL) | O_NONBLOCK);
    return TDescriptor(kFirstInherited);
}

void SayThatItIsReady() noexcept {
    const char *path = GetEnvironment("NOTIFY_SOCKET");
    sockaddr_un address = {AF_UNIX, {}};
    const size_t length = path ? std::strlen(path) : 0;
    if (length == 0 || length >= sizeof address.sun_path || (*path != '/' && *path != '@')) return;
    std::memcpy(address.sun_path, path, length);
    if (*path == '@') address.sun_path[0] = '\0'; // a name without a file
    const TDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    constexpr char kReady[] = "READY=1";
    ::sendto(socket.Get(), kReady, sizeof kReady - 1, MSG_NOSIGNAL, reinterpret_cast<sockaddr *>(&address),
             static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length));
}

} // namespace vellum
