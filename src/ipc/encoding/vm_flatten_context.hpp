// SPDX-License-Identifier: MIT
// The writer of values that travel beside a message, in memory of their own.
#pragma once

#include "ipc/encoding/flatten_context.hpp"
#include "platform/port/memory_block.hpp"

namespace vellum {

// Flattens one value into whole pages, sealed, so that a receiver can take them where they are. The
// value is walked once; what is ready goes to the pages while it is still in the processor's cache.
// GetLength is the exact length, GetBufferSize the pages'.
// There is no block, and nothing to send, when the value is null or cannot be flattened, or when
// memory or descriptors are exhausted: ask GetBuffer.
class TValVMFlattenContext : public TValFlattenContext {
public:
    // What a system with such calls would be asked for: pages anywhere, under a tag of their own. A
    // memory file on this one has neither.
    static constexpr uint32_t kAllocationFlags = 0x58000011;

    explicit TValVMFlattenContext(const void *value) noexcept;

    // Of the block, which has all of the bytes; the stream has none.
    const uint8_t *GetBytePtr() const noexcept override { return block_.Bytes(); }
    size_t GetLength() const noexcept override { return length_; }

    // The address and the size of the block, a whole number of pages; null and 0 without one.
    virtual const uint8_t *GetBuffer() const noexcept { return block_.Bytes(); }
    virtual size_t GetBufferSize() const noexcept { return block_.Size(); }

    // Hands the block over to who sends it, and with it the bytes: the context has none any more.
    virtual MemoryBlock OrphanBuffer() noexcept;

    // Always 0: a block is known by GetBuffer and GetBufferSize. Kept, for the interface has them.
    virtual size_t GetSize() const noexcept { return 0; }
    virtual size_t GetAddr() const noexcept { return 0; }

private:
    void Fail() noexcept override;
    bool MakeRoom(size_t bytes) noexcept override;
    bool Flush() noexcept;
    bool Finish() noexcept;

    MemoryBlock block_;
    size_t length_ = 0; // of what is in the block
};

} // namespace vellum
