// SPDX-License-Identifier: MIT
// Making, freeing and clearing data streams.
#include "ipc/stream/segments.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

using namespace vellum;

namespace {

// Room for the root's header and a few items.
constexpr size_t kFirstCapacity = 256;

struct FreeStream {
    void operator()(VLDataStream *stream) const noexcept { VLDataStreamFree(stream); }
};
using OwnedStream = std::unique_ptr<VLDataStream, FreeStream>;

// A stream over a buffer, with a new root header at its start; null, and nothing written, on failure.
OwnedStream MakeStream(Ref<ValData> buffer) noexcept {
    void *memory = buffer ? std::malloc(sizeof(VLDataStream)) : nullptr;
    if (!memory) return nullptr;
    OwnedStream stream(new (memory) VLDataStream{std::move(buffer), 0, 0, kNoSegment});
    if (!OpenSegment(stream.get(), 0)) return nullptr;
    return stream;
}

} // namespace

VLDataStream *VLDataStreamCreateStream(void) noexcept {
    return MakeStream(Adopt(ValDataCreateMutable(kFirstCapacity))).release();
}

VLDataStream *VLDataStreamWithData(ValData *data) noexcept {
    if (ValDataGetLength(data) > kMaximumLength) return nullptr;
    OwnedStream stream = MakeStream(Retain(data));
    if (auto root = WriteSegment(stream.get())) {
        root->header.length = static_cast<uint32_t>(ValDataGetLength(data));
        Store(stream.get(), *root);
    }
    return stream.release();
}

void VLDataStreamFree(VLDataStream *stream) noexcept {
    if (!stream) return;
    *stream = VLDataStream{};
    std::destroy_at(stream);
    std::free(stream);
}

void VLDataStreamResetStream(VLDataStream *stream) noexcept {
    for (auto segment = ReadSegment(stream); segment && ParentOf(*segment) != kNoSegment;
         segment = ReadSegment(stream)) {
        VLDataStreamCloseReadSegment(stream);
    }
    VLDataStreamResetReadSegment(stream);
}

uint32_t VLDataStreamClearToStartOfSegment(VLDataStream *stream) noexcept {
    VLDataStreamResetStream(stream);
    auto segment = WriteSegment(stream);
    if (!segment) return 0;
    const uint32_t start = segment->header.start;
    segment->header.length = 0;
    segment->header.position = start;
    Store(stream, *segment);
    ValData *buffer = stream->buffer.Get();
    SetBufferLength(buffer, std::min<size_t>(start, ValDataGetLength(buffer)));
    return start;
}

void VLDataStreamClearStream(VLDataStream *stream) noexcept {
    for (auto segment = WriteSegment(stream); segment && ParentOf(*segment) != kNoSegment;
         segment = WriteSegment(stream)) {
        VLDataStreamCloseWriteSegment(stream);
    }
    VLDataStreamClearToStartOfSegment(stream);
}
