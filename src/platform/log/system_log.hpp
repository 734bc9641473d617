// SPDX-License-Identifier: MIT
// The log of the system, as the sockets on which it takes records.
#pragma once

#include "platform/log/log_record.hpp"

namespace vellum {

// The places of the journal's socket and of syslog's (borrowed).
struct LogSockets {
    const char *journal = "/run/systemd/journal/socket";
    const char *syslog = "/dev/log";
};

// Sends a record to the journal, or where that does not take it, to syslog. It never waits: a socket
// whose queue is full takes nothing. That is why this is not syslog(3), which waits for a logger that
// hangs, and which keeps a socket and the program's own settings. True when the record was taken.
bool SendToSystemLog(const LogSockets &sockets, const LogRecord &record) noexcept;

} // namespace vellum
