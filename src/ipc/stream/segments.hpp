// SPDX-License-Identifier: MIT
// What a data stream is made of: the handle, the buffer, and the segment headers in it. Headers may be
// anybody's bytes and stand at any address: they are copied out and in, and never trusted.
#pragma once

#include <vellum/data_stream.h>
#include <vellum/values.hpp>

#include <optional>

// The handle: four words, in memory from malloc. A segment is named by the offset of its header.
//
// Behind the last byte of the buffer, in its spare capacity, there is a zero: a string that the data
// does not end can be read as a C string all the same.
struct VLDataStream {
    vellum::Ref<ValData> buffer;
    size_t next_id = 0;
    size_t read_segment = 0;
    size_t write_segment = 0;
};

static_assert(sizeof(VLDataStream) == 4 * sizeof(void *));
static_assert(sizeof(VLDataStreamSegment) == 24 && alignof(VLDataStreamSegment) == 1);

namespace vellum {

inline constexpr size_t kNoSegment = SIZE_MAX;
inline constexpr size_t kHeaderSize = sizeof(VLDataStreamSegment);

// Of a buffer: what the 32 bits of a header can count.
inline constexpr size_t kMaximumLength = UINT32_MAX;

// A segment: where its header stands, and a copy of it.
struct StreamSegment {
    size_t offset;
    VLDataStreamSegment header;
};

// The segment with its header at an offset, none unless all of that lies in the buffer. The stream may
// be null.
std::optional<StreamSegment> SegmentAt(const VLDataStream *stream, size_t offset) noexcept;

// The current segments.
std::optional<StreamSegment> ReadSegment(const VLDataStream *stream) noexcept;
std::optional<StreamSegment> WriteSegment(const VLDataStream *stream) noexcept;

// Writes back a segment that was found; the buffer has not become shorter since.
void Store(VLDataStream *stream, const StreamSegment &segment) noexcept;

// The offset of a segment's parent, or kNoSegment. It is lower than the segment's own, so that going
// from parent to parent comes to an end.
size_t ParentOf(const StreamSegment &segment) noexcept;

// Where the header stands in the buffer, as callers see it; null for none.
const VLDataStreamSegment *Borrow(const VLDataStream *stream, size_t offset) noexcept;

// Writes the header of a new segment at an offset, and makes it the write segment. False, and nothing
// changed, when there is no room for it.
bool OpenSegment(VLDataStream *stream, size_t offset) noexcept;

// Cuts the buffer, which cannot fail, or grows it with zeros.
bool SetBufferLength(ValData *buffer, size_t length) noexcept;

// Appends bytes, which may be the buffer's own, and zeros behind them; all of it or nothing.
bool AppendToBuffer(ValData *buffer, const void *bytes, size_t count, size_t zeros) noexcept;

} // namespace vellum
