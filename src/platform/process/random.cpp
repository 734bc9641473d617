// SPDX-License-Identifier: MIT
#include "platform/process/random.hpp"

#include <sys/random.h>

#include <cerrno>
#include <cstring>

namespace vellum {

bool FillRandom(void *memory, size_t size) noexcept {
    unsigned char bytes[64]; // so few come all at once
    if (size > sizeof bytes) return false;
    ssize_t filled;
    do {
        filled = ::getrandom(bytes, size, 0);
    } while (filled < 0 && errno == EINTR);
    if (filled != static_cast<ssize_t>(size)) return false;
    std::memcpy(memory, bytes, size);
    return true;
}

} // namespace vellum
