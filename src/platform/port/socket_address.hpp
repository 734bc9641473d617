// SPDX-License-Identifier: MIT
// A file's name in a folder, as the address of a local socket.
#pragma once

#include "platform/fs/file.hpp"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace vellum {

// An address holds 107 characters; a folder that is deeper is reached through a descriptor, which stays
// open until the address has been used.
class SocketAddress {
public:
    SocketAddress(const std::string &folder, const char *name) noexcept {
        const std::string_view text(name);
        if (folder.empty() || text.empty() || text.front() == '.' || text.find('/') != text.npos) return;
        if (Print("%s/%s", folder.c_str(), name)) return;
        folder_ = TDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (folder_.IsOpen()) Print("/proc/self/fd/%d/%s", folder_.Get(), name);
    }

    // False for a name that leads nowhere.
    bool IsValid() const noexcept { return address_.sun_path[0] != '\0'; }
    const char *Path() const noexcept { return address_.sun_path; }
    const sockaddr *Get() const noexcept { return reinterpret_cast<const sockaddr *>(&address_); }
    static constexpr socklen_t Size() noexcept { return sizeof(sockaddr_un); }

private:
    template <class... Arguments>
    bool Print(const char *format, Arguments... arguments) noexcept {
        const int length = std::snprintf(address_.sun_path, sizeof address_.sun_path, format, arguments...);
        const bool fits = length > 0 && static_cast<size_t>(length) < sizeof address_.sun_path;
        if (!fits) address_.sun_path[0] = '\0';
        return fits;
    }

    sockaddr_un address_ = {AF_UNIX, {}};
    TDescriptor folder_;
};

} // namespace vellum
