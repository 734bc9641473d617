// SPDX-License-Identifier: MIT
#include "platform/port/service_address.hpp"

#include "platform/fs/private_folder.hpp"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

namespace vellum {

namespace {

// A file's name in a folder, as a socket's address. An address holds 107 characters; a folder that is
// deeper is reached through a descriptor, which stays open until the address has been used.
class Address {
public:
    Address(const std::string &folder, const char *name) noexcept {
        const std::string_view text(name);
        if (folder.empty() || text.empty() || text.front() == '.' || text.find('/') != text.npos) return;
        if (Print("%s/%s", folder.c_str(), name)) return;
        folder_ = TDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (folder_.IsOpen()) Print("/proc/self/fd/%d/%s", folder_.Get(), name);
    }

    // False for a name that leads nowhere.
    bool IsValid() const noexcept { return address_.sun_path[0] != '\0'; }
    const char *Path() const noexcept { return address_.sun_path; }
    const sockaddr *Get() const noexcept { return reinterpret_cast<const sockaddr *>(&address_); }
    static constexpr socklen_t Size() noexcept { return sizeof(sockaddr_un); }

private:
    template <class... Arguments>
    bool Print(const char *format, Arguments... arguments) noexcept {
        const int length = std::snprintf(address_.sun_path, sizeof address_.sun_path, format, arguments...);
        const bool fits = length > 0 && static_cast<size_t>(length) < sizeof address_.sun_path;
        if (!fits) address_.sun_path[0] = '\0';
        return fits;
    }

    sockaddr_un address_ = {AF_UNIX, {}};
    TDescriptor folder_;
};

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
    const Address address(FolderOrNone(IfMissing::kLeave), name);
    errno = ENOENT;
    if (!address.IsValid()) return TDescriptor();
    TDescriptor socket = MakeSocket();
    if (!socket.IsOpen()) return socket;
    // Bounds what connecting to somebody who takes nobody in may take, and sending as well.
    const timeval limit = {patience, 0};
    ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    int result;
    do result = ::connect(socket.Get(), address.Get(), Address::Size());
    while (result != 0 && errno == EINTR);
    return result == 0 ? std::move(socket) : TDescriptor();
}

void LimitReceiving(int socket, long seconds) noexcept {
    const timeval limit = {seconds, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

bool ServiceHasSocket(const char *name) noexcept {
    const Address address(FolderOrNone(IfMissing::kLeave), name);
    struct stat status;
    return address.IsValid() && ::stat(address.Path(), &status) == 0 && S_ISSOCK(status.st_mode);
}

TDescriptor ListenAsService(const char *name) noexcept {
    const std::string folder = FolderOrNone(IfMissing::kMake);
    const Address address(folder, name);
    errno = ENOENT;
    if (!address.IsValid()) return TDescriptor();
    TDescriptor socket = MakeSocket(SOCK_NONBLOCK);
    if (!socket.IsOpen()) return socket;
    if (::unlink(address.Path()) != 0 && errno != ENOENT) return TDescriptor();
    if (::bind(socket.Get(), address.Get(), Address::Size()) != 0 || ::listen(socket.Get(), SOMAXCONN) != 0)
        return TDescriptor();
    return socket;
}

void UnlinkService(const char *name) noexcept {
    const Address address(FolderOrNone(IfMissing::kLeave), name);
    if (address.IsValid()) ::unlink(address.Path());
}

ServiceFile FindServiceFile(const char *name) noexcept {
    const Address address(FolderOrNone(IfMissing::kLeave), name);
    struct stat status;
    if (!address.IsValid() || ::lstat(address.Path(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

void UnlinkService(const char *name, const ServiceFile &file) noexcept {
    if (file != ServiceFile() && FindServiceFile(name) == file) UnlinkService(name);
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
