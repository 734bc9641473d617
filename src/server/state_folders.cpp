// SPDX-License-Identifier: MIT
#include "server/state_folders.hpp"

#include "ipc/messages/message_rows.hpp"
#include "service/user_folder.hpp"

namespace vellum {

std::string UserStateFile(std::string_view server_name) {
    const std::string name = server_name == kFontServerName ? "fonts" : std::string(server_name);
    return MakeUserFolder("XDG_STATE_HOME", ".local/state", "what is registered") + "/" + name + ".db";
}

} // namespace vellum
