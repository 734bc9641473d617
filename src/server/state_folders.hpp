// SPDX-License-Identifier: MIT
// Where the server keeps what lasts.
#pragma once

#include <string>

namespace vellum {

// vellum in $XDG_STATE_HOME, else in ~/.local/state; it is made if it is not there. Throws
// std::runtime_error when it cannot be.
std::string UserStateFolder();

} // namespace vellum
