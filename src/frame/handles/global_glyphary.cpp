// SPDX-License-Identifier: MIT
#include "frame/handles/global_glyphary.hpp"

#include "frame/registry/generation_seed.hpp"
#include "ipc/client/font_provider.hpp"
#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/client/request_cache.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "platform/late/every_library.hpp"
#include "platform/log/log.hpp"
#include "platform/process/fork_gate.hpp"
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
constinit std::atomic<bool> sIsServers{false};                 // sRegistry is the font server's proxy
constinit std::atomic<const TGlypharyImp *> sLeft{nullptr};    // the proxy, once another took its place
constinit std::atomic<const TGlypharyImp *> sParents{nullptr}; // the parent's proxy, in a child
constinit std::atomic<uint32_t> sForks{0};                     // that sRegistry has seen
pthread_once_t sOnce = PTHREAD_ONCE_INIT;

std::unique_ptr<TGlypharyImp> MakeRegisterOfSystemFonts() {
    auto registry = std::make_unique<TLocalGlypharyImp>();
    RegisterSystemFontsLocally(*registry);
    return registry;
}

// Changes are heard of before the first answer comes: none is missed between the two.
std::unique_ptr<TGlypharyImp> MakeProxy() {
    ObserveSharedChanges();
    return std::make_unique<TGlobalGlypharyImp>();
}

// A child that was forked leaves its parent's proxy alone, which a thread of the parent's may have locked,
// and makes one of its own. Where two threads come here at once, the second has made one in vain.
void RenewProxyAfterFork() {
    const uint32_t forks = CountOfForks();
    if (sForks.load(std::memory_order_acquire) == forks) return;
    const TGlypharyImp *parents = sRegistry.load(std::memory_order_acquire);
    if (parents && sIsServers.load(std::memory_order_relaxed)) {
        ObserveAfterFork();
        TGenerationSeed::UpdateGeneration();
        std::unique_ptr<const TGlypharyImp> fresh = std::make_unique<TGlobalGlypharyImp>();
        if (sRegistry.compare_exchange_strong(parents, fresh.get(), std::memory_order_acq_rel)) {
            sParents.store(parents, std::memory_order_relaxed);
            static_cast<void>(fresh.release());
        }
    }
    sForks.store(forks, std::memory_order_release);
}

// Runs once in a process; nothing may be thrown out of it, and nothing is ever torn down.
void CreateRegistry() noexcept {
    const InLibrary inside;
    try {
        const bool is_ignored = TGlobalGlyphary::IsServerIgnored();
        auto registry = is_ignored ? MakeRegisterOfSystemFonts() : MakeProxy();
        if (is_ignored) KeepSharedChangesInProcess();
        sIsServers.store(!is_ignored, std::memory_order_relaxed);
        sForks.store(CountOfForks(), std::memory_order_relaxed);
        sRegistry.store(registry.release(), std::memory_order_release);
    } catch (...) { // memory is exhausted: this process stays without a shared register
    }
}

// Puts a register in this process in the place of the proxy, which is locked; other threads may wait for
// it. The late libraries are open.
void LeaveServer() {
    sLeft.store(sRegistry.load(std::memory_order_relaxed), std::memory_order_relaxed);
    Log(LogLevel::kError, "Could not retrieve fonts from the server! Registering system fonts locally...");
    auto registry = MakeRegisterOfSystemFonts();
    KeepSharedChangesInProcess();
    sIsServers.store(false, std::memory_order_relaxed);
    sRegistry.store(registry.release(), std::memory_order_release);
    TGenerationSeed::UpdateGeneration();
}

// What the cache has for a question, if it is a T, or what `ask` answers, which is kept. An answer that
// nothing was found is kept as well, and asked for again.
template <class T, class Ask>
Ref<const T> CachedOr(const void *question, Ask ask) {
    const TRequestCache cache;
    if (auto cached = Retain(Cast<T>(cache.CopyResultForRequest(question, 0).Get()))) return cached;
    Ref<const T> answer = ask();
    cache.AddResultForRequest(answer.Get(), question, 0);
    return answer;
}

} // namespace

