// SPDX-License-Identifier: MIT
// Packets as they may come from anybody: the packet, the message in it as a request of its row and as each
// reply, the values in its memory.
#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/message_codec.hpp"
#include "platform/port/packet.hpp"

#include <cstdint>

using namespace vellum;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    IncomingMessage message;
    uint64_t instance = 0;
    if (!ParsePacket({data, size}, {}, kMostReceivedMemory, message, instance) || message.bytes.empty())
        return 0;
    ReceivedArguments arguments;
    const MessageRow *row = FindMessageRow(message.Header().id);
    if (row && ReadRequest(*row, message, arguments))
        for (const ReceivedArgument &argument : arguments) {
            Resurrected(argument.memory);
            TValResurrectContext(argument.memory.data(), argument.memory.size()).ResurrectKeys(64);
        }
    for (const MessageRow &any : kMessageRows) {
        ReceivedReply reply;
        if (ReadReply(any, message, reply) == kMachSuccess) Resurrected(reply.memory);
    }
    return 0;
}
