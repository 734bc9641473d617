// SPDX-License-Identifier: MIT
#include "ipc/messages/message_codec.hpp"

#include <optional>

namespace vellum {

namespace {

size_t LongestText(EArgument kind) noexcept {
    return kind == EArgument::kURL ? kLongestURL : kLongestName;
}

// A text, as it lies inline: its offset (0), its count and its bytes, both with the zero at its end, and
// zeros up to a multiple of 4.
void AppendText(OutgoingMessage &message, std::string_view text) noexcept {
    message.Append(uint32_t{0});
    message.Append(static_cast<uint32_t>(text.size() + 1));
    message.AppendBytes(text.data(), text.size());
    message.Append(uint8_t{0});
    message.Pad();
}

// Says of a message that it carries this memory.
void AppendDescriptor(OutgoingMessage &message, const OutgoingMemory &memory) noexcept {
    MachDescriptor descriptor;
    descriptor.size = static_cast<uint32_t>(memory.length);
    message.Append(descriptor);
    message.AppendMemory(memory);
}

// Reads what lies behind a header, to the byte.
class Cursor {
public:
    explicit Cursor(const IncomingMessage &message) noexcept
        : rest_(message.bytes.subspan(sizeof(MachHeader))) {}

    template <class T>
    bool Read(T &object) noexcept {
        if (rest_.size() < sizeof object) return false;
        std::memcpy(&object, rest_.data(), sizeof object);
        rest_ = rest_.subspan(sizeof object);
        return true;
    }

    bool Skip(size_t bytes) noexcept {
        if (rest_.size() < bytes) return false;
        rest_ = rest_.subspan(bytes);
        return true;
    }

    // The text of `count` bytes, of which the last is a zero, and what fills it up.
    bool ReadBytes(size_t count, std::string_view &text) noexcept {
        if (count == 0 || count > rest_.size() || rest_[count - 1] != 0) return false;
        text = reinterpret_cast<const char *>(rest_.data());
        return Skip((count + 3) / 4 * 4);
    }

    bool ReadText(size_t longest, std::string_view &text) noexcept {
        uint32_t offset = 0, count = 0;
        return Read(offset) && offset == 0 && Read(count) && count <= longest && ReadBytes(count, text);
    }

    // The count of descriptors and the descriptors, `expected` of them, which the receiver has checked, and
    // how numbers are written.
    bool ReadPrelude(const IncomingMessage &message, size_t expected) noexcept {
        const bool is_complex = message.Header().bits & kMachComplexBit;
        if (is_complex != (expected > 0) || message.memory_count != expected) return false;
        if (is_complex && !Skip(sizeof(uint32_t) + expected * sizeof(MachDescriptor))) return false;
        MachDataRepresentation written;
        return Read(written) &&
               std::memcmp(written.bytes, MachDataRepresentation().bytes, sizeof written) == 0;
    }

