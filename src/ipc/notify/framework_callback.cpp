// SPDX-License-Identifier: MIT
#include "ipc/notify/framework_callback.hpp"

#include <atomic>

namespace vellum {

namespace {

constinit std::atomic<VLFontsChangedCallback> sFrameworkFontChangedCallback{nullptr};

} // namespace

bool SetFrameworkNotificationCallback(VLFontsChangedCallback callback) noexcept {
    VLFontsChangedCallback none = nullptr;
    return sFrameworkFontChangedCallback.compare_exchange_strong(none, callback, std::memory_order_acq_rel);
}

VLFontsChangedCallback FrameworkNotificationCallback() noexcept {
    return sFrameworkFontChangedCallback.load(std::memory_order_acquire);
}

} // namespace vellum