const TGlypharyImp &TGlobalGlyphary::Current() const {
    if (!IsCreated()) {
        if (IsServerIgnored()) OpenEveryLibrary(); // for the system's fonts
        const OutsideLibrary waiting; // perhaps for one who waits for the server; a child begins anew
        ::pthread_once(&sOnce, CreateRegistry);
    }
    RenewProxyAfterFork();
    const TGlypharyImp *registry = sRegistry.load(std::memory_order_acquire);
    if (!registry) throw std::bad_alloc();
    return *registry;
}

TGlobalGlyphary::TGlobalGlyphary() {
    Current();
    if (sIsServers.load(std::memory_order_relaxed)) ObserveAfterFork();
}

Ref<const ValURL> TGlobalGlyphary::CopyFontForName(const ValString *name, VLScope scope) const {
    return CachedOr<ValURL>(name, [&] { return Locked().CopyFontForName(name, scope); });
}

Ref<const ValArray> TGlobalGlyphary::CopyFontsForURL(const ValURL *url, VLScope scope) const {
    return CachedOr<ValArray>(url, [&] { return Locked().CopyFontsForURL(url, scope); });
}

Ref<const ValURL> TGlobalGlyphary::CopyFontForRequest(const ValDictionary *request, VLScope scope) const {
    return CachedOr<ValURL>(request, [&] { return Locked().CopyFontForRequest(request, scope); });
}

Ref<const ValArray> TGlobalGlyphary::CopyFontsForRequest(const ValDictionary *request,
                                                         VLScope scope) const {
    return CachedOr<ValArray>(request, [&] { return Locked().CopyFontsForRequest(request, scope); });
}

// `list(register)` is asked again when another register has taken the place of the first.
template <class List>
Ref<const ValArray> TGlobalGlyphary::ListOrFallBack(List list) const {
    auto items = list(Locked());
    if (ValArrayGetCount(items.Get()) > 0 || !sIsServers.load(std::memory_order_relaxed)) return items;
    Unlock();
    OpenEveryLibrary(); // for the system's fonts
    Lock();
    if (sIsServers.load(std::memory_order_relaxed)) LeaveServer(); // no other thread has, meanwhile
    Lock();
    return list(Locked());
}

Ref<const ValArray> TGlobalGlyphary::CopyAvailableFontNames(VLScope scope) const {
    return ListOrFallBack([&](const TGlypharyImp &fonts) { return fonts.CopyAvailableFontNames(scope); });
}

Ref<const ValArray> TGlobalGlyphary::CopyAvailableFontFamilyNames(VLScope scope) const {
    return ListOrFallBack(
        [&](const TGlypharyImp &fonts) { return fonts.CopyAvailableFontFamilyNames(scope); });
}

Ref<const ValArray> TGlobalGlyphary::CopyAvailableFontURLs(VLScope scope) const {
    return ListOrFallBack([&](const TGlypharyImp &fonts) { return fonts.CopyAvailableFontURLs(scope); });
}

Ref<const ValArray> TGlobalGlyphary::CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                                uint32_t reserved) const {
    return ListOrFallBack([&](const TGlypharyImp &fonts) {
        return fonts.CopyFamilyNamesForLanguage(language, scope, reserved);
    });
}

Ref<const ValArray> TGlobalGlyphary::CopyRemoteFontProviderPorts() const {
    const auto providers = Locked().CopyRemoteFontProviders();
    Unlock();
    return OpenProviderPorts(providers.Get());
}

bool TGlobalGlyphary::IsCreated() noexcept {
    return sRegistry.load(std::memory_order_acquire) != nullptr;
}

bool TGlobalGlyphary::IsServerIgnored() noexcept {
    const char *value = GetEnvironment("VELLUM_IGNORE_SERVER");
    return value && (std::strcmp(value, "1") == 0 || std::strcmp(value, "YES") == 0);
}

} // namespace vellum
