// SPDX-License-Identifier: MIT
#include "running_server.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace vellum::test {

int ListenForReadiness(const std::string &path) {
    sockaddr_un address = {AF_UNIX, {}};
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    ::unlink(path.c_str());
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) std::abort();
    return socket;
}

const std::string &RunningServer::SystemFolder() {
    static const std::string folder = "usr/share/fonts";
    return folder;
}

RunningServer::RunningServer() {
    const std::string runtime = home_.MakeFolder("run");
    ::chmod(runtime.c_str(), 0700);
    root_.MakeFolder(SystemFolder());
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    ::setenv("XDG_STATE_HOME", home_.File("state").c_str(), 1);
    ::setenv("XDG_DATA_HOME", home_.File("data").c_str(), 1);
    ::setenv("HOME", home_.Path().c_str(), 1);
    ::setenv("VELLUM_FONTS_ROOT", root_.Path().c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "none:", 1); // no address of a bus
    for (const char *variable : {"VELLUM_IGNORE_SERVER", "VL_SERVICE_NAME_SUFFIX", "NOTIFY_SOCKET",
                                 "LISTEN_PID", "LISTEN_FDS", "DBUS_STARTER_ADDRESS"})
        ::unsetenv(variable);
}

RunningServer::~RunningServer() {
    if (process_ > 0) Kill();
}

bool RunningServer::Start() {
    const std::string path = home_.File("ready");
    const int ready = ListenForReadiness(path);
    process_ = ::fork();
    if (process_ == 0) {
        ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
        if (prepare_ && !prepare_()) ::_exit(127);
        ::execl(VELLUM_FONTSERVER, VELLUM_FONTSERVER, "--foreground", nullptr);
        ::_exit(127);
    }
    const int process = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
    pollfd events[] = {{ready, POLLIN, 0}, {process, POLLIN, 0}};
    while (::poll(events, 2, -1) < 0) {
    }
    ::close(ready);
    ::close(process);
    if (events[0].revents & POLLIN) return true;
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
    return false;
}

int RunningServer::End(int signal) {
    int status = 0;
    ::kill(process_, signal);
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return status;
}

int RunningServer::Stop() {
    return End(SIGTERM);
}

int RunningServer::Kill() {
    return End(SIGKILL);
}

} // namespace vellum::test
