// SPDX-License-Identifier: MIT
// Where the services of a user are found: local sockets in one folder, called as the services are.
#pragma once

#include "platform/fs/file.hpp"

#include <sys/types.h>

#include <string>

namespace vellum {

// The folder of the services: vellum in $XDG_RUNTIME_DIR or, where that is not to be had, /tmp/vellum-UID.
// A folder that is not this user's alone, or is reached through a symbolic link, is none, and then this is
// empty. `make` makes it if it is not there. May throw std::bad_alloc.
enum class IfMissing { kLeave, kMake };
std::string ServicesFolder(IfMissing missing);

// How long connecting to a service may take, and each sending to it, until there is room.
constexpr long kSendPatience = 3; // seconds

// A socket that is connected to a service; errno says why there is none: ENOENT when nobody has that name,
// ECONNREFUSED when somebody had, EAGAIN when nobody was taken in within so many seconds, which is also how
// long sending may take. A name that would lead to another folder is nobody's.
TDescriptor ConnectToService(const char *name, long patience = kSendPatience) noexcept;

// Bounds what receiving on a connection may take, until something is there; 0 sets no bound.
void LimitReceiving(int socket, long seconds) noexcept;

// True when a service of that name has a socket there, alive or not.
bool ServiceHasSocket(const char *name) noexcept;

// A socket that listens under the name, without waiting; errno says why there is none. What another process
// may have there is replaced, and who may do that is the caller's business; or it is left, with EADDRINUSE.
enum class IfTaken { kReplace, kLeave };
TDescriptor ListenAsService(const char *name, IfTaken taken = IfTaken::kReplace) noexcept;

// The file of a service's socket, by which it is known again. Of no file when there is none.
struct ServiceFile {
    dev_t device = 0;
    ino_t number = 0;

    bool operator==(const ServiceFile &) const = default;
};
ServiceFile FindServiceFile(const char *name) noexcept;

// Takes a service's name back if the socket there is still that one.
void UnlinkService(const char *name, const ServiceFile &file) noexcept;

// Takes in the next who connects to a listening socket, in a socket that does not wait. Closed when nobody
// is there, or one who is another user's; errno says which. `process` gets the id of who it is.
TDescriptor AcceptFromOwnUser(int listener, pid_t *process = nullptr) noexcept;

// The process at the other end of a connection; 0 when it is another user's.
pid_t PeerProcess(int socket) noexcept;

} // namespace vellum
