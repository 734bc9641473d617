// SPDX-License-Identifier: MIT
#include "platform/port/port_address.hpp"

#include "platform/port/service_address.hpp"
#include "platform/port/socket_address.hpp"
#include "platform/process/process.hpp"

#include <dirent.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <memory>
#include <string_view>

namespace vellum {

namespace {

std::string ServiceOf(pid_t process, const std::string &name) {
    return std::to_string(process) + "." + name;
}

// The process that a port's file names; 0 for another file.
pid_t ProcessOf(std::string_view file) noexcept {
    pid_t process = 0;
    const auto [end, error] = std::from_chars(file.data(), file.data() + file.size(), process);
    const bool is_port = error == std::errc() && end != file.data() + file.size() && *end == '.';
    return is_port ? process : 0;
}

// True as well for one that has ended and that its parent has not looked after yet.
bool IsGone(pid_t process) noexcept {
    const TDescriptor life(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    pollfd end = {life.Get(), POLLIN, 0};
    return life.IsOpen() ? ::poll(&end, 1, 0) == 1 : errno == ESRCH;
}

// Whether nobody listens on a socket's file. One that listens and has no room does.
bool IsDeserted(const SocketAddress &address) noexcept {
    const TDescriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return socket.IsOpen() && ::connect(socket.Get(), address.Get(), SocketAddress::Size()) != 0 &&
           errno == ECONNREFUSED;
}

// A socket has its file before it listens, in a process that may not be seen from here: a young one is
// left.
constexpr time_t kYouth = 60; // seconds

bool IsOld(const SocketAddress &address) noexcept {
    struct stat status;
    return ::lstat(address.Path(), &status) == 0 && S_ISSOCK(status.st_mode) &&
           ::time(nullptr) - status.st_mtime > kYouth;
}

std::string FolderOfPorts() noexcept {
    try {
        return ServicesFolder(IfMissing::kLeave);
    } catch (...) { // memory is exhausted
        return {};
    }
}

// A file of this process's own name was left by one that had its id before, unless somebody answers.
TDescriptor Listen(const char *service) noexcept {
    TDescriptor socket = ListenAsService(service, IfTaken::kLeave);
    if (socket.IsOpen() || errno != EADDRINUSE) return socket;
    const SocketAddress address(FolderOfPorts(), service);
    return IsDeserted(address) ? ListenAsService(service, IfTaken::kReplace) : TDescriptor();
}

} // namespace

PortListener PortListener::Open(const std::string &name) {
    RemoveDesertedPorts();
    PortListener port;
    port.service_ = ServiceOf(static_cast<pid_t>(GetProcessID()), name);
    port.socket_ = Listen(port.service_.c_str());
    const SocketAddress address(FolderOfPorts(), port.service_.c_str());
    struct stat status;
    if (port.IsOpen() && ::lstat(address.Path(), &status) == 0) {
        port.device_ = status.st_dev;
        port.file_ = status.st_ino;
    }
    return port;
}

void PortListener::Withdraw() noexcept {
    if (service_.empty()) return;
    ::shutdown(socket_.Get(), SHUT_RDWR);
    const SocketAddress address(FolderOfPorts(), service_.c_str());
    service_.clear();
    struct stat status;
    if (address.IsValid() && ::lstat(address.Path(), &status) == 0 && status.st_dev == device_ &&
        status.st_ino == file_)
        ::unlink(address.Path());
}

TDescriptor ConnectToPort(pid_t process, const std::string &name) {
    TDescriptor socket = ConnectToService(ServiceOf(process, name).c_str());
    // A child of a process that has ended may keep its port open, and never answers there.
    const bool is_right = socket.IsOpen() && PeerProcess(socket.Get()) == process && !IsGone(process);
    return is_right ? std::move(socket) : TDescriptor();
}

void RemoveDesertedPorts() noexcept {
    const std::string folder = FolderOfPorts();
    const std::unique_ptr<DIR, int (*)(DIR *)> files(folder.empty() ? nullptr : ::opendir(folder.c_str()),
                                                     ::closedir);
    if (!files) return;
    while (const dirent *file = ::readdir(files.get())) {
        const pid_t process = ProcessOf(file->d_name);
        if (process <= 0 || !IsGone(process)) continue;
        const SocketAddress address(folder, file->d_name);
        if (address.IsValid() && IsOld(address) && IsDeserted(address)) ::unlink(address.Path());
    }
}

} // namespace vellum
