// SPDX-License-Identifier: MIT
// Datagrams to the log's sockets; each has a socket of its own for as long as it takes to send it.
#include "platform/log/system_log.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace vellum {
namespace {

class DatagramSocket {
public:
    DatagramSocket() noexcept : descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~DatagramSocket() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    DatagramSocket(const DatagramSocket &) = delete;
    DatagramSocket &operator=(const DatagramSocket &) = delete;

    bool Send(const sockaddr_un &address, std::string_view bytes) const noexcept {
        return descriptor_ >= 0 &&
               ::sendto(descriptor_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                        reinterpret_cast<const sockaddr *>(&address), sizeof address) >= 0;
    }

private:
    const int descriptor_;
};

bool Send(const char *path, const TextBuffer &datagram) noexcept {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const size_t length = std::strlen(path);
    if (datagram.Failed() || length >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, path, length);
    return DatagramSocket().Send(address, datagram.View());
}

} // namespace

bool SendToSystemLog(const LogSockets &sockets, const LogRecord &record) noexcept {
    TextBuffer journal;
    AppendJournalRecord(journal, record);
    if (Send(sockets.journal, journal)) return true;
    TextBuffer syslog;
    AppendSyslogRecord(syslog, record, std::time(nullptr));
    return Send(sockets.syslog, syslog);
}

} // namespace vellum
