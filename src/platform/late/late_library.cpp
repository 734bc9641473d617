// SPDX-License-Identifier: MIT
#include "platform/late/late_library.hpp"

#include "platform/process/passing_failures.hpp"

#include <dlfcn.h>

namespace vellum {

// Two threads may open it at once: they find the same addresses. Those of a library that lacks a function
// are found in vain, and may be called: it stays in the process.
bool LateLibrary::OpenNow() noexcept {
    bool is_whole = false;
    if (void *handle = ::dlopen(name_, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
        is_whole = true;
        for (const Function &function : functions_) {
            void *address = ::dlsym(handle, function.name);
            if (!address) is_whole = false;
            function.address->store(address, std::memory_order_release);
        }
    }
    if (is_whole)
        is_open_.store(true, std::memory_order_release);
    else
        ++tPassingFailures;
    return is_whole;
}

void NoteClosedLibrary() noexcept {
    ++tPassingFailures;
}

} // namespace vellum
