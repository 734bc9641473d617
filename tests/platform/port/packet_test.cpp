// SPDX-License-Identifier: MIT
// What counts as a packet, field by field.
#include "platform/port/packet.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {
namespace {

// A packet that can be told wrongly in each of its fields.
struct Packet {
    PacketHeader header = {kPacketMagic, 0, 0, 0, 7};
    MachHeader message = {kMachSimpleBits, sizeof(MachHeader), 0, 0, 0, 13000};
    std::vector<MachDescriptor> descriptors;
    uint32_t claimed_descriptors = 0;
    std::string enclosed;
    std::vector<TDescriptor> files;

    // One more descriptor, of memory in the packet or of a file that goes with it.
    void Enclose(std::string_view memory) {
        header.enclosed |= 1U << descriptors.size();
        enclosed += memory;
        Describe(memory.size());
    }
    void Attach(std::string_view memory) {
        MemoryBlock block = MemoryBlock::Create();
        EXPECT_TRUE(block.Append(memory.data(), memory.size()) && block.Seal());
        files.emplace_back(::dup(block.Descriptor()));
        Describe(memory.size());
    }

    // After this the sizes are right, until somebody changes them.
    void Size() {
        if (!descriptors.empty()) {
            message.bits |= kMachComplexBit;
            message.size =
                static_cast<uint32_t>(sizeof message + 4 + descriptors.size() * sizeof(MachDescriptor));
        }
        header.message_size = message.size;
    }

    std::vector<uint8_t> Bytes() const {
        std::vector<uint8_t> bytes;
        const auto add = [&](const void *from, size_t length) {
            bytes.insert(bytes.end(), static_cast<const uint8_t *>(from),
                         static_cast<const uint8_t *>(from) + length);
        };
        add(&header, sizeof header);
        if (header.message_size) {
            add(&message, sizeof message);
            if (message.bits & kMachComplexBit) add(&claimed_descriptors, sizeof claimed_descriptors);
            add(descriptors.data(), descriptors.size() * sizeof(MachDescriptor));
        }
        add(enclosed.data(), enclosed.size());
        return bytes;
    }

    bool Parses(IncomingMessage &read, uint32_t most_memory = kMostReceivedMemory) {
        bytes_ = Bytes();
        return ParsePacket(bytes_, files, most_memory, read, instance);
    }
    bool Parses(uint32_t most_memory = kMostReceivedMemory) {
        IncomingMessage read;
        return Parses(read, most_memory);
    }

    uint64_t instance = 0; // that was read

private:
    void Describe(size_t size) {
        MachDescriptor descriptor;
        descriptor.size = static_cast<uint32_t>(size);
        descriptors.push_back(descriptor);
        claimed_descriptors = static_cast<uint32_t>(descriptors.size());
    }

