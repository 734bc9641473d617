// SPDX-License-Identifier: MIT
// Exported: what kind of process this is. A file of its own: a program may have a function of this name.
#include "platform/app/application.hpp"

#include "frame/exports/guard.hpp"

#include <vellum/vellum.h>

bool GetApplicationIsDaemon() noexcept {
    return vellum::Guard([] { return vellum::IsDaemonProcess(); });
}
