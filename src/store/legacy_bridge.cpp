// SPDX-License-Identifier: MIT
#include "store/legacy_bridge.hpp"

#include "ipc/session/session_manager.hpp"
#include "platform/app/loadable_bundle.hpp"
#include "platform/val/string.hpp"
#include "store/font_reference.hpp"

#include <vellum/fount.h>

#include <algorithm>
#include <atomic>
#include <vector>

namespace vellum {

namespace {

// A function of the service, looked up by name until it is found. Two threads may both look.
//
// To look up is to load code: it takes the loader's lock, and runs what the modules that are loaded do
// first, which may be a question to us. So nobody looks up with a lock held; there, Known is for.
template <class Function>
class FountFunction {
public:
    constexpr explicit FountFunction(const char *name) noexcept : name_(name) {}

    Function *Find() noexcept {
        Function *function = function_.load(std::memory_order_relaxed);
        if (function) return function;
        function = reinterpret_cast<Function *>(LoadFountFunction(name_));
        function_.store(function, std::memory_order_relaxed);
        return function;
    }

    // The function if it has been found.
    Function *Known() const noexcept { return function_.load(std::memory_order_relaxed); }

private:
    const char *const name_;
    std::atomic<Function *> function_{nullptr};
};

constinit FountFunction<FountRegisterURLsFunction> sRegisterURLs("FountRegisterURLs");
constinit FountFunction<FountEnableURLsFunction> sEnableURLs("FountEnableURLs");
constinit FountFunction<FountRegisterDataFunction> sRegisterData("FountRegisterData");
constinit FountFunction<FountFontNotifyFunction> sFontNotify("FountFontNotify");
constinit FountFunction<FountFontFindFromContainerFunction>
    sFindFromContainer("FountFontFindFromContainer");
constinit FountFunction<FountFontGetContainerFunction> sGetContainer("FountFontGetContainer");

// Calls tell(function), unless the service is not there or was told already; from now on it counts as told.
template <class Function, class Tell>
void TellOnce(Function *function, VLScope &scope, Tell tell) noexcept {
    if (scope & kVLScopeLegacyTold) return;
    if (function) tell(function);
    scope |= kVLScopeLegacyTold;
}

void TellOfFiles(FountRegisterURLsFunction *function, const void *fonts, bool is_array, bool registers,
                 VLFontFlags flags, VLScope &scope) noexcept {
    TellOnce(function, scope, [&](FountRegisterURLsFunction *tell) {
        tell(fonts, is_array, registers, 0, registers ? flags : 0, scope);
    });
}

void TellOfAvailability(const void *fonts, bool is_array, bool enables, VLFontFlags flags,
                        VLScope &scope) noexcept {
    if (scope & kVLScopeLegacyTold) return;
    TellOnce(sEnableURLs.Find(), scope,
             [&](FountEnableURLsFunction *tell) { tell(fonts, is_array, enables, flags, scope); });
}

bool IsFountThere() noexcept {
    try {
        const ValString *framework = TSessionManager().GetFrameworkDirPath();
        return framework && HasBundleCode(Text(framework));
    } catch (...) { // memory is exhausted
        return false;
    }
}

} // namespace

// A process without the service asks its folder once, not for each function.
void FindFountFunctions() noexcept {
    if (!sRegisterURLs.Known() && !IsFountThere()) return;
    sRegisterURLs.Find();
    sFindFromContainer.Find();
    sGetContainer.Find();
}

void DoRegisterURLsWithFount(const ValArray *files, bool registers, VLFontFlags flags,
                             VLScope &scope) noexcept {
    if (scope & kVLScopeLegacyTold) return;
    TellOfFiles(sRegisterURLs.Find(), files, true, registers, flags, scope);
}

void DoRegisterURLWithFount(const ValURL *file, bool registers, VLFontFlags flags,
                            VLScope &scope) noexcept {
    TellOfFiles(sRegisterURLs.Known(), file, false, registers, flags, scope);
}

void DoEnableURLsWithFount(const ValArray *fonts, bool enables, VLFontFlags flags,
                           VLScope &scope) noexcept {
    TellOfAvailability(fonts, true, enables, flags, scope);
}

void DoEnableURLWithFount(const ValURL *font, bool enables, VLFontFlags flags, VLScope &scope) noexcept {
    TellOfAvailability(font, false, enables, flags, scope);
}

uint32_t DoRegisterDataWithFount(const ValData *data, uint32_t container, VLFontFlags flags,
                                 VLScope &scope) noexcept {
    if (scope & kVLScopeLegacyTold) return 0;
    uint32_t result = 0;
    TellOnce(sRegisterData.Find(), scope,
             [&](FountRegisterDataFunction *tell) { result = tell(data, container, flags, scope); });
    scope &= ~VLScope{kVLScopeSilent};
    return result;
}

void DoNotifyFount() noexcept {
    if (FountFontNotifyFunction *notify = sFontNotify.Find()) notify(1, 0);
}

uint32_t FindFountFont(uint32_t container) noexcept {
    FountFontFindFromContainerFunction *find = container == 0 ? nullptr : sFindFromContainer.Known();
    if (!find) return 0;
    constexpr uint32_t kRoom = 8; // most containers have fewer
    uint32_t few[kRoom] = {};
    const uint32_t count = find(container, kRoom, few);
    if (count <= kRoom) return count > 0 ? few[0] : 0;
    try {
        std::vector<uint32_t> all(std::min<uint32_t>(count, kLastFontIndex + 1));
        return find(container, static_cast<uint32_t>(all.size()), all.data()) > 0 ? all[0] : 0;
    } catch (...) { // memory is exhausted
        return 0;
    }
}

uint32_t FindFountContainer(uint32_t font) noexcept {
    FountFontGetContainerFunction *get = font == 0 ? nullptr : sGetContainer.Known();
    return get ? get(font) : 0;
}

void *LoadFountFunction(const char *name) noexcept {
    try {
        const ValString *framework = TSessionManager().GetFrameworkDirPath();
        return framework ? LoadBundleSymbol(Text(framework), name) : nullptr;
    } catch (...) { // memory is exhausted
        return nullptr;
    }
}

} // namespace vellum