    bool IsAtEnd() const noexcept { return rest_.empty(); }

private:
    std::span<const uint8_t> rest_;
};

size_t CountMemory(const MessageRow &row) noexcept {
    size_t count = 0;
    for (const EArgument kind : row.arguments) count += kind == EArgument::kMemory;
    return count;
}

void AppendArgument(OutgoingMessage &message, EArgument kind, const RequestArgument &argument) noexcept {
    switch (kind) {
    case EArgument::kWord:
        return message.Append(argument.word);
    case EArgument::kMemory:
        return message.Append(static_cast<uint32_t>(argument.memory.length));
    case EArgument::kUUID:
        if (argument.text.size() != kUUIDSize - 1) return message.Spoil();
        message.AppendBytes(argument.text.data(), argument.text.size());
        message.Append(uint8_t{0});
        return message.Pad();
    default:
        if (argument.text.size() >= LongestText(kind)) return message.Spoil();
        return AppendText(message, argument.text);
    }
}

bool ReadArgument(Cursor &cursor, EArgument kind, std::span<const uint8_t> memory,
                  ReceivedArgument &argument) noexcept {
    switch (kind) {
    case EArgument::kWord:
        return cursor.Read(argument.word);
    case EArgument::kMemory:
        argument.memory = memory;
        return cursor.Read(argument.word) && argument.word == memory.size();
    case EArgument::kUUID:
        return cursor.ReadBytes(kUUIDSize, argument.text);
    default:
        return cursor.ReadText(LongestText(kind), argument.text);
    }
}

bool BringsMemory(EReply kind) noexcept {
    return kind == EReply::kMemory || kind == EReply::kMemoryAndWord;
}

// The reply of a code alone: it says why there is nothing else, or that there is nothing to say.
std::optional<MachCode> ReadCode(const IncomingMessage &message) noexcept {
    Cursor cursor(message);
    MachCode code;
    if (!cursor.ReadPrelude(message, 0) || !cursor.Read(code) || !cursor.IsAtEnd()) return std::nullopt;
    return code;
}

bool ReadMemoryReply(const MessageRow &row, const IncomingMessage &message, ReceivedReply &reply) noexcept {
    Cursor cursor(message);
    uint32_t length;
    if (!cursor.ReadPrelude(message, 1) || !cursor.Read(length) || length != message.memory[0].size())
        return false;
    if (row.reply == EReply::kMemoryAndWord && !cursor.Read(reply.word)) return false;
    reply.memory = message.memory[0];
    return cursor.IsAtEnd();
}

bool ReadInlineReply(const MessageRow &row, const IncomingMessage &message, ReceivedReply &reply) noexcept {
    Cursor cursor(message);
    MachCode code;
    if (!cursor.ReadPrelude(message, 0) || !cursor.Read(code) || code) return false;
    const bool is_read =
        row.reply == EReply::kWord ? cursor.Read(reply.word) : cursor.ReadText(kLongestURL, reply.text);
    return is_read && cursor.IsAtEnd();
}

} // namespace

OutgoingMessage WriteRequest(const MessageRow &row, PortName server, PortName reply_port,
                             std::initializer_list<RequestArgument> arguments) {
    OutgoingMessage message;
    const auto memory_count = static_cast<uint32_t>(CountMemory(row));
    MachHeader header = {kMachSimpleBits, 0, server, reply_port, 0, row.id};
    if (memory_count) header.bits |= kMachComplexBit;
    message.Append(header);
    if (memory_count) message.Append(memory_count);
    size_t at = 0;
    for (const RequestArgument &argument : arguments)
        if (row.arguments[at++] == EArgument::kMemory) AppendDescriptor(message, argument.memory);
    message.Append(MachDataRepresentation());
    at = 0;
    for (const RequestArgument &argument : arguments)
        AppendArgument(message, row.arguments[at++], argument);
    message.SetHeader(header);
    return message;
}

bool ReadRequest(const MessageRow &row, const IncomingMessage &message,
                 ReceivedArguments &arguments) noexcept {
    Cursor cursor(message);
    if (!cursor.ReadPrelude(message, CountMemory(row))) return false;
    size_t memory = 0;
    for (size_t i = 0; i < row.arguments.size() && row.arguments[i] != EArgument::kNone; ++i) {
        const EArgument kind = row.arguments[i];
        const auto bytes =
            kind == EArgument::kMemory ? message.memory[memory++] : std::span<const uint8_t>();
        if (!ReadArgument(cursor, kind, bytes, arguments[i])) return false;
    }
    return cursor.IsAtEnd();
}

OutgoingMessage WriteReply(const MessageRow *row, const MachHeader &request,
                           const OutgoingReply &reply) noexcept {
    OutgoingMessage message;
    const EReply kind = row && !reply.code ? row->reply : EReply::kNothing;
    const auto id = static_cast<int32_t>(static_cast<uint32_t>(request.id) + kReplyIDOffset); // may be any
    MachHeader header = {kMachReplyBits, 0, request.local_port, kPortNull, 0, id};
    if (BringsMemory(kind)) header.bits |= kMachComplexBit;
    message.Append(header);
    if (BringsMemory(kind)) {
        message.Append(uint32_t{1});
        AppendDescriptor(message, reply.memory);
    }
    message.Append(MachDataRepresentation());
    if (BringsMemory(kind))
        message.Append(static_cast<uint32_t>(reply.memory.length));
    else
        message.Append(reply.code);
    if (kind == EReply::kWord || kind == EReply::kMemoryAndWord) message.Append(reply.word);
    if (kind == EReply::kText)
        AppendText(message,
                   reply.text.size() < kLongestURL ? std::string_view(reply.text) : std::string_view());
    message.SetHeader(header);
    return message;
}

MachCode ReadReply(const MessageRow &row, const IncomingMessage &message, ReceivedReply &reply) noexcept {
    const MachHeader header = message.Header();
    if (header.id == kMachSendOnceNotification) return kMachServerDied;
    if (header.id != row.id + kReplyIDOffset) return kMachReplyMismatch;
    ReceivedReply read;
    if (const auto code = ReadCode(message))
        return *code == kMachSuccess && row.reply != EReply::kNothing ? kMachTypeError : *code;
    const bool is_read = BringsMemory(row.reply)
                             ? ReadMemoryReply(row, message, read)
                             : row.reply != EReply::kNothing && ReadInlineReply(row, message, read);
    if (!is_read) return kMachTypeError;
    reply = read;
    return kMachSuccess;
}

} // namespace vellum
