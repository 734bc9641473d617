// SPDX-License-Identifier: MIT
// Names for services, and sending them messages.
//
// A name stands for one life of a service: when that ends, the name is dead, and a new one is looked up.
// Each thread has a connection of its own to each service that it asks, on which it waits for its replies:
// no lock is held while a thread waits. A child that was forked starts without names and connections; its
// parent must have called these inside the library (fork_gate.hpp).
// All functions may be called on any thread; none throws.
#pragma once

#include "platform/port/message.hpp"

namespace vellum {

// How long a reply is waited for that an honest service gives at once.
constexpr long kReplyPatience = 4; // seconds

// Finds the service and gives it a name, which is given back by mach_port_deallocate.
// kBootstrapUnknownService, with `port` as it was, when nobody answers there.
MachCode bootstrap_look_up(const char *service, PortName &port) noexcept;

// Gives a name back; nothing for one that is none. Connections end with their names.
void mach_port_deallocate(PortName port) noexcept;

// The port on which the calling thread gets its replies; kPortNull when memory is exhausted.
PortName mig_get_reply_port() noexcept;

// Has the calling thread begin anew: late replies to what it has asked until now find nobody.
void mig_dealloc_reply_port(PortName reply_port) noexcept;

// Sends a message to the port in its header, and waits for the reply. A service that ends meanwhile gives a
// reply of its own, a header with the id kMachSendOnceNotification. The reply lies in memory of the
// thread's until its next call.
MachCode mach_msg(const OutgoingMessage &request, IncomingMessage &reply,
                  long patience = kReplyPatience) noexcept;

} // namespace vellum
