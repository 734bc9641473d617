// SPDX-License-Identifier: MIT
#include "platform/port/packet.hpp"

#include "platform/port/foreign_descriptors.hpp"
#include "platform/process/fork_gate.hpp"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>

namespace vellum {

namespace {

// More than a message may bring, so that one too many is seen, and closed.
constexpr size_t kMostDescriptorsReceived = kMachMostDescriptors + 1;

using Descriptors = std::array<TDescriptor, kMostDescriptorsReceived>;
using ControlBytes = std::array<char, CMSG_SPACE(sizeof(int) * kMostDescriptorsReceived)>;

PacketResult ResultOfErrno() noexcept {
    switch (errno) {
    case EAGAIN:
#if EWOULDBLOCK != EAGAIN
    case EWOULDBLOCK:
#endif
        return PacketResult::kWouldBlock;
    case ENOBUFS:
    case ENOMEM:
    case EMFILE:
    case ENFILE:
    case ETOOMANYREFS:
        return PacketResult::kNoRoom;
    case EMSGSIZE:
    case EINVAL:
        return PacketResult::kMalformed;
    default:
        return PacketResult::kClosed;
    }
}

// What goes out in one call. The pieces are borrowed.
class OutgoingPacket {
public:
    OutgoingPacket(uint64_t instance, const OutgoingMessage &message) noexcept {
        Add(&header_, sizeof header_);
        Add(message.Bytes().data(), message.Bytes().size());
        header_ = {kPacketMagic, static_cast<uint32_t>(message.Bytes().size()), 0, 0, instance};
        for (size_t i = 0; i < message.Memory().size(); ++i) AddMemory(i, message.Memory()[i]);
    }

    PacketResult Send(int socket, bool wait) noexcept {
        if (file_count_ == 0 && size_ <= kLongestJoined) return SendJoined(socket, wait);
        msghdr header = {};
        header.msg_iov = pieces_.data();
        header.msg_iovlen = piece_count_;
        if (file_count_) AttachFiles(header);
        return Send(wait, [&](int flags) { return ::sendmsg(socket, &header, flags); });
    }

private:
    // What is no longer than this is put together here: the system takes longer to read a list of pieces
    // than it takes to copy them. Most questions and answers are.
    static constexpr size_t kLongestJoined = 512;

    PacketResult SendJoined(int socket, bool wait) noexcept {
        std::array<uint8_t, kLongestJoined> bytes;
        size_t size = 0;
        for (const iovec &piece : std::span(pieces_.data(), piece_count_)) {
            if (piece.iov_len) std::memcpy(bytes.data() + size, piece.iov_base, piece.iov_len);
            size += piece.iov_len;
        }
        return Send(wait, [&](int flags) { return ::send(socket, bytes.data(), size, flags); });
    }

    // Calls send(flags), which is sending by the system.
    template <class Call>
    static PacketResult Send(bool wait, Call send) noexcept {
        if (!wait) return Repeat(send, MSG_DONTWAIT);
        const OutsideLibrary waiting;
        return Repeat(send, 0);
    }

    template <class Call>
    static PacketResult Repeat(Call send, int flags) noexcept {
        ssize_t sent;
        do sent = send(MSG_NOSIGNAL | flags);
        while (sent < 0 && errno == EINTR);
        return sent < 0 ? ResultOfErrno() : PacketResult::kDone;
    }

    void Add(const void *bytes, size_t length) noexcept {
        pieces_[piece_count_++] = {const_cast<void *>(bytes), length};
        size_ += length;
    }

    void AddMemory(size_t index, const OutgoingMemory &memory) noexcept {
        const int file = memory.block ? memory.block->Descriptor() : -1;
        if (file >= 0) {
            files_[file_count_++] = file;
            return;
        }
        header_.enclosed |= 1U << index;
        Add(memory.Bytes().data(), memory.Bytes().size());
    }

    void AttachFiles(msghdr &header) noexcept {
        const size_t size = sizeof(int) * file_count_;
        header.msg_control = control_.data();
        header.msg_controllen = CMSG_SPACE(size);
        cmsghdr *control = CMSG_FIRSTHDR(&header);
        control->cmsg_level = SOL_SOCKET;
        control->cmsg_type = SCM_RIGHTS;
        control->cmsg_len = CMSG_LEN(size);
        std::memcpy(CMSG_DATA(control), files_.data(), size);
    }

