// SPDX-License-Identifier: MIT
// Exported functions whose rooms are not built yet; docs/architecture.md lists them. They answer
// what stands for nothing, and take nothing over from their callers.
#include <vellum/vellum.h>

VLAutoActivationSetting VLGetAutoActivationSetting(const ValString *) noexcept {
    return kVLAutoActivationDefault;
}

void VLSetAutoActivationSetting(const ValString *, VLAutoActivationSetting) noexcept {}
