// SPDX-License-Identifier: MIT
// Writing a data stream: items and segments.
#include "ipc/stream/segments.hpp"

#include <cstring>

using namespace vellum;

namespace {

// Appends bytes and zeros to the buffer, which are so many items of the write segment.
void Append(VLDataStream *stream, const void *bytes, size_t count, size_t zeros, uint32_t items) noexcept {
    auto segment = WriteSegment(stream);
    if (!segment || !AppendToBuffer(stream->buffer.Get(), bytes, count, zeros)) return;
    const auto grown = static_cast<uint32_t>(count + zeros);
    segment->header.position += grown;
    segment->header.length += grown;
    segment->header.count += items;
    Store(stream, *segment);
}

} // namespace

void VLDataStreamAppendBytes(VLDataStream *stream, const void *bytes, size_t n) noexcept {
    Append(stream, bytes, n, 0, 1);
}

void VLDataStreamAppendUInt32(VLDataStream *stream, uint32_t value) noexcept {
    Append(stream, &value, sizeof value, 0, 1);
}

void VLDataStreamAppendDouble(VLDataStream *stream, double value) noexcept {
    Append(stream, &value, sizeof value, 0, 1);
}

void VLDataStreamAppendCString(VLDataStream *stream, const char *cstring) noexcept {
    if (cstring) Append(stream, cstring, std::strlen(cstring), 1, 1);
}

void VLDataStreamAppendString(VLDataStream *stream, const char *bytes, size_t n) noexcept {
    Append(stream, bytes, n, 1, 1);
}

void VLDataStreamAppendEmptyStrings(VLDataStream *stream, int32_t n) noexcept {
    if (n <= 0) return;
    const auto count = static_cast<uint32_t>(n);
    Append(stream, nullptr, 0, count, count);
}

const VLDataStreamSegment *VLDataStreamOpenWriteSegment(VLDataStream *stream) noexcept {
    const auto segment = WriteSegment(stream);
    if (!segment || !OpenSegment(stream, segment->header.position)) return nullptr;
    return Borrow(stream, stream->write_segment);
}

void VLDataStreamCloseWriteSegment(VLDataStream *stream) noexcept {
    const auto child = WriteSegment(stream);
    if (!child) return;
    stream->write_segment = ParentOf(*child);
    auto parent = WriteSegment(stream);
    if (!parent) return;
    // The header in this distance was counted when the child was opened. Readers know that it counts
    // twice, and go by the child's own length.
    parent->header.length += child->header.position - parent->header.position;
    parent->header.position = child->header.position;
    ++parent->header.count;
    Store(stream, *parent);
}

const VLDataStreamSegment *VLDataStreamCurrentWriteSegment(const VLDataStream *stream) noexcept {
    return stream ? Borrow(stream, stream->write_segment) : nullptr;
}
