// SPDX-License-Identifier: MIT
// Reading a data stream: items and segments.
#include "ipc/stream/segments.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace vellum;

namespace {

uint32_t EndOf(const VLDataStreamSegment &header) noexcept {
    return header.start + header.length;
}

// Less than 0 where the position is past the end.
int32_t LeftOf(const VLDataStreamSegment &header) noexcept {
    return static_cast<int32_t>(EndOf(header) - header.position);
}

// Moves a segment's position, and returns it.
uint32_t MoveTo(VLDataStream *stream, StreamSegment segment, uint32_t position) noexcept {
    segment.header.position = position;
    Store(stream, segment);
    return position;
}

// The bytes of the buffer from a position on; none where it is not in the buffer.
struct Rest {
    Rest(const VLDataStream *stream, uint32_t position) noexcept {
        const size_t size = ValDataGetLength(stream->buffer.Get());
        if (position >= size) return;
        bytes = ValDataGetBytes(stream->buffer.Get()) + position;
        length = size - position;
    }

    const uint8_t *bytes = nullptr;
    size_t length = 0;
};

template <class Number>
Number ReadNumber(VLDataStream *stream) noexcept {
    Number value = 0;
    VLDataStreamReadBytes(stream, &value, sizeof value);
    return value;
}

// A string in the buffer; no bytes where there is none.
struct StringItem {
    const char *bytes = nullptr;
    size_t length = 0;
    bool reaches_end = false; // of its segment
};

StringItem NextString(VLDataStream *stream) noexcept {
    auto segment = ReadSegment(stream);
    if (!segment || segment->header.length == 0 || LeftOf(segment->header) == 0) return {};
    const Rest rest(stream, segment->header.position);
    if (!rest.bytes) return {};
    const auto *bytes = reinterpret_cast<const char *>(rest.bytes);
    const size_t length = std::min<size_t>(strnlen(bytes, rest.length), segment->header.length);
    const bool reaches_end = LeftOf(segment->header) <= static_cast<int64_t>(length);
    ++segment->header.count;
    MoveTo(stream, *segment, segment->header.position + static_cast<uint32_t>(length) + 1);
    return {bytes, length, reaches_end};
}

} // namespace

size_t VLDataStreamReadBytes(VLDataStream *stream, void *buffer, size_t n) noexcept {
    const auto segment = ReadSegment(stream);
    if (!segment || !buffer) return 0;
    const size_t count = std::min<size_t>(n, segment->header.length);
    const Rest rest(stream, segment->header.position);
    const size_t there = std::min(count, rest.length);
    if (there) std::memcpy(buffer, rest.bytes, there);
    std::memset(static_cast<char *>(buffer) + there, 0, count - there);
    MoveTo(stream, *segment, segment->header.position + static_cast<uint32_t>(count));
    return count;
}

uint32_t VLDataStreamReadUInt32(VLDataStream *stream) noexcept {
    return ReadNumber<uint32_t>(stream);
}

double VLDataStreamReadDouble(VLDataStream *stream) noexcept {
    return ReadNumber<double>(stream);
}

const char *VLDataStreamReadString(VLDataStream *stream, size_t *length) noexcept {
    const StringItem string = NextString(stream);
    if (length) *length = string.length;
    return string.bytes;
}

const char *VLDataStreamReadCString(VLDataStream *stream) noexcept {
    const StringItem string = NextString(stream);
    // The library prints nowhere but here and in VLDataStreamShow. It must stay: a caller has no other way
    // to learn that the text runs past its segment.
    if (string.reaches_end) std::fputs("hi\n", stderr);
    return string.bytes;
}

uint32_t VLDataStreamOpenReadSegment(VLDataStream *stream) noexcept {
    const auto segment = ReadSegment(stream);
    if (!segment) return 0;
    const auto child = SegmentAt(stream, segment->header.position);
    if (!child) return 0;
    stream->read_segment = child->offset;
    return MoveTo(stream, *child, child->header.start);
}

uint32_t VLDataStreamSkipReadSegment(VLDataStream *stream) noexcept {
    const auto segment = ReadSegment(stream);
    if (!segment) return 0;
    const auto child = SegmentAt(stream, segment->header.position);
    return child ? MoveTo(stream, *segment, EndOf(child->header)) : segment->header.position;
}

uint32_t VLDataStreamCloseReadSegment(VLDataStream *stream) noexcept {
    const auto child = ReadSegment(stream);
    if (!child) return 0;
    stream->read_segment = ParentOf(*child);
    const auto parent = ReadSegment(stream);
    return parent ? MoveTo(stream, *parent, EndOf(child->header)) : 0;
}

uint32_t VLDataStreamResetReadSegment(VLDataStream *stream) noexcept {
    const auto segment = ReadSegment(stream);
    return segment ? MoveTo(stream, *segment, segment->header.start) : 0;
}

const VLDataStreamSegment *VLDataStreamCurrentReadSegment(const VLDataStream *stream) noexcept {
    return stream ? Borrow(stream, stream->read_segment) : nullptr;
}

int32_t VLDataStreamBytesLeftToReadInCurrentSegment(const VLDataStream *stream) noexcept {
    const auto segment = ReadSegment(stream);
    return segment ? LeftOf(segment->header) : 0;
}

int64_t VLDataStreamBytesLeftToRead(const VLDataStream *stream) noexcept {
    const auto segment = ReadSegment(stream);
    if (!segment) return 0;
    return static_cast<int64_t>(ValDataGetLength(stream->buffer.Get())) - segment->header.position;
}
