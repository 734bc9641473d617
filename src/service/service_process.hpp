// SPDX-License-Identifier: MIT
// What every service of a user is as a process: it has sockets, and is ended by a signal.
#pragma once

#include "ipc/client/server_name.hpp"
#include "platform/fs/file.hpp"

#include <cstdint>
#include <string>

namespace vellum {

// The folder in which a service has its sockets, made if it is not there. Throws std::runtime_error where
// there is none, and where the session's suffix makes no name for the service.
std::string FolderForService(const ServerName &name);

// A socket that listens under the name of a service. Throws std::runtime_error.
TDescriptor ListenOrThrow(const std::string &name);

// What this life of a service is called, never 0. Throws std::runtime_error.
uint64_t MakeServiceInstance();

// Each thread of a client has a descriptor in a service.
void RaiseDescriptorLimit() noexcept;

// The signals that end the program, as a descriptor; from then on they do nothing else.
TDescriptor EndingSignals();

} // namespace vellum
