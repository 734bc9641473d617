// SPDX-License-Identifier: MIT
// Exported: fonts in memory, which are always the process's own.
#include "frame/exports/guard.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/scope.hpp"

using namespace vellum;

bool VLRegisterDataFont(const ValData *data, uint32_t legacyContainer, VLFontFlags flags,
                        VLScope scope) noexcept {
    if (!data || !AsksProcess(scope)) return false;
    return Guard([&] {
        return TLocalGlyphary().RegisterDataFont(data, legacyContainer, flags, scope & kScopeDataFonts);
    });
}

bool VLUnregisterDataFont(const ValData *data, uint32_t, VLScope scope) noexcept {
    if (!data) return false;
    return Guard([&] { return TLocalGlyphary().UnregisterDataFont(data, scope & kScopeDataFonts); });
}

const ValURL *VLCopyFontURLForDataFont(const ValData *data, uint32_t legacyFont) noexcept {
    if (!data && legacyFont == 0) return nullptr;
    return GuardCopy([&] { return TLocalGlyphary().CopyURLForDataFont(data, legacyFont); });
}

uint32_t VLGetDataFontFountFont(const ValURL *font) noexcept {
    if (!font) return 0;
    return Guard([&] { return TLocalGlyphary().GetDataFontFountFont(font); });
}
