// SPDX-License-Identifier: MIT
#include "platform/late/late_library.hpp"

#include "platform/log/log.hpp"
#include "platform/process/passing_failures.hpp"

#include <dlfcn.h>

namespace vellum {

// Two threads may open it at once: they find the same addresses. Those of a library that lacks a function
// are found in vain, and may be called: it stays in the process.
bool LateLibrary::OpenNow() noexcept {
    void *handle = ::dlopen(name_, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) return Fail();
    for (const Function &function : functions_) {
        void *address = ::dlsym(handle, function.name);
        if (!address) return Fail();
        function.address->store(address, std::memory_order_release);
    }
    is_open_.store(true, std::memory_order_release);
    return true;
}

// Right after the loader's function has failed.
bool LateLibrary::Fail() noexcept {
    ++tPassingFailures;
    const char *reason = ::dlerror();
    if (!is_told_.exchange(true, std::memory_order_relaxed))
        Log(LogLevel::kError, "Could not open %s: %s", name_, reason ? reason : "no reason is known");
    return false;
}

void NoteClosedLibrary() noexcept {
    ++tPassingFailures;
}

} // namespace vellum
