// SPDX-License-Identifier: MIT
#include "service/session_bus.hpp"

#include <system_error>
#include <thread>

namespace vellum {

namespace {

constexpr int kPatience = 1000; // milliseconds, for the bus to answer

} // namespace

SessionBus ConnectToSessionBus(const char *name) {
    SessionBus bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus) return bus;
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    constexpr guint32 kDoNotQueue = 4;
    GVariant *reply = g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, kDoNotQueue), nullptr, G_DBUS_CALL_FLAGS_NONE, kPatience, nullptr,
        nullptr);
    if (reply) g_variant_unref(reply); // who else has the name does not matter to who listens
    return bus;
}

void TakeSessionBusName(const char *name) noexcept {
    try {
        std::thread([name] {
            ConnectToSessionBus(name).release();
        }).detach(); // the process's end closes it
    } catch (const std::system_error &) {
    }
}

} // namespace vellum