    PacketHeader header_ = {};
    std::array<iovec, 2 + kMachMostDescriptors> pieces_;
    size_t piece_count_ = 0;
    size_t size_ = 0; // of all pieces
    std::array<int, kMachMostDescriptors> files_;
    size_t file_count_ = 0;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * kMachMostDescriptors)> control_{};
};

// The memory files that came; they are the receiver's from here on. False when anything else came, which is
// closed.
bool TakeDescriptors(msghdr &header, Descriptors &descriptors, size_t &count) noexcept {
    bool is_all_memory = true;
    count = 0;
    for (cmsghdr *control = CMSG_FIRSTHDR(&header); control; control = CMSG_NXTHDR(&header, control)) {
        if (control->cmsg_level != SOL_SOCKET || control->cmsg_type != SCM_RIGHTS) continue;
        const size_t bytes = control->cmsg_len - CMSG_LEN(0);
        for (size_t at = 0; at + sizeof(int) <= bytes; at += sizeof(int)) {
            int descriptor;
            std::memcpy(&descriptor, CMSG_DATA(control) + at, sizeof descriptor);
            TDescriptor owned(descriptor);
            if (!IsMemoryFile(descriptor)) {
                is_all_memory = false;
                CloseApart(std::move(owned));
            } else if (count < descriptors.size()) {
                descriptors[count++] = std::move(owned);
            }
        }
    }
    return is_all_memory;
}

// What a packet begins with. False unless the message that it announces is there.
bool ReadPacketHeader(std::span<const uint8_t> packet, PacketHeader &header) noexcept {
    if (packet.size() < sizeof header) return false;
    std::memcpy(&header, packet.data(), sizeof header);
    return header.magic == kPacketMagic && !header.reserved &&
           header.message_size <= packet.size() - sizeof header;
}

// A packet without a message has nothing else, either.
bool IsRefusal(const PacketHeader &header, std::span<const uint8_t> rest,
               std::span<const TDescriptor> descriptors) noexcept {
    return rest.empty() && descriptors.empty() && !header.enclosed;
}

// Whether a message has as many bytes as it says, and no more than a message may have.
bool HasOwnSize(std::span<const uint8_t> message) noexcept {
    MachHeader header;
    if (message.size() < sizeof header || message.size() > kMachLongestMessage) return false;
    std::memcpy(&header, message.data(), sizeof header);
    return header.size == message.size();
}

using StatedMemory = std::array<MachDescriptor, kMachMostDescriptors>;

// The descriptors of a message, none if it says that it has none. False when it cannot have those it says.
bool ReadDescriptors(std::span<const uint8_t> message, StatedMemory &stated, size_t &count) noexcept {
    MachHeader header;
    std::memcpy(&header, message.data(), sizeof header);
    count = 0;
    if (!(header.bits & kMachComplexBit)) return true;
    const auto body = message.subspan(sizeof header);
    uint32_t claimed;
    if (body.size() < sizeof claimed) return false;
    std::memcpy(&claimed, body.data(), sizeof claimed);
    if (claimed > kMachMostDescriptors) return false;
    const size_t bytes = claimed * sizeof(MachDescriptor);
    if (body.size() - sizeof claimed < bytes) return false;
    std::memcpy(stated.data(), body.data() + sizeof claimed, bytes);
    count = claimed;
    return true;
}

// Whether all descriptors are of memory, and of no more than the receiver takes.
bool IsWanted(std::span<const MachDescriptor> stated, uint32_t most_memory) noexcept {
    return std::ranges::all_of(stated, [=](const MachDescriptor &one) {
        return one.type == MachDescriptor().type && one.size <= most_memory;
    });
}

// Finds the memory of each descriptor: in what is left of the packet, or in the next file that came with
// it. False when it is not there, or when something is left over. What is cheap to see is seen before a
// file is mapped.
bool TakeMemory(const PacketHeader &header, std::span<const MachDescriptor> stated,
                std::span<const uint8_t> rest, std::span<const TDescriptor> files,
                IncomingMessage &message) noexcept {
    if (header.enclosed >> stated.size()) return false;
    size_t enclosed = 0, sent = 0;
    for (size_t i = 0; i < stated.size(); ++i) {
        if (header.enclosed >> i & 1)
            enclosed += stated[i].size;
        else
            ++sent;
    }
    if (enclosed != rest.size() || sent != files.size()) return false;
    for (size_t i = 0; i < stated.size(); ++i) {
        if (header.enclosed >> i & 1) {
            message.memory[i] = rest.first(stated[i].size);
            rest = rest.subspan(stated[i].size);
        } else {
            auto mapping = MemoryMapping::Create(files.front().Get(), stated[i].size);
            if (!mapping) return false;
            files = files.subspan(1);
            message.mappings[i] = std::move(*mapping);
            message.memory[i] = message.mappings[i].Bytes();
        }
    }
    return true;
}

ssize_t ReceiveInto(msghdr &header, int socket, int flags) noexcept {
    ssize_t received;
    do received = ::recvmsg(socket, &header, MSG_CMSG_CLOEXEC | flags);
    while (received < 0 && errno == EINTR);
    return received;
}

} // namespace

