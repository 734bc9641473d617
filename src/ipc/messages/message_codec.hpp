// SPDX-License-Identifier: MIT
// Laying requests and replies out as their rows say, and reading them back. Nothing that is read is
// believed before it has been checked against the row.
#pragma once

#include "ipc/messages/message_rows.hpp"
#include "platform/port/message.hpp"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vellum {

// An argument that goes out: a word, a text (borrowed), or memory.
struct RequestArgument {
    RequestArgument(uint32_t a_word) noexcept : word(a_word) {}
    RequestArgument(std::string_view a_text) noexcept : text(a_text) {}
    RequestArgument(OutgoingMemory some_memory) noexcept : memory(std::move(some_memory)) {}

    uint32_t word = 0;
    std::string_view text;
    OutgoingMemory memory;
};

// An argument that has come in; it lies in the message.
struct ReceivedArgument {
    uint32_t word = 0;
    std::string_view text; // up to its first zero
    std::span<const uint8_t> memory;
};
using ReceivedArguments = std::array<ReceivedArgument, kMostArguments>;

// A reply that goes out. A code other than 0 says why there is nothing else.
struct OutgoingReply {
    MachCode code = kMachSuccess;
    uint32_t word = 0;
    std::string text;
    OutgoingMemory memory;
};

// A reply that has come in; it lies in the message.
struct ReceivedReply {
    uint32_t word = 0;
    std::string_view text; // up to its first zero
    std::span<const uint8_t> memory;
};

// Lays out a request, with an argument for each of the row. What cannot be sent, for a text is too long,
// leaves a message that is not whole.
OutgoingMessage WriteRequest(const MessageRow &row, PortName server, PortName reply_port,
                             std::initializer_list<RequestArgument> arguments);

// False for a request that is not laid out as its row says, to the byte.
bool ReadRequest(const MessageRow &row, const IncomingMessage &message,
                 ReceivedArguments &arguments) noexcept;

// Lays out the reply to a request with that header; `row` is null for an id that has none, which gets a
// code alone. A text that is too long goes as none.
OutgoingMessage WriteReply(const MessageRow *row, const MachHeader &request,
                           const OutgoingReply &reply) noexcept;

// The code in a reply, or what is wrong with it: kMachServerDied, kMachReplyMismatch, kMachTypeError.
// `reply` is set for 0 alone.
MachCode ReadReply(const MessageRow &row, const IncomingMessage &message, ReceivedReply &reply) noexcept;

} // namespace vellum
