// SPDX-License-Identifier: MIT
// The buffer of a data stream and the headers in it.
#include "ipc/stream/segments.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// Whether `count` more bytes fit behind `length`.
bool Fits(size_t length, size_t count) noexcept {
    return length <= kMaximumLength && count <= kMaximumLength - length;
}

bool IsInBuffer(const VLDataStream *stream, size_t offset) noexcept {
    const size_t length = stream ? ValDataGetLength(stream->buffer.Get()) : 0;
    return length >= kHeaderSize && offset <= length - kHeaderSize;
}

} // namespace

std::optional<StreamSegment> SegmentAt(const VLDataStream *stream, size_t offset) noexcept {
    if (!IsInBuffer(stream, offset)) return std::nullopt;
    StreamSegment segment{offset, {}};
    std::memcpy(&segment.header, ValDataGetBytes(stream->buffer.Get()) + offset, kHeaderSize);
    return segment;
}

std::optional<StreamSegment> ReadSegment(const VLDataStream *stream) noexcept {
    return SegmentAt(stream, stream ? stream->read_segment : kNoSegment);
}

std::optional<StreamSegment> WriteSegment(const VLDataStream *stream) noexcept {
    return SegmentAt(stream, stream ? stream->write_segment : kNoSegment);
}

void Store(VLDataStream *stream, const StreamSegment &segment) noexcept {
    std::memcpy(ValDataGetMutableBytes(stream->buffer.Get()) + segment.offset, &segment.header,
                kHeaderSize);
}

size_t ParentOf(const StreamSegment &segment) noexcept {
    const size_t parent = segment.header.parent;
    return parent < segment.offset ? parent : kNoSegment;
}

const VLDataStreamSegment *Borrow(const VLDataStream *stream, size_t offset) noexcept {
    if (!IsInBuffer(stream, offset)) return nullptr;
    return reinterpret_cast<const VLDataStreamSegment *>(ValDataGetBytes(stream->buffer.Get()) + offset);
}

bool OpenSegment(VLDataStream *stream, size_t offset) noexcept {
    ValData *buffer = stream->buffer.Get();
    if (!Fits(offset, kHeaderSize)) return false;
    const size_t length = std::max(ValDataGetLength(buffer), offset + kHeaderSize);
    if (!SetBufferLength(buffer, length)) return false;

    const auto id = static_cast<uint32_t>(stream->next_id++);
    const auto start = static_cast<uint32_t>(offset + kHeaderSize);
    const auto outer = WriteSegment(stream);
    const uint32_t parent = outer ? static_cast<uint32_t>(outer->offset) : kVLDataStreamNoParent;
    Store(stream, {offset, {id, start, 0, start, parent, 0}});
    // Read again, as the new header may have been written over the parent's.
    if (auto enclosing = WriteSegment(stream)) {
        enclosing->header.length += static_cast<uint32_t>(kHeaderSize);
        Store(stream, *enclosing);
    }
    stream->write_segment = offset;
    return true;
}

bool SetBufferLength(ValData *buffer, size_t length) noexcept {
    // Cut first, so that what lies behind the new end is a zero and not the old bytes.
    if (length < ValDataGetLength(buffer)) ValDataSetLength(buffer, length);
    return ValDataSetLength(buffer, length + 1) && ValDataSetLength(buffer, length);
}

bool AppendToBuffer(ValData *buffer, const void *bytes, size_t count, size_t zeros) noexcept {
    const size_t length = ValDataGetLength(buffer);
    if (!Fits(length, count) || !Fits(length + count, zeros)) return false;
    if (!ValDataAppend(buffer, bytes, count)) return false;
    if (SetBufferLength(buffer, length + count + zeros)) return true;
    SetBufferLength(buffer, length);
    return false;
}

} // namespace vellum