PacketResult SendPacket(int socket, uint64_t instance, const OutgoingMessage &message, bool wait) noexcept {
    if (!message.IsWhole()) return PacketResult::kMalformed;
    return OutgoingPacket(instance, message).Send(socket, wait);
}

PacketResult SendRefusal(int socket, uint64_t instance) noexcept {
    const PacketHeader header = {kPacketMagic, 0, 0, 0, instance};
    const ssize_t sent = ::send(socket, &header, sizeof header, MSG_NOSIGNAL | MSG_DONTWAIT);
    return sent < 0 ? ResultOfErrno() : PacketResult::kDone;
}

// As many as a socket's buffer may hold. A packet of nothing looks like the end, and may have descriptors
// all the same: both are read on.
void DiscardPackets(int socket) noexcept {
    constexpr int kMostPackets = 300;
    for (int i = 0; i < kMostPackets; ++i) {
        alignas(cmsghdr) ControlBytes control;
        msghdr header = {};
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        if (::recvmsg(socket, &header, MSG_CMSG_CLOEXEC | MSG_DONTWAIT | MSG_TRUNC) < 0) return;
        Descriptors descriptors;
        size_t count = 0;
        TakeDescriptors(header, descriptors, count);
    }
}

PacketResult PacketReceiver::Receive(int socket, bool wait, IncomingMessage &message,
                                     uint64_t &instance) noexcept {
    if (!buffer_) buffer_.reset(new (std::nothrow) uint8_t[kLongestPacket]);
    if (!buffer_) return PacketResult::kNoRoom;
    iovec piece = {buffer_.get(), kLongestPacket};
    alignas(cmsghdr) ControlBytes control;
    msghdr header = {};
    header.msg_iov = &piece;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    ssize_t received;
    if (wait) {
        const OutsideLibrary waiting;
        received = ReceiveInto(header, socket, 0);
    } else {
        received = ReceiveInto(header, socket, MSG_DONTWAIT);
    }
    if (received < 0) return ResultOfErrno();
    Descriptors descriptors;
    size_t count = 0;
    const bool is_all_memory = TakeDescriptors(header, descriptors, count);
    if (received == 0 && is_all_memory && count == 0) return PacketResult::kClosed;
    if (!is_all_memory || header.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) return PacketResult::kMalformed;
    return ParsePacket({buffer_.get(), static_cast<size_t>(received)}, {descriptors.data(), count},
                       most_memory_, message, instance)
               ? PacketResult::kDone
               : PacketResult::kMalformed;
}

bool ParsePacket(std::span<const uint8_t> packet, std::span<const TDescriptor> descriptors,
                 uint32_t most_memory, IncomingMessage &message, uint64_t &instance) noexcept {
    PacketHeader header;
    if (!ReadPacketHeader(packet, header)) return false;
    const auto rest = packet.subspan(sizeof header);
    IncomingMessage read;
    if (header.message_size == 0) {
        if (!IsRefusal(header, rest, descriptors)) return false;
    } else {
        StatedMemory stated;
        read.bytes = rest.first(header.message_size);
        if (!HasOwnSize(read.bytes) || !ReadDescriptors(read.bytes, stated, read.memory_count) ||
            !IsWanted({stated.data(), read.memory_count}, most_memory) ||
            !TakeMemory(header, {stated.data(), read.memory_count}, rest.subspan(header.message_size),
                        descriptors, read))
            return false;
    }
    message = std::move(read);
    instance = header.instance;
    return true;
}

} // namespace vellum
