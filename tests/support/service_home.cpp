// SPDX-License-Identifier: MIT
#include "support/service_home.hpp"

#include <sys/stat.h>

#include <cstdlib>

namespace vellum::test {

ServiceHome::ServiceHome() {
    const std::string runtime = MakeFolder("run");
    ::chmod(runtime.c_str(), 0700);
    ::setenv("HOME", Path().c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    ::setenv("XDG_CACHE_HOME", File("cache").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", File("config").c_str(), 1);
    ::setenv("XDG_DATA_HOME", File("data").c_str(), 1);
    ::setenv("XDG_STATE_HOME", File("state").c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "none:", 1); // no address of a bus
    for (const char *variable :
         {"VL_SERVICE_NAME_SUFFIX", "NOTIFY_SOCKET", "LISTEN_PID", "LISTEN_FDS", "DBUS_STARTER_ADDRESS"})
        ::unsetenv(variable);
}

} // namespace vellum::test
