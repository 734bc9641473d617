// SPDX-License-Identifier: MIT
#include "frame/handles/local_glyphary.hpp"

#include "platform/late/every_library.hpp"
#include "store/bundle_fonts.hpp"

#include <pthread.h>

#include <atomic>
#include <memory>
#include <new>

namespace vellum {

namespace {

constinit std::atomic<const TLocalGlypharyImp *> sRegistry{nullptr};
pthread_once_t sOnce = PTHREAD_ONCE_INIT;

// Runs once in a process; nothing may be thrown out of it, and nothing is ever torn down.
void CreateRegistry() noexcept {
    try {
        auto registry = std::make_unique<TLocalGlypharyImp>();
        RegisterBundleFonts(*registry);
        sRegistry.store(registry.release(), std::memory_order_release);
    } catch (...) { // memory is exhausted: this process stays without a register
    }
}

} // namespace

const TLocalGlypharyImp &TLocalGlyphary::Current() const {
    ::pthread_once(&sOnce, CreateRegistry);
    const TLocalGlypharyImp *registry = sRegistry.load(std::memory_order_acquire);
    if (!registry) throw std::bad_alloc();
    return *registry;
}

TLocalGlyphary::TLocalGlyphary() {
    OpenEveryLibrary(); // the register is locked while it reads fonts
    Lock();
}

bool TLocalGlyphary::IsCreated() noexcept {
    return sRegistry.load(std::memory_order_acquire) != nullptr;
}

} // namespace vellum
