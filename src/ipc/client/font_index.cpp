// SPDX-License-Identifier: MIT
#include "ipc/client/font_index.hpp"

#include "ipc/client/server_name.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/index_rows.hpp"
#include "ipc/messages/message_codec.hpp"
#include "platform/port/ports.hpp"

namespace vellum {

namespace {

// A name for the service, for one question.
class Port {
public:
    Port() noexcept {
        const ServerName name(kBeaconName);
        if (name.IsValid()) bootstrap_look_up(name.Get(), port_);
    }
    ~Port() {
        if (port_ != kPortNull) mach_port_deallocate(port_);
    }
    Port(const Port &) = delete;
    Port &operator=(const Port &) = delete;

    // True for an answer that is laid out as the row says. It lies in the thread's memory.
    bool Ask(const MessageRow &row, std::initializer_list<RequestArgument> arguments,
             IncomingMessage &message, ReceivedReply &reply) const {
        if (port_ == kPortNull) return false;
        const PortName reply_port = mig_get_reply_port();
        const bool has_answer =
            mach_msg(WriteRequest(row, port_, reply_port, arguments), message) == kMachSuccess &&
            ReadReply(row, message, reply) == kMachSuccess;
        if (!has_answer) mig_dealloc_reply_port(reply_port); // what comes late is no other question's
        return has_answer;
    }

private:
    PortName port_ = kPortNull;
};

} // namespace

Ref<const ValDictionary> CopyFontIndexStatus(uint32_t patience, uint32_t changes) {
    const Port port;
    IncomingMessage message;
    ReceivedReply reply;
    if (!port.Ask(kIndexStatusRow, {patience, changes}, message, reply)) return nullptr;
    return Resurrected<ValDictionary>(reply.memory);
}

bool RebuildFontIndex() {
    const Port port;
    IncomingMessage message;
    ReceivedReply reply;
    return port.Ask(kRebuildIndexRow, {}, message, reply);
}

} // namespace vellum
