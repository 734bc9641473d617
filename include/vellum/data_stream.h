/* SPDX-License-Identifier: MIT */
/*
 * vellum/data_stream.h - a buffer of nested, length-counted segments: written in order, read in order.
 *
 * Rules that hold for every function here:
 *
 *  1. Ownership. The caller owns a stream and gives it back with VLDataStreamFree; the stream retains
 *     its buffer. Pointers handed out, to headers and to strings, point into the buffer. They are
 *     borrowed, may have any alignment, and die at the next function that appends, opens a write
 *     segment, clears or frees.
 *  2. Order. Integers, doubles and headers are in the byte order of this machine, and nothing in a
 *     stream says which that is: a stream is read on the machine that wrote it. Nor does it say what
 *     its items are; they are read as what they were appended as.
 *  3. Write, reset, read. In a new stream the root segment is both the read and the write segment, and
 *     has one position for both. Deliberate: there is one header to a segment. So a writer closes what
 *     it opened and calls VLDataStreamResetStream before reading begins, and nothing is written once it
 *     has. Appended bytes always go to the end of the buffer, but a new segment goes to the position:
 *     opened after a read or a reset, it overwrites what stands there.
 *  4. Nothing is checked that the caller must keep to: opens and closes match, items are read in their
 *     order, a stream without a current segment is neither read nor written.
 *  5. Nothing outside of the buffer is touched, whatever stands in it and whatever is called. A header
 *     that does not lie wholly in the buffer is none; what would need it has no effect and returns 0 or
 *     null. A segment's parent counts only when it lies before the segment, else the segment is a root.
 *     Closing a root leaves no current segment. Offsets and lengths are added modulo 2^32.
 *  6. Null. A null stream is harmless: 0, null, no effect.
 *  7. Errors. When memory is exhausted, or the buffer would become longer than 2^32 - 1 bytes, nothing
 *     changes. Appending does not tell; the write segment's count does.
 *  8. Threads. A stream belongs to one thread at a time.
 *
 * A segment of two items in a stream, written and read:
 *
 *     VLDataStream *stream = VLDataStreamCreateStream();
 *     VLDataStreamOpenWriteSegment(stream);
 *     VLDataStreamAppendUInt32(stream, 42);
 *     VLDataStreamAppendCString(stream, "text");
 *     VLDataStreamCloseWriteSegment(stream);
 *
 *     VLDataStreamResetStream(stream);
 *     VLDataStreamOpenReadSegment(stream);
 *     uint32_t number = VLDataStreamReadUInt32(stream);
 *     const char *text = VLDataStreamReadCString(stream);
 *     VLDataStreamCloseReadSegment(stream);
 *     VLDataStreamFree(stream);
 */
#ifndef VELLUM_DATA_STREAM_H
#define VELLUM_DATA_STREAM_H

#include <vellum/values.h>

#define VL_EXPORT VAL_EXPORT
#define VL_NOEXCEPT VAL_NOEXCEPT

