// SPDX-License-Identifier: MIT
#include "running_server.hpp"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace vellum::test {

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

bool RunningServer::Start() {
    return service_.Start(VELLUM_FONTSERVER, home_.File("ready"), prepare_);
}

int RunningServer::Stop() {
    return service_.End(SIGTERM);
}

int RunningServer::Kill() {
    return service_.End(SIGKILL);
}

} // namespace vellum::test
