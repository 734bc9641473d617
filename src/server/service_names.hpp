// SPDX-License-Identifier: MIT
// The names under which the server is found.
#pragma once

#include "ipc/client/server_name.hpp"
#include "platform/fs/file.hpp"
#include "platform/port/service_address.hpp"

namespace vellum {

// A name that this server has taken. It is given back at the end, unless somebody else has it by then: a
// service manager may have made a socket of its own in that place.
class TakenName {
public:
    // Throws std::runtime_error.
    explicit TakenName(const ServerName &name);
    ~TakenName() { UnlinkService(name_.Get(), file_); }
    TakenName(const TakenName &) = delete;
    TakenName &operator=(const TakenName &) = delete;

    // The socket that listens, to whoever asks first.
    TDescriptor Listener() noexcept { return std::move(listener_); }

private:
    const ServerName name_;
    TDescriptor listener_;
    const ServiceFile file_;
};

} // namespace vellum
