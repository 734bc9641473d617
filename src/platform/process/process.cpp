// SPDX-License-Identifier: MIT
#include "platform/process/process.hpp"

#include <unistd.h>

#include <cstdlib>

namespace vellum {

uint32_t GetProcessID() noexcept {
    return static_cast<uint32_t>(::getpid());
}

const char *GetEnvironment(const char *name) noexcept {
    return ::secure_getenv(name);
}

} // namespace vellum
