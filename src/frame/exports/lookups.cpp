// SPDX-License-Identifier: MIT
// Exported: finding fonts. The registers do not answer these questions yet (see
// docs/architecture.md); the way to them is the one that they will be asked on.
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"

using namespace vellum;

const ValURL *VLCopyFontWithName(const ValString *name, VLScope scope, VLActivationOptions) noexcept {
    if (!name) return nullptr;
    return GuardCopy([&] {
        return AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontForName(name, scope);
        });
    });
}

const ValURL *VLCopyFontWithProperties(const ValDictionary *request, VLScope scope,
                                       VLActivationOptions) noexcept {
    if (!request) return nullptr;
    return GuardCopy([&] {
        return AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontForRequest(request, scope);
        });
    });
}

const ValArray *VLCopyFontsWithProperties(const ValDictionary *request, VLScope scope,
                                          VLActivationOptions) noexcept {
    if (!request) return nullptr;
    return GuardCopy([&] {
        return AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontsForRequest(request, scope);
        });
    });
}

const ValURL *VLCopyFontForCharacter(uint32_t character, VLScope scope, uint32_t reserved) noexcept {
    return GuardCopy([&] {
        return AskProcessThenShared(scope, [&](const TGlypharyProtocol &registry) {
            return registry.CopyFontForCharacter(character, scope, reserved);
        });
    });
}
