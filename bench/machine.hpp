// SPDX-License-Identifier: MIT
// A machine of a benchmark's own: folders with fonts, and a real font server that looks at nothing else.
#pragma once

#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace vellum::bench {

// A program or library that was built with this one, by its path in the build of src/.
inline std::string BuiltBeside(const std::string &path) {
    const auto build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
    return (build / "src" / path).string();
}

// Sets the environment of this process and of those that it starts.
class Machine {
public:
    explicit Machine(std::string server) : program_(std::move(server)) {
        char path[] = "/tmp/vellum-bench-XXXXXX";
        if (!::mkdtemp(path)) std::abort();
        folder_ = path;
        for (const char *name : {"run", "state", "data", "root/usr/share/fonts"})
            std::filesystem::create_directories(folder_ + "/" + name);
        ::chmod((folder_ + "/run").c_str(), 0700);
        ::setenv("XDG_RUNTIME_DIR", (folder_ + "/run").c_str(), 1);
        ::setenv("XDG_STATE_HOME", (folder_ + "/state").c_str(), 1);
        ::setenv("XDG_DATA_HOME", (folder_ + "/data").c_str(), 1);
        ::setenv("VELLUM_FONTS_ROOT", (folder_ + "/root").c_str(), 1);
        ::setenv("VL_FRAMEWORK_RESOURCES_PATH", "", 1);
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "none:", 1);
        ::unsetenv("VELLUM_IGNORE_SERVER");
        ::unsetenv("VL_SERVICE_NAME_SUFFIX");
    }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;
    ~Machine() {
        Kill();
        std::filesystem::remove_all(folder_);
    }

    const std::string &Folder() const { return folder_; }
    std::string SystemFonts() const { return folder_ + "/root/usr/share/fonts"; }
    pid_t Server() const { return server_; }

    // Starts the server; false, and said, when it does not say that it is ready.
    bool Start() {
        const std::string path = folder_ + "/ready";
        std::filesystem::remove(path);
        sockaddr_un address = {AF_UNIX, {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const int ready = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        bool is_ready = ::bind(ready, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
        if (is_ready) {
            ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
            server_ = ::fork();
            if (server_ == 0) {
                ::execl(program_.c_str(), program_.c_str(), "--foreground", nullptr);
                ::_exit(127);
            }
            char text[16];
            is_ready = ::recv(ready, text, sizeof text, 0) > 0;
            ::unsetenv("NOTIFY_SOCKET");
        }
        ::close(ready);
        if (!is_ready) std::fprintf(stderr, "%s does not start\n", program_.c_str());
        return is_ready;
    }

    void Kill() {
        if (server_ <= 0) return;
        ::kill(server_, SIGKILL);
        ::waitpid(server_, nullptr, 0);
        server_ = -1;
    }

    // Forgets all that a server has kept: the next one begins as on its first day.
    void Forget() {
        Kill();
        for (const char *name : {"run", "state"}) {
            std::filesystem::remove_all(folder_ + "/" + name);
            std::filesystem::create_directories(folder_ + "/" + name);
        }
        ::chmod((folder_ + "/run").c_str(), 0700);
    }

private:
    const std::string program_;
    std::string folder_;
    pid_t server_ = -1;
};

} // namespace vellum::bench