    std::vector<uint8_t> bytes_;
};

Packet Simple() {
    Packet packet;
    packet.Size();
    return packet;
}

Packet WithMemory() {
    Packet packet;
    packet.Enclose("first");
    packet.Attach("second");
    packet.Enclose("third");
    packet.Size();
    return packet;
}

std::string TextOf(std::span<const uint8_t> memory) {
    return {memory.begin(), memory.end()};
}

TEST(Packet, OfAMessageAloneIsRead) {
    Packet packet = Simple();
    IncomingMessage read;
    ASSERT_TRUE(packet.Parses(read));
    EXPECT_EQ(read.bytes.size(), sizeof(MachHeader));
    EXPECT_EQ(read.memory_count, 0u);
    EXPECT_EQ(packet.instance, 7u);
}

TEST(Packet, HasMemoryInsideAndInFilesInTheOrderOfTheDescriptors) {
    Packet packet = WithMemory();
    IncomingMessage read;
    ASSERT_TRUE(packet.Parses(read));
    ASSERT_EQ(read.memory_count, 3u);
    EXPECT_EQ(TextOf(read.memory[0]), "first");
    EXPECT_EQ(TextOf(read.memory[1]), "second");
    EXPECT_EQ(TextOf(read.memory[2]), "third");
}

TEST(Packet, WithoutAMessageIsARefusalAndHasNothingElse) {
    Packet refusal;
    IncomingMessage read;
    EXPECT_TRUE(refusal.Parses(read));
    EXPECT_TRUE(read.bytes.empty());
    refusal.enclosed = "x";
    EXPECT_FALSE(refusal.Parses());
    refusal.enclosed.clear();
    refusal.header.enclosed = 1;
    EXPECT_FALSE(refusal.Parses());
    refusal.header.enclosed = 0;
    refusal.files = std::move(WithMemory().files);
    EXPECT_FALSE(refusal.Parses());
}

TEST(Packet, IsRefusedWithAHeaderThatIsNone) {
    for (size_t length = 0; length < sizeof(PacketHeader); ++length) {
        const auto bytes = Simple().Bytes();
        IncomingMessage read;
        uint64_t instance = 0;
        EXPECT_FALSE(ParsePacket({bytes.data(), length}, {}, kMostReceivedMemory, read, instance));
    }
    Packet packet = Simple();
    packet.header.magic ^= 1;
    EXPECT_FALSE(packet.Parses());
    packet = Simple();
    packet.header.reserved = 1;
    EXPECT_FALSE(packet.Parses());
    packet = Simple();
    ++packet.header.message_size;
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, IsRefusedWhenTheMessageHasAnotherSizeThanItSays) {
    for (const int off : {-1, 1}) {
        Packet packet = Simple();
        packet.message.size += static_cast<uint32_t>(off);
        EXPECT_FALSE(packet.Parses()) << off;
    }
    Packet packet = Simple();
    packet.enclosed = std::string(kMachLongestMessage - sizeof(MachHeader), '\0'); // lies in the message
    packet.header.message_size = packet.message.size = kMachLongestMessage;
    EXPECT_TRUE(packet.Parses());
    packet.enclosed += '\0';
    packet.header.message_size = ++packet.message.size;
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, IsRefusedWithDescriptorsThatItCannotHave) {
    Packet packet = WithMemory();
    packet.claimed_descriptors = 4;
    EXPECT_FALSE(packet.Parses());
    packet.claimed_descriptors = 2;
    EXPECT_FALSE(packet.Parses());
    packet = Simple();
    packet.message.bits |= kMachComplexBit; // and not even a count follows
    EXPECT_FALSE(packet.Parses());
    packet = Packet();
    for (int i = 0; i < 5; ++i) packet.Enclose("x");
    packet.Size();
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, IsRefusedWhenADescriptorIsOfSomethingElseThanMemory) {
    Packet packet = WithMemory();
    packet.descriptors[2].type = 0;
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, BringsWhatTheReceiverTakesAndNoMore) {
    EXPECT_TRUE(WithMemory().Parses(6));
    EXPECT_FALSE(WithMemory().Parses(5)); // "second"
}

TEST(Packet, IsRefusedWhenMemoryIsMissingOrLeftOver) {
    Packet packet = WithMemory();
    packet.enclosed.pop_back();
    EXPECT_FALSE(packet.Parses());
    packet.enclosed += "d!";
    EXPECT_FALSE(packet.Parses());
    packet = WithMemory();
    packet.header.enclosed |= 1U << 3; // of a descriptor that there is not
    EXPECT_FALSE(packet.Parses());
    packet = WithMemory();
    packet.files.push_back(std::move(WithMemory().files.front()));
    EXPECT_FALSE(packet.Parses());
    packet.files.clear();
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, IsRefusedWhenAFileIsNotSealedOrTooShort) {
    Packet packet = WithMemory();
    MemoryBlock open = MemoryBlock::Create();
    ASSERT_TRUE(open.Append("second", 6));
    packet.files[0] = TDescriptor(::dup(open.Descriptor()));
    EXPECT_FALSE(packet.Parses());
    packet = WithMemory();
    packet.descriptors[1].size = 1U << 20;
    EXPECT_FALSE(packet.Parses());
}

TEST(Packet, ThatIsRefusedLeavesWhatWasReadBefore) {
    IncomingMessage read;
    Packet good = WithMemory();
    ASSERT_TRUE(good.Parses(read));
    Packet bad = WithMemory();
    bad.enclosed.pop_back();
    EXPECT_FALSE(bad.Parses(read));
    EXPECT_EQ(TextOf(read.memory[1]), "second");
}

// Packets are sent in one piece, or piece by piece if they are long.
TEST(Packet, ArrivesAsItWasSentWhateverItsLength) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const TDescriptor from(ends[0]), to(ends[1]);
    PacketReceiver receiver;
    for (size_t length = 1; length < 1200; ++length) {
        std::string memory(length, 'm');
        memory.front() = 'f';
        memory.back() = 'l';
        OutgoingMessage message;
        MachHeader header = {kMachSimpleBits | kMachComplexBit, 0, 0, 0, 0, 13000};
        message.Append(header);
        message.Append(uint32_t{1});
        MachDescriptor descriptor;
        descriptor.size = static_cast<uint32_t>(length);
        message.Append(descriptor);
        const auto block =
            std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(memory.data(), length));
        message.AppendMemory({block, length});
        message.SetHeader(header);
        ASSERT_EQ(SendPacket(from.Get(), 7, message, length % 2 == 0), PacketResult::kDone) << length;
        IncomingMessage read;
        uint64_t instance = 0;
        ASSERT_EQ(receiver.Receive(to.Get(), false, read, instance), PacketResult::kDone) << length;
        EXPECT_EQ(instance, 7u);
        EXPECT_EQ(TextOf(read.bytes), TextOf(message.Bytes())) << length;
        ASSERT_EQ(read.memory_count, 1u);
        EXPECT_EQ(TextOf(read.memory[0]), memory) << length;
    }
}

} // namespace
} // namespace vellum::test
