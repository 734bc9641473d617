// SPDX-License-Identifier: MIT
// A message on its way out, and one that has come in.
#pragma once

#include "platform/port/mach_message.hpp"
#include "platform/port/memory_block.hpp"
#include "platform/port/memory_mapping.hpp"

#include <array>
#include <cstring>
#include <memory>
#include <span>

namespace vellum {

// Memory that goes out with a message: the first `length` bytes of a sealed block, which others may be
// sending as well. Without a block there are no bytes.
struct OutgoingMemory {
    std::shared_ptr<const MemoryBlock> block;
    size_t length = 0;

    std::span<const uint8_t> Bytes() const noexcept {
        return block ? std::span(block->Bytes(), length) : std::span<const uint8_t>();
    }
};

// A message that is being put together, and sent; it lies in one piece, and allocates nothing.
class OutgoingMessage {
public:
    // Adds an object of plain bytes. What would make the message too long is a mistake of the caller's;
    // it is not added, and the message cannot be sent.
    template <class T>
    void Append(const T &object) noexcept {
        AppendBytes(&object, sizeof object);
    }
    void AppendBytes(const void *bytes, size_t length) noexcept {
        if (length > bytes_.size() - size_) {
            is_whole_ = false;
            return;
        }
        if (length) std::memcpy(bytes_.data() + size_, bytes, length);
        size_ += length;
    }
    // Zeros, up to a multiple of 4.
    void Pad() noexcept {
        constexpr uint8_t kZeros[3] = {};
        AppendBytes(kZeros, (4 - size_ % 4) % 4);
    }

    // Has the message not be sent: what should be in it cannot.
    void Spoil() noexcept { is_whole_ = false; }

    // Adds the memory of the next descriptor; the same as above holds for one too many.
    void AppendMemory(OutgoingMemory memory) noexcept {
        if (memory_count_ == memory_.size())
            is_whole_ = false;
        else
            memory_[memory_count_++] = std::move(memory);
    }

    // Writes the header over the room that was left for it.
    void SetHeader(MachHeader header) noexcept {
        header.size = static_cast<uint32_t>(size_);
        if (size_ >= sizeof header) std::memcpy(bytes_.data(), &header, sizeof header);
    }

    MachHeader Header() const noexcept {
        MachHeader header;
        std::memcpy(&header, bytes_.data(), sizeof header);
        return header;
    }
    bool IsWhole() const noexcept { return is_whole_ && size_ >= sizeof(MachHeader); }
    std::span<const uint8_t> Bytes() const noexcept { return {bytes_.data(), size_}; }
    std::span<const OutgoingMemory> Memory() const noexcept { return {memory_.data(), memory_count_}; }

    // The bytes of all its memory.
    size_t MemorySize() const noexcept {
        size_t size = 0;
        for (const OutgoingMemory &memory : Memory()) size += memory.length;
        return size;
    }

private:
    std::array<uint8_t, kMachLongestMessage> bytes_; // the first size_ of them
    size_t size_ = 0;
    std::array<OutgoingMemory, kMachMostDescriptors> memory_;
    size_t memory_count_ = 0;
    bool is_whole_ = true;
};

// A message that has come in. Its bytes lie in the receiver's buffer, until the receiver's next message;
// so does its memory, but for what came in pages of its own, which are here. Sizes, counts and seals have
// been checked: there is a header, its size is the message's, and there is one piece of memory for each
// descriptor, of the descriptor's size.
struct IncomingMessage {
    std::span<const uint8_t> bytes;
    std::array<std::span<const uint8_t>, kMachMostDescriptors> memory;
    std::array<MemoryMapping, kMachMostDescriptors> mappings;
    size_t memory_count = 0;

    MachHeader Header() const noexcept {
        MachHeader header;
        std::memcpy(&header, bytes.data(), sizeof header);
        return header;
    }
};

} // namespace vellum
