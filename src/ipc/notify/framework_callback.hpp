// SPDX-License-Identifier: MIT
// The one callback that a framework above the library may install to hear of every change first.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

// False when one is installed already: the first stays for the life of the process.
bool SetFrameworkNotificationCallback(VLFontsChangedCallback callback) noexcept;

// The installed callback, or null.
VLFontsChangedCallback FrameworkNotificationCallback() noexcept;

} // namespace vellum
