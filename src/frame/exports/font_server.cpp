// SPDX-License-Identifier: MIT
// Exported: what a program may want to know of the font server itself.
#include "ipc/client/server_name.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/fork_gate.hpp"

#include <vellum/vellum.h>

using namespace vellum;

bool VLFontServerAnswers() noexcept {
    const InLibrary inside;
    const ServerName name;
    return name.IsValid() && ConnectToService(name.Get()).IsOpen();
}

// The hub's socket is always the server's own; the other may be one that a service manager listens on.
int32_t VLGetFontServerProcess() noexcept {
    const InLibrary inside;
    const ServerName hub(kNotificationHubName);
    const TDescriptor socket = hub.IsValid() ? ConnectToService(hub.Get()) : TDescriptor();
    return socket.IsOpen() ? PeerProcess(socket.Get()) : 0;
}
