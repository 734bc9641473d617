// SPDX-License-Identifier: MIT
// Exported: hearing of changes.
#include "frame/exports/guard.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "ipc/notify/framework_callback.hpp"
#include "platform/loop/main_loop.hpp"
#include "platform/notify/notification_center.hpp"

using namespace vellum;

void VLSetFrameworkFontChangedCallback(uint32_t options, VLFontsChangedCallback callback) noexcept {
    if (options == 0) SetFrameworkNotificationCallback(callback);
}

bool VLAddFontsChangedObserver(void *observer, VLFontsChangedCallback callback) noexcept {
    if (!callback) return false;
    return Guard([&] {
        // The font server's client hears of other processes; without it nobody else's changes are heard.
        if (!TGlobalGlyphary::IsServerIgnored()) const TGlobalGlyphary shared_register;
        NotificationCenter::Local().AddObserver(observer, callback, kVLFontsChangedNotification);
        return true;
    });
}

void VLRemoveFontsChangedObserver(void *observer) noexcept {
    Guard([&] { NotificationCenter::Local().RemoveObserver(observer); });
}

int VLGetNotificationDescriptor() noexcept {
    return MainLoopDescriptor();
}

void VLDeliverNotifications() noexcept {
    FireMainLoopTimers();
}
