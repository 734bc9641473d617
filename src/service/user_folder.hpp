// SPDX-License-Identifier: MIT
// Where a service keeps its files among the user's.
#pragma once

#include <string>

namespace vellum {

// The folder vellum in the one that an environment variable names, else in that one below the user's home,
// made if it is not there. Throws std::runtime_error when there can be no such folder; `content` is what
// would be there.
std::string MakeUserFolder(const char *variable, const char *below_home, const char *content);

} // namespace vellum
