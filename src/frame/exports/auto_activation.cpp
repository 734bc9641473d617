// SPDX-License-Identifier: MIT
// Exported: whether missing fonts are found and activated.
#include "autoactivation/auto_activation_manager.hpp"
#include "frame/exports/arguments.hpp"
#include "frame/exports/guard.hpp"
#include "platform/val/static_string.hpp"

#include <vellum/vellum.h>

using namespace vellum;

namespace {

// The text layout framework above the library: what is set for it is set for all.
constinit const StaticString kLayoutFramework("com.orrery.Laydown");

// One that looks for nothing.
TAutoActivationManager IdleManager() {
    return {nullptr, true, true};
}

bool IsForAll(const ValString *application) noexcept {
    return ValEqual(application, &kLayoutFramework);
}

bool IsApplication(const ValString *application) noexcept {
    return !application || IsArgument<ValString>(application);
}

} // namespace

const ValArray *VLCopyActivatableFonts(const ValDictionary *request, VLActivationOptions options) noexcept {
    if (!IsArgument<ValDictionary>(request)) return nullptr;
    return GuardCopy([&] {
        return TAutoActivationManager(request, (options & kVLActivationNotFromProviders) != 0,
                                      (options & kVLActivationNotFromSearch) != 0)
            .CopyActivatableFonts();
    });
}

VLAutoActivationSetting VLGetAutoActivationSetting(const ValString *application) noexcept {
    if (!IsApplication(application)) return kVLAutoActivationDefault;
    return Guard([&] {
        const TAutoActivationManager manager = IdleManager();
        return IsForAll(application) ? manager.GetAutoActivationSetting()
                                     : manager.GetAutoActivationSetting(application);
    });
}

void VLSetAutoActivationSetting(const ValString *application, VLAutoActivationSetting setting) noexcept {
    if (!IsApplication(application)) return;
    Guard([&] {
        const TAutoActivationManager manager = IdleManager();
        if (IsForAll(application))
            manager.SetAutoActivationSetting(setting);
        else
            manager.SetAutoActivationSetting(application, setting);
    });
}
