// SPDX-License-Identifier: MIT
// The six functions that libvellum looks up by name. No exception leaves them.
#include "font_service.hpp"

#include <vellum/fount.h>

namespace {

using vellum::legacy::ReadFontURLs;
using vellum::legacy::TFontService;

template <class Work>
void Guard(Work work) noexcept {
    try {
        work();
    } catch (...) { // there is nobody to tell: failures are ours to bear
    }
}

} // namespace

// Declared by the contract's own types, so that a definition of another type is an error.
extern "C" {
VAL_EXPORT FountRegisterURLsFunction FountRegisterURLs;
VAL_EXPORT FountEnableURLsFunction FountEnableURLs;
VAL_EXPORT FountRegisterDataFunction FountRegisterData;
VAL_EXPORT FountFontNotifyFunction FountFontNotify;
VAL_EXPORT FountFontFindFromContainerFunction FountFontFindFromContainer;
VAL_EXPORT FountFontGetContainerFunction FountFontGetContainer;
}

void FountRegisterURLs(const void *fonts, uint8_t is_array, uint8_t registers, uint32_t, VLFontFlags flags,
                       VLScope scope) {
    if (flags & kVLFontFlagSystem) return;
    Guard([&] {
        const auto urls = ReadFontURLs(fonts, is_array != 0);
        if (urls.empty()) return;
        if (registers)
            TFontService::Get().RegisterFiles(urls, scope);
        else
            TFontService::Get().WithdrawFiles(urls, scope);
    });
}

void FountEnableURLs(const void *fonts, uint8_t is_array, uint8_t enables, VLFontFlags, VLScope scope) {
    Guard([&] {
        const auto urls = ReadFontURLs(fonts, is_array != 0);
        if (!urls.empty()) TFontService::Get().EnableFonts(urls, enables != 0, scope);
    });
}

uint32_t FountRegisterData(const ValData *data, uint32_t container, VLFontFlags, VLScope) {
    uint32_t id = 0;
    Guard([&] {
        id = container
                 ? TFontService::Get().WithdrawMemory(container)
                 : TFontService::Get().RegisterMemory({ValDataGetBytes(data), ValDataGetLength(data)});
    });
    return id;
}

void FountFontNotify(uint32_t, uint32_t) {
    Guard([] { TFontService::Get().Settle(); });
}

uint32_t FountFontFindFromContainer(uint32_t container, uint32_t room, uint32_t *fonts) {
    uint32_t count = 0;
    Guard([&] { count = TFontService::Get().FontsOf(container, {fonts, fonts ? room : 0}); });
    return count;
}

uint32_t FountFontGetContainer(uint32_t font) {
    uint32_t container = 0;
    Guard([&] { container = TFontService::Get().ContainerOf(font); });
    return container;
}
