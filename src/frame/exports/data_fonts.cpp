// SPDX-License-Identifier: MIT
// Exported: fonts in memory, which are always the process's own.
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "store/legacy_bridge.hpp"

using namespace vellum;

// A buffer that the register refuses is taken back from the legacy service, if it was told here.
bool VLRegisterDataFont(const ValData *data, uint32_t legacyContainer, VLFontFlags flags,
                        VLScope scope) noexcept {
    if (!data || !AsksProcess(scope)) return false;
    const uint32_t told = legacyContainer == 0 ? DoRegisterDataWithFount(data, 0, flags, scope) : 0;
    const uint32_t container = legacyContainer == 0 ? told : legacyContainer;
    const bool registered = Guard([&] {
        return ProcessRegister().RegisterDataFont(data, container, flags, scope & kScopeDataFonts);
    });
    VLScope withdrawal = kVLScopeProcess;
    if (!registered && told != 0) DoRegisterDataWithFount(data, told, flags, withdrawal);
    return registered;
}

bool VLUnregisterDataFont(const ValData *data, uint32_t, VLScope scope) noexcept {
    if (!data) return false;
    return Guard([&] {
        uint32_t container = 0;
        const bool is_registered = ProcessRegister().GetDataFont(data, &container);
        if (is_registered && container != 0) DoRegisterDataWithFount(data, container, 0, scope);
        return ProcessRegister().UnregisterDataFont(data, scope & kScopeDataFonts);
    });
}

const ValURL *VLCopyFontURLForDataFont(const ValData *data, uint32_t legacyFont) noexcept {
    if (!data && legacyFont == 0) return nullptr;
    if (legacyFont != 0) FindFountFunctions();
    return GuardCopy([&] { return ProcessRegister().CopyURLForDataFont(data, legacyFont); });
}

uint32_t VLGetDataFontFountFont(const ValURL *font) noexcept {
    if (!font) return 0;
    FindFountFunctions();
    return Guard([&] { return ProcessRegister().GetDataFontFountFont(font); });
}
