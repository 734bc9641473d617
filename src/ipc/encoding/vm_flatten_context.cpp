// SPDX-License-Identifier: MIT
#include "ipc/encoding/vm_flatten_context.hpp"

#include "ipc/encoding/flattened_size.hpp"

#include <algorithm>
#include <utility>

namespace vellum {

namespace {

// What is written before it goes to the pages: little enough for the cache next to the processor. What is
// no longer needs no pages.
constexpr size_t kPieceSize = MemoryBlock::kLongestCopied;

} // namespace

TValVMFlattenContext::TValVMFlattenContext(const void *value) noexcept {
    if (!value) return;
    const size_t estimate = EstimateFlattenedSize(value, kPieceSize);
    SetOutput(Adopt(ValDataCreateMutable(std::min(estimate, kPieceSize))));
    Flatten(value);
    if (!(IsOk() && Finish())) Fail();
    Close();
}

bool TValVMFlattenContext::Finish() noexcept {
    if (length_ || Output()->length > kPieceSize) return Flush() && block_.Seal();
    length_ = Output()->length;
    block_ = MemoryBlock::CreateCopy(Output()->bytes, length_);
    return block_.Bytes();
}

void TValVMFlattenContext::Fail() noexcept {
    TValFlattenContext::Fail();
    block_ = MemoryBlock();
    length_ = 0;
}

bool TValVMFlattenContext::Flush() noexcept {
    if (Output()->length == 0) return true;
    if (length_ == 0) block_ = MemoryBlock::Create();
    if (!block_.Append(Output()->bytes, Output()->length)) return false;
    length_ += std::exchange(Output()->length, 0);
    return true;
}

bool TValVMFlattenContext::MakeRoom(size_t bytes) noexcept {
    return Flush() && bytes <= kMaximumFlattenedLength && length_ <= kMaximumFlattenedLength - bytes &&
           ReserveData(Output(), bytes);
}

MemoryBlock TValVMFlattenContext::OrphanBuffer() noexcept {
    length_ = 0;
    return std::move(block_);
}

} // namespace vellum
