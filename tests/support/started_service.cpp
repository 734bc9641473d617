// SPDX-License-Identifier: MIT
#include "support/started_service.hpp"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace vellum::test {

int ListenForReadiness(const std::string &path) {
    sockaddr_un address = {AF_UNIX, {}};
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    ::unlink(path.c_str());
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) std::abort();
    return socket;
}

bool HasEndedOrWaitsAt(pid_t process, const std::string &file) {
    const std::filesystem::path about = "/proc/" + std::to_string(process);
    std::ifstream stat(about / "stat");
    const std::string text(std::istreambuf_iterator<char>(stat), {});
    const char state = text.at(text.rfind(')') + 2);
    if (state != 'S') return state == 'Z';
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(about / "fd", error))
        if (std::filesystem::read_symlink(entry.path(), error) == file) return true;
    return false;
}

StartedService::~StartedService() {
    if (process_ > 0) End(SIGKILL);
    if (ready_ >= 0) ::close(ready_);
}

bool StartedService::Start(const char *program, const std::string &path,
                           const std::function<bool()> &prepare) {
    Begin(program, path, prepare);
    return IsReady();
}

void StartedService::Begin(const char *program, const std::string &path,
                           const std::function<bool()> &prepare) {
    ready_ = ListenForReadiness(path);
    process_ = ::fork();
    if (process_ == 0) {
        ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
        if (prepare && !prepare()) ::_exit(127);
        ::execl(program, program, "--foreground", nullptr);
        ::_exit(127);
    }
}

bool StartedService::IsReady() {
    const int process = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
    pollfd events[] = {{ready_, POLLIN, 0}, {process, POLLIN, 0}};
    while (::poll(events, 2, -1) < 0) {
    }
    ::close(std::exchange(ready_, -1));
    ::close(process);
    if (events[0].revents & POLLIN) return true;
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
    return false;
}

int StartedService::End(int signal) {
    int status = 0;
    if (process_ <= 0) return -1; // these numbers mean many processes
    ::kill(process_, signal);
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return status;
}

} // namespace vellum::test
