// SPDX-License-Identifier: MIT
#include "server/state_folders.hpp"

#include "ipc/messages/message_rows.hpp"
#include "platform/process/process.hpp"

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace vellum {

namespace {

std::string UserStateFolder() {
    const char *state = GetEnvironment("XDG_STATE_HOME"), *home = GetEnvironment("HOME");
    std::string folder;
    if (state && *state == '/')
        folder = std::string(state) + "/vellum";
    else if (home && *home == '/')
        folder = std::string(home) + "/.local/state/vellum";
    else
        throw std::runtime_error("neither XDG_STATE_HOME nor HOME says where to keep what is registered");
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw std::runtime_error("cannot make " + folder + ": " + error.message());
    return folder;
}

} // namespace

std::string UserStateFile(std::string_view server_name) {
    const std::string name = server_name == kFontServerName ? "fonts" : std::string(server_name);
    return UserStateFolder() + "/" + name + ".db";
}

} // namespace vellum
