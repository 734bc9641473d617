// SPDX-License-Identifier: MIT
#include "platform/port/service_address.hpp"

#include "platform/fs/private_folder.hpp"
#include "platform/port/socket_address.hpp"
#include "platform/process/fork_gate.hpp"

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

namespace vellum {

namespace {

TDescriptor MakeSocket(int more_flags = 0) noexcept {
    return TDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | more_flags, 0));
}

std::string FolderOrNone(IfMissing missing) noexcept {
    try {
        return ServicesFolder(missing);
    } catch (...) { // memory is exhausted
        return {};
    }
}

} // namespace

std::string ServicesFolder(IfMissing missing) {
    const PrivateFolderTest test = missing == IfMissing::kMake ? MakePrivateFolder : CheckPrivateFolder;
    int error = 0;
    std::string folder = UserTemporaryFolder(test, &error);
    // Where there would be a folder if a service had made one, nobody looks elsewhere.
    if (error == 0 || error == ENOENT) return folder;
    folder = "/tmp/vellum-" + std::to_string(::geteuid());
    return test(folder) == 0 ? folder : std::string();
}

TDescriptor ConnectToService(const char *name, long patience) noexcept {
    const SocketAddress address(FolderOrNone(IfMissing::kLeave), name);
    errno = ENOENT;
    if (!address.IsValid()) return TDescriptor();
    TDescriptor socket = MakeSocket();
    if (!socket.IsOpen()) return socket;
    // Bounds what connecting to somebody who takes nobody in may take, and sending as well.
    const timeval limit = {patience, 0};
    ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    const OutsideLibrary waiting;
    int result;
    do result = ::connect(socket.Get(), address.Get(), SocketAddress::Size());
    while (result != 0 && errno == EINTR);
    return result == 0 ? std::move(socket) : TDescriptor();
}

void LimitReceiving(int socket, long seconds) noexcept {
    const timeval limit = {seconds, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

bool ServiceHasSocket(const char *name) noexcept {
    const SocketAddress address(FolderOrNone(IfMissing::kLeave), name);
    struct stat status;
    return address.IsValid() && ::stat(address.Path(), &status) == 0 && S_ISSOCK(status.st_mode);
}

TDescriptor ListenAsService(const char *name, IfTaken taken) noexcept {
    const std::string folder = FolderOrNone(IfMissing::kMake);
    const SocketAddress address(folder, name);
    errno = ENOENT;
    if (!address.IsValid()) return TDescriptor();
    TDescriptor socket = MakeSocket(SOCK_NONBLOCK);
    if (!socket.IsOpen()) return socket;
    if (taken == IfTaken::kReplace && ::unlink(address.Path()) != 0 && errno != ENOENT)
        return TDescriptor();
    if (::bind(socket.Get(), address.Get(), SocketAddress::Size()) != 0 ||
        ::listen(socket.Get(), SOMAXCONN) != 0)
        return TDescriptor();
    return socket;
}

ServiceFile FindServiceFile(const char *name) noexcept {
    const SocketAddress address(FolderOrNone(IfMissing::kLeave), name);
    struct stat status;
    if (!address.IsValid() || ::lstat(address.Path(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

void UnlinkService(const char *name, const ServiceFile &file) noexcept {
    const SocketAddress address(FolderOrNone(IfMissing::kLeave), name);
    if (file != ServiceFile() && FindServiceFile(name) == file) ::unlink(address.Path());
}

TDescriptor AcceptFromOwnUser(int listener, pid_t *process) noexcept {
    TDescriptor socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket.IsOpen()) return socket;
    const pid_t peer = PeerProcess(socket.Get());
    errno = EPERM;
    if (peer == 0) return TDescriptor();
    if (process) *process = peer;
    return socket;
}

pid_t PeerProcess(int socket) noexcept {
    ucred credentials = {};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) return 0;
    return credentials.uid == ::geteuid() ? credentials.pid : 0;
}

} // namespace vellum
