// SPDX-License-Identifier: MIT
// Whole pages of memory that travel to another process: written once, then sealed.
#pragma once

#include <fcntl.h>

#include <cstddef>
#include <cstdint>

namespace vellum {

// A block is empty, or open and being written, or sealed. Its memory and its descriptor end with it.
class MemoryBlock {
public:
    // What a block gets, and what a receiver asks for before it maps.
    static constexpr int kSeals = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;

    // Empty.
    MemoryBlock() noexcept = default;
    MemoryBlock(MemoryBlock &&other) noexcept;
    MemoryBlock &operator=(MemoryBlock &&other) noexcept;
    ~MemoryBlock();

    // An open block without bytes; an empty one when descriptors are exhausted.
    static MemoryBlock Create() noexcept;

    // What is not longer than this travels faster by being copied than in pages of its own.
    static constexpr size_t kLongestCopied = size_t{64} << 10;

    // A sealed block that holds the bytes. Up to kLongestCopied they lie in this process's memory, and the
    // block has no descriptor. Empty for no bytes, and when memory or descriptors are exhausted.
    static MemoryBlock CreateCopy(const void *bytes, size_t length) noexcept;

    // Adds bytes to an open block. Handing them to the system in pieces that fit the processor's cache
    // is several times as fast as writing to mapped pages, each of which would fault. False, with the
    // block empty, when the system has no room.
    bool Append(const void *bytes, size_t length) noexcept;

    // Ends an open block that has bytes: fills its last page with zeros, and maps it. From then on
    // nobody, in whatever process, can write, lengthen or shorten it. False, with the block empty, when
    // the system refuses.
    bool Seal() noexcept;

    // The address and the size, a whole number of pages, of a sealed block; otherwise null and 0.
    const uint8_t *Bytes() const noexcept { return bytes_; }
    size_t Size() const noexcept { return bytes_ ? size_ : 0; }

    // What is sent to the receiver (borrowed); -1 for an empty block, and for a small one, whose bytes are
    // sent themselves.
    int Descriptor() const noexcept { return descriptor_; }

private:
    void Free() noexcept;

    uint8_t *bytes_ = nullptr; // null unless sealed
    size_t size_ = 0;          // of what was appended, until it is sealed
    int descriptor_ = -1;
};

} // namespace vellum
