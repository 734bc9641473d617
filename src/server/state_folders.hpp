// SPDX-License-Identifier: MIT
// Where the server keeps what lasts.
#pragma once

#include <string>
#include <string_view>

namespace vellum {

// The file for what lasts beyond the session, of the server of this name: in the folder vellum in
// $XDG_STATE_HOME, else in ~/.local/state, which is made if it is not there. Servers with another name than
// the ordinary one have files of their own. Throws std::runtime_error when there can be no such folder.
std::string UserStateFile(std::string_view server_name);

} // namespace vellum
