// SPDX-License-Identifier: MIT
// Where the services of a user are found: local sockets in one folder, called as the services are.
#pragma once

#include "platform/fs/file.hpp"

#include <string>

namespace vellum {

// The folder of the services: vellum in $XDG_RUNTIME_DIR or, where that is not to be had, /tmp/vellum-UID.
// A folder that is not this user's alone, or is reached through a symbolic link, is none, and then this is
// empty. `make` makes it if it is not there. May throw std::bad_alloc.
enum class IfMissing { kLeave, kMake };
std::string ServicesFolder(IfMissing missing);

// A socket that is connected to a service; errno says why there is none: ENOENT when nobody has that name,
// ECONNREFUSED when somebody had. A name that would lead to another folder is nobody's.
TDescriptor ConnectToService(const char *name) noexcept;

// True when a service of that name has a socket there, alive or not.
bool ServiceHasSocket(const char *name) noexcept;

// A socket that listens under the name, without waiting, in place of what another process may have left
// there; errno says why there is none. Who may take the name over is the caller's business.
TDescriptor ListenAsService(const char *name) noexcept;

} // namespace vellum
