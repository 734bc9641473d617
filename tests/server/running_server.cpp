// SPDX-License-Identifier: MIT
#include "running_server.hpp"

#include <signal.h>

#include <cstdlib>

namespace vellum::test {

const std::string &RunningServer::SystemFolder() {
    static const std::string folder = "usr/share/fonts";
    return folder;
}

RunningServer::RunningServer() {
    root_.MakeFolder(SystemFolder());
    ::setenv("VELLUM_FONTS_ROOT", root_.Path().c_str(), 1);
    ::unsetenv("VELLUM_IGNORE_SERVER");
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
