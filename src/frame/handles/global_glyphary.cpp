// SPDX-License-Identifier: MIT
// The shared register is the font server's. Where that is ignored, and as long as this library has
// no client for it, a register in this process with the system's fonts stands in for it.
#include "frame/handles/global_glyphary.hpp"

#include "ipc/notify/change_notifications.hpp"
#include "platform/process/process.hpp"
#include "store/local_glyphary_imp.hpp"
#include "store/system_fonts.hpp"

#include <pthread.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <new>

namespace vellum {

namespace {

constinit std::atomic<const TGlypharyImp *> sRegistry{nullptr};
pthread_once_t sOnce = PTHREAD_ONCE_INIT;

// Runs once in a process; nothing may be thrown out of it, and nothing is ever torn down.
void CreateRegistry() noexcept {
    try {
        auto registry = std::make_unique<TLocalGlypharyImp>();
        RegisterSystemFontsLocally(*registry);
        if (TGlobalGlyphary::IsServerIgnored())
            KeepSharedChangesInProcess();
        else
            ObserveSharedChanges();
        sRegistry.store(registry.release(), std::memory_order_release);
    } catch (...) { // memory is exhausted: this process stays without a shared register
    }
}

} // namespace

const TGlypharyImp &TGlobalGlyphary::Registry() {
    ::pthread_once(&sOnce, CreateRegistry);
    const TGlypharyImp *registry = sRegistry.load(std::memory_order_acquire);
    if (!registry) throw std::bad_alloc();
    return *registry;
}

TGlobalGlyphary::TGlobalGlyphary() : TGlypharyHandle(Registry()) {}

bool TGlobalGlyphary::IsCreated() noexcept {
    return sRegistry.load(std::memory_order_acquire) != nullptr;
}

bool TGlobalGlyphary::IsServerIgnored() noexcept {
    const char *value = GetEnvironment("VELLUM_IGNORE_SERVER");
    return value && (std::strcmp(value, "1") == 0 || std::strcmp(value, "YES") == 0);
}

} // namespace vellum