#ifdef __cplusplus
extern "C" {
#endif

/* A stream: a buffer, the segment being read and the segment being written. */
typedef struct VLDataStream VLDataStream;

/* The parent of a root segment. */
#define kVLDataStreamNoParent 0xFFFFFFFFu

/*
 * The header of a segment, 24 bytes in the buffer, right before the segment's payload. Offsets are in
 * bytes from the start of the buffer. A header may stand at any address: its members are read through
 * the struct, never through pointers of their own.
 */
typedef struct __attribute__((packed)) VLDataStreamSegment {
    uint32_t id;       /* how many segments the stream had opened before it */
    uint32_t start;    /* offset of the first byte of payload: the header's own offset and 24 */
    uint32_t length;   /* bytes of payload counted so far, with the headers and payloads of children */
    uint32_t position; /* offset where the next byte is written or read */
    uint32_t parent;   /* offset of the enclosing segment's header, or kVLDataStreamNoParent */
    uint32_t count;    /* items appended or read; a child that was closed after writing is one item */
} VLDataStreamSegment;

/* ---- making and freeing ---------------------------------------------------------------------- */

/*
 * A new stream, whose buffer holds the root segment's header alone. The caller owns it; null when
 * memory is exhausted.
 */
VL_EXPORT VLDataStream *VLDataStreamCreateStream(void) VL_NOEXCEPT;

/*
 * A stream over bytes that are there already. Retains `data`, which must be mutable and belongs to the
 * stream until that is freed. Its first 24 bytes are overwritten with a new root header; shorter data
 * grows to 24 bytes. The root's length is that of all the data, its own header's 24 bytes included.
 * Deliberate, and to be known: what is left of the root counts 24 bytes more than there are. Its position
 * is its start, for reading; a segment opened there for writing overwrites what longer data holds.
 *
 * The caller owns the stream. Null, and nothing written, when `data` is null, immutable or longer than
 * 2^32 - 1 bytes, or memory is exhausted.
 */
VL_EXPORT VLDataStream *VLDataStreamWithData(ValData *data) VL_NOEXCEPT;

/* Frees a stream and gives its buffer back. */
VL_EXPORT void VLDataStreamFree(VLDataStream *stream) VL_NOEXCEPT;

/* ---- writing --------------------------------------------------------------------------------- */

/*
 * Appends `n` bytes, one item, to the end of the buffer; the write segment's position and length grow
 * by `n`. `bytes` may be null when `n` is 0, and may lie in the stream's own buffer.
 */
VL_EXPORT void VLDataStreamAppendBytes(VLDataStream *stream, const void *bytes, size_t n) VL_NOEXCEPT;

/* Append a number, one item of 4 or 8 bytes in the machine's byte order. */
VL_EXPORT void VLDataStreamAppendUInt32(VLDataStream *stream, uint32_t value) VL_NOEXCEPT;
VL_EXPORT void VLDataStreamAppendDouble(VLDataStream *stream, double value) VL_NOEXCEPT;

/* Appends a string and the zero that ends it, one item. No effect when `cstring` is null. */
VL_EXPORT void VLDataStreamAppendCString(VLDataStream *stream, const char *cstring) VL_NOEXCEPT;

/*
 * Appends `n` bytes and a zero behind them, one item. A zero among the bytes ends the string where it is
 * read. `bytes` may be null when `n` is 0.
 */
VL_EXPORT void VLDataStreamAppendString(VLDataStream *stream, const char *bytes, size_t n) VL_NOEXCEPT;

/* Appends `n` empty strings: `n` zero bytes and `n` items. No effect when `n` is 0 or less. */
VL_EXPORT void VLDataStreamAppendEmptyStrings(VLDataStream *stream, int32_t n) VL_NOEXCEPT;

/*
 * Begins a segment inside the write segment, at its position, and makes it the write segment. The
 * parent's length grows by the header's 24 bytes. Returns the new header (borrowed), null when there is
 * no write segment or no memory. While writing, the position is the end of the buffer (see rule 3); if
 * it is farther, the buffer grows up to it with zeros.
 */
VL_EXPORT const VLDataStreamSegment *VLDataStreamOpenWriteSegment(VLDataStream *stream) VL_NOEXCEPT;

/*
 * Ends the write segment and makes its parent the write segment. The parent takes over the position and
 * counts one item; its length grows by the distance from its old position to the new one, which is the
 * child's header and payload. Deliberate, and to be known: as opening has counted the header already, a
 * closed child's header is counted twice in its parent's length. Segments are therefore left and skipped
 * by their own start and length, never by their parent's.
 */
VL_EXPORT void VLDataStreamCloseWriteSegment(VLDataStream *stream) VL_NOEXCEPT;

/* The header of the write segment (borrowed), or null. */
VL_EXPORT const VLDataStreamSegment *
VLDataStreamCurrentWriteSegment(const VLDataStream *stream) VL_NOEXCEPT;

/* ---- reading --------------------------------------------------------------------------------- */

/*
 * Copies bytes from the read segment's position to `buffer` and moves the position behind them. Returns
 * how many: the smaller of `n` and the segment's length. Deliberate, and to be known: the bound is the
 * whole length of the segment, not what is left of it, so that a reader who goes on past the end gets
 * bytes of whatever follows, and zeros beyond the end of the buffer. The count stays. Returns 0 and moves
 * nothing when `buffer` is null.
 */
VL_EXPORT size_t VLDataStreamReadBytes(VLDataStream *stream, void *buffer, size_t n) VL_NOEXCEPT;

/*
 * Read 4 or 8 bytes as a number, in the way of VLDataStreamReadBytes. Bytes that a segment is too short
 * for are 0, and so is the number when the segment is empty.
 */
VL_EXPORT uint32_t VLDataStreamReadUInt32(VLDataStream *stream) VL_NOEXCEPT;
VL_EXPORT double VLDataStreamReadDouble(VLDataStream *stream) VL_NOEXCEPT;

/*
 * The string at the read segment's position (borrowed), its length in bytes in *length unless that is
 * null. Moves the position by that length and one more for the zero, and counts one item. The string
 * ends at the first zero or at the end of the buffer, behind which the stream keeps a zero of its own;
 * *length is never more than the segment's whole length. Null, with *length 0 and nothing moved, when
 * the segment is empty or read to its end, or the position is not in the buffer. Where a foreign header
 * has its own segment start before its end, reading changes the string: *length is what it had before.
 */
VL_EXPORT const char *VLDataStreamReadString(VLDataStream *stream, size_t *length) VL_NOEXCEPT;

/*
 * The same without the length. When the string reaches the end of the segment, for want of a zero in it,
 * this also writes "hi" and a line feed to the standard error stream. Deliberate: it is how a reader is
 * told that the text runs on into what follows, or was read past the end.
 */
VL_EXPORT const char *VLDataStreamReadCString(VLDataStream *stream) VL_NOEXCEPT;

/*
 * Enters the segment whose header stands at the read segment's position: makes it the read segment, with
 * its position at its start. Returns that start, 0 when there is no header.
 */
VL_EXPORT uint32_t VLDataStreamOpenReadSegment(VLDataStream *stream) VL_NOEXCEPT;

/*
 * Moves the read segment's position past the segment whose header stands there, without entering it.
 * Returns the position, which has not moved when there is no header.
 */
VL_EXPORT uint32_t VLDataStreamSkipReadSegment(VLDataStream *stream) VL_NOEXCEPT;

/*
 * Leaves the read segment, read to its end or not: its parent becomes the read segment, with its position
 * at the end of the segment that was left. Returns that position; 0 when there is no parent, and then
 * there is no read segment any more.
 */
VL_EXPORT uint32_t VLDataStreamCloseReadSegment(VLDataStream *stream) VL_NOEXCEPT;

/* Moves the read segment's position back to its start, and returns it. */
VL_EXPORT uint32_t VLDataStreamResetReadSegment(VLDataStream *stream) VL_NOEXCEPT;

/* The header of the read segment (borrowed), or null. */
VL_EXPORT const VLDataStreamSegment *VLDataStreamCurrentReadSegment(const VLDataStream *stream) VL_NOEXCEPT;

/*
 * How many bytes lie between the position and the end of the read segment, by its length, and of the
 * buffer; less than 0 when the position is past it. The former is cut to 32 bits.
 */
VL_EXPORT int32_t VLDataStreamBytesLeftToReadInCurrentSegment(const VLDataStream *stream) VL_NOEXCEPT;
VL_EXPORT int64_t VLDataStreamBytesLeftToRead(const VLDataStream *stream) VL_NOEXCEPT;

/* ---- beginning again ------------------------------------------------------------------------- */

/* Leaves read segments until one has no parent, and moves its position back to its start. */
VL_EXPORT void VLDataStreamResetStream(VLDataStream *stream) VL_NOEXCEPT;

/*
 * Resets the stream and cuts the buffer back to the start of the write segment, which is then empty but
 * for its count: that stays. Returns the start, 0 when there is no write segment. The reset moves the
 * root's position (see rule 3): a child that is closed after this counts, in the root's length, all that
 * stands before it once more.
 */
VL_EXPORT uint32_t VLDataStreamClearToStartOfSegment(VLDataStream *stream) VL_NOEXCEPT;

/* Closes write segments up to the root and clears that: an empty stream with its root header kept. */
VL_EXPORT void VLDataStreamClearStream(VLDataStream *stream) VL_NOEXCEPT;

/* ---- diagnosis ------------------------------------------------------------------------------- */

/*
 * Writes to the standard error stream: the read segment and its parents, one a line; the write segment
 * and its parents; a description of the buffer.
 */
VL_EXPORT void VLDataStreamShow(const VLDataStream *stream) VL_NOEXCEPT;

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VELLUM_DATA_STREAM_H */
