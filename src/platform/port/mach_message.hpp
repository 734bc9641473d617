// SPDX-License-Identifier: MIT
// Messages between processes: their layout, and the codes that sending and receiving give.
//
// A message is a header, then, if it carries memory, a count and as many descriptors, then what its kind
// has inline. The layout is that of the Mach kernel's messages for 64-bit processes, with the addresses of
// descriptors left 0: memory travels beside the message (see packet.hpp).
#pragma once

#include <cstddef>
#include <cstdint>

namespace vellum {

// What a process calls the far end of a way to a service. Names are the process's own.
using PortName = uint32_t;
constexpr PortName kPortNull = 0;
constexpr PortName kPortDead = 0xffffffff;

constexpr bool IsPort(PortName name) noexcept {
    return name != kPortNull && name != kPortDead;
}

struct MachHeader {
    uint32_t bits;
    uint32_t size; // of the message, with this
    PortName remote_port;
    PortName local_port; // the reply port
    uint32_t voucher;    // reserved
    int32_t id;
};
static_assert(sizeof(MachHeader) == 24);

// `bits`: a send right to the receiver, a right to send one reply, and whether descriptors follow.
constexpr uint32_t kMachSimpleBits = 0x1513;
constexpr uint32_t kMachReplyBits = 0x12; // a right to send once, moved
constexpr uint32_t kMachComplexBit = 0x80000000;

// Memory that travels with the message.
struct MachDescriptor {
    uint64_t address = 0;
    uint8_t deallocate = 1;
    uint8_t copy = 1; // virtual
    uint8_t reserved = 0;
    uint8_t type = 1;  // out-of-line memory
    uint32_t size = 0; // in bytes
};
static_assert(sizeof(MachDescriptor) == 16);

// How the sender writes numbers: as this processor does.
struct MachDataRepresentation {
    uint8_t bytes[8] = {0, 0, 0, 0, 1, 0, 0, 0};
};

// The longest message, without its memory, and the most pieces of memory with one.
constexpr size_t kMachLongestMessage = 4096;
constexpr size_t kMachMostDescriptors = 4;

// What sending and receiving give, and what a service answers with; 0 is success. Negative ones are
// kept as their 32 bits.
using MachCode = uint32_t;
constexpr MachCode kMachSuccess = 0;
constexpr MachCode kMachSendInvalidData = 0x10000002;
constexpr MachCode kMachSendInvalidDestination = 0x10000003; // nobody is there
constexpr MachCode kMachSendTimedOut = 0x10000004;
constexpr MachCode kMachSendNoBuffer = 0x1000000d; // the system has no room
constexpr MachCode kMachSendInvalidHeader = 0x10000010;
constexpr MachCode kMachReceiveTimedOut = 0x10004003;
constexpr MachCode kMachReceiveBodyError = 0x1000400c; // what came is no message
constexpr MachCode kMachTypeError = static_cast<MachCode>(-300);
constexpr MachCode kMachReplyMismatch = static_cast<MachCode>(-301);
constexpr MachCode kMachBadID = static_cast<MachCode>(-303);
constexpr MachCode kMachBadArguments = static_cast<MachCode>(-304);
constexpr MachCode kMachServerDied = static_cast<MachCode>(-308);
constexpr MachCode kMachNoMemory = 3;
constexpr MachCode kMachInvalidArgument = 4;
constexpr MachCode kMachAskAgain = 14; // the service is there, and cannot answer yet
constexpr MachCode kBootstrapUnknownService = 1102;

// The id of the message that a waiting sender gets when nobody is left who could reply.
constexpr int32_t kMachSendOnceNotification = 71;

} // namespace vellum
