// SPDX-License-Identifier: MIT
#include "platform/late/late_library.hpp"

#include "platform/process/passing_failures.hpp"

#include <dlfcn.h>

namespace vellum {

// Two threads may open it at once: they get the same handle.
bool LateLibrary::OpenNow() noexcept {
    void *handle = ::dlopen(name_, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) {
        ++tPassingFailures;
        return false;
    }
    handle_.store(handle, std::memory_order_release);
    return true;
}

void *LateLibrary::Find(const char *function) noexcept {
    return Open() ? ::dlsym(handle_.load(std::memory_order_acquire), function) : nullptr;
}

} // namespace vellum
