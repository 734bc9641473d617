// SPDX-License-Identifier: MIT
// Where the ports of processes are: among the services, called by a process's id and a port's name.
//
// Processes that do not see each other may share the folder, as containers do, and have the same ids: a
// port never takes another's place, and who asks makes sure that it is the process meant which answers.
#pragma once

#include "platform/fs/file.hpp"

#include <sys/types.h>

#include <string>

namespace vellum {

// What listens under a port's name, or nothing. Ending one closes its descriptor and does no more: it may
// be a parent's.
class PortListener {
public:
    PortListener() noexcept = default;

    // Listens for this process, without waiting; nothing when somebody else answers under the name, or the
    // system refuses. What processes that ended have left is cleared away. Throws std::bad_alloc.
    static PortListener Open(const std::string &name);

    bool IsOpen() const noexcept { return socket_.IsOpen(); }
    int Get() const noexcept { return socket_.Get(); }

    // From now on nobody can connect, in whatever process the socket is open, and the name is free.
    void Withdraw() noexcept;

private:
    TDescriptor socket_;
    std::string service_; // empty once it is withdrawn
    dev_t device_ = 0;    // of the socket's file
    ino_t file_ = 0;
};

// A connection to the port of that process, which is alive; closed when there is none, and when it is
// another process that answers there. Throws std::bad_alloc.
TDescriptor ConnectToPort(pid_t process, const std::string &name);

// Removes the sockets of ports whose processes have ended without doing so themselves, some time ago.
void RemoveDesertedPorts() noexcept;

} // namespace vellum
