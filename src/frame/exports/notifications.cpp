// SPDX-License-Identifier: MIT
// Exported: hearing of changes.
#include "ipc/notify/framework_callback.hpp"

void VLSetFrameworkFontChangedCallback(uint32_t options, VLFontsChangedCallback callback) noexcept {
    if (options == 0) vellum::SetFrameworkNotificationCallback(callback);
}
