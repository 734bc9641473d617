// SPDX-License-Identifier: MIT
// Exported: what a program may want to know of the font server itself.
#include "ipc/client/server_name.hpp"
#include "platform/port/service_address.hpp"

#include <vellum/vellum.h>

bool VLFontServerAnswers() noexcept {
    const vellum::ServerName name;
    return name.IsValid() && vellum::ConnectToService(name.Get()).IsOpen();
}
