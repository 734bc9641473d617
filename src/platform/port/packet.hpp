// SPDX-License-Identifier: MIT
// How a message travels: as one packet of a local socket.
//
// A packet is a PacketHeader, the message as it lies, and the memory of its descriptors, one behind the
// other. Memory of which the sender has a sealed file is not in the packet: the file's descriptor goes with
// it, and the receiver maps it. Neither end sees a difference.
#pragma once

#include "platform/fs/file.hpp"
#include "platform/port/message.hpp"

#include <cstdint>
#include <memory>
#include <span>

namespace vellum {

struct PacketHeader {
    uint32_t magic;
    uint32_t message_size;
    uint32_t enclosed; // bit n: the memory of descriptor n is in the packet
    uint32_t reserved; // 0
    uint64_t instance; // to a service: which life of it is meant, 0 for any; from one: which it is
};
static_assert(sizeof(PacketHeader) == 24);

constexpr uint32_t kPacketMagic = 0x314d4c56; // "VLM1"

// The longest packet; what is longer travels in files. The default bound of a socket's buffer is 212,992.
constexpr size_t kLongestPacket = size_t{160} << 10;

// The most memory that one descriptor may bring, to those who set themselves no other bound.
constexpr uint32_t kMostReceivedMemory = uint32_t{1} << 28;

enum class PacketResult {
    kDone,
    kWouldBlock, // nothing is there, or there is no room yet
    kClosed,     // by the other end
    kNoRoom,     // the system has no memory or no descriptors for it
    kMalformed,  // what came is no message, or what is to be sent is none
};

// Sends one packet without raising a signal. `wait` waits for room.
PacketResult SendPacket(int socket, uint64_t instance, const OutgoingMessage &message, bool wait) noexcept;

// Sends a packet without a message: a service refuses what was sent to another life of it.
PacketResult SendRefusal(int socket, uint64_t instance) noexcept;

// Throws away what has come and has not been received.
void DiscardPackets(int socket) noexcept;

// Receives packets into one buffer, which is made at the first.
class PacketReceiver {
public:
    // `most_memory` is what one descriptor may bring.
    explicit PacketReceiver(uint32_t most_memory = kMostReceivedMemory) noexcept
        : most_memory_(most_memory) {}

    // `message` and `instance` are set when a message has come; it is valid until the next call. A packet
    // that is kMalformed says nothing about the next ones, but nobody honest sends one. A refusal gives a
    // message without bytes.
    PacketResult Receive(int socket, bool wait, IncomingMessage &message, uint64_t &instance) noexcept;

private:
    const uint32_t most_memory_;
    std::unique_ptr<uint8_t[]> buffer_;
};

// Reads a packet, with the descriptors that came with it. False when it is malformed; no file is mapped of
// a packet whose sizes and counts do not add up.
bool ParsePacket(std::span<const uint8_t> packet, std::span<const TDescriptor> descriptors,
                 uint32_t most_memory, IncomingMessage &message, uint64_t &instance) noexcept;

} // namespace vellum
