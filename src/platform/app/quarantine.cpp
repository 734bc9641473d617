// SPDX-License-Identifier: MIT
#include "platform/app/quarantine.hpp"

#include <sys/xattr.h>

#include <cerrno>

namespace vellum {

// One that is there and may not be read counts: whoever asks wants to be on the safe side.
bool IsQuarantined(const char *path) noexcept {
    return ::getxattr(path, "user.xdg.origin.url", nullptr, 0) >= 0 || errno == EACCES || errno == EPERM;
}

} // namespace vellum
