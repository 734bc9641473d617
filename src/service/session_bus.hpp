// SPDX-License-Identifier: MIT
// The desktop's bus, which starts services by the names that they take there.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace vellum {

struct UnrefObject {
    void operator()(gpointer object) const noexcept { g_object_unref(object); }
};
using SessionBus = std::unique_ptr<GDBusConnection, UnrefObject>;

// The session's bus, with the name taken unless somebody else has it; null when there is no bus. Waits for
// the bus, so that nobody who has others to serve calls this.
SessionBus ConnectToSessionBus(const char *name);

// Takes the name for as long as the process lives, on a thread of its own. The name is not copied. Nothing
// where there is no thread to be had.
void TakeSessionBusName(const char *name) noexcept;

} // namespace vellum
