/* SPDX-License-Identifier: MIT */
/* Data streams from C, with nothing but the library: every function of data_stream.h. */
#include "check.h"

#include <vellum/data_stream.h>

#include <string.h>

_Static_assert(sizeof(VLDataStreamSegment) == 24, "a header takes 24 bytes");

/* Whether a header holds these words. */
static bool Is(const VLDataStreamSegment *header, uint32_t id, uint32_t start, uint32_t length,
               uint32_t position, uint32_t parent, uint32_t count) {
    return header && header->id == id && header->start == start && header->length == length &&
           header->position == position && header->parent == parent && header->count == count;
}

/* A number, then a segment of one item of every other kind. The root's length counts its own header when
   the stream was made over data. */
static void Write(VLDataStream *stream, uint32_t counted) {
    VLDataStreamAppendUInt32(stream, 42);
    const VLDataStreamSegment *child = VLDataStreamOpenWriteSegment(stream);
    CHECK(child && child == VLDataStreamCurrentWriteSegment(stream) && Is(child, 1, 52, 0, 52, 0, 0));
    VLDataStreamAppendDouble(stream, 0.5);
    VLDataStreamAppendCString(stream, "one");
    VLDataStreamAppendString(stream, "twofold", 3);
    VLDataStreamAppendEmptyStrings(stream, 2);
    VLDataStreamAppendBytes(stream, "abc", 3);
    CHECK(Is(VLDataStreamCurrentWriteSegment(stream), 1, 52, 21, 73, 0, 6));
    VLDataStreamCloseWriteSegment(stream);
    CHECK(Is(VLDataStreamCurrentWriteSegment(stream), 0, 24, counted + 73, 73, kVLDataStreamNoParent, 2));
}

static void Read(VLDataStream *stream) {
    size_t length = 0;
    char bytes[3];
    VLDataStreamResetStream(stream);
    CHECK(VLDataStreamReadUInt32(stream) == 42);
    CHECK(VLDataStreamSkipReadSegment(stream) == 73 && VLDataStreamBytesLeftToRead(stream) == 0);
    CHECK(VLDataStreamResetReadSegment(stream) == 24 && VLDataStreamReadUInt32(stream) == 42);

    CHECK(VLDataStreamOpenReadSegment(stream) == 52);
    CHECK(Is(VLDataStreamCurrentReadSegment(stream), 1, 52, 21, 52, 0, 6));
    CHECK(VLDataStreamReadDouble(stream) == 0.5);
    CHECK(strcmp(VLDataStreamReadCString(stream), "one") == 0);
    CHECK(strcmp(VLDataStreamReadString(stream, &length), "two") == 0 && length == 3);
    CHECK(VLDataStreamReadString(stream, &length) != NULL && length == 0);
    CHECK(VLDataStreamReadString(stream, NULL) != NULL);
    CHECK(VLDataStreamBytesLeftToReadInCurrentSegment(stream) == 3);
    CHECK(VLDataStreamReadBytes(stream, bytes, sizeof bytes) == 3 && memcmp(bytes, "abc", 3) == 0);
    CHECK(VLDataStreamReadCString(stream) == NULL);
    CHECK(VLDataStreamCloseReadSegment(stream) == 73);
}

static void StreamsAreWrittenAndRead(void) {
    VLDataStream *stream = VLDataStreamCreateStream();
    Write(stream, 0);
    Read(stream);
    CHECK(VLDataStreamCloseReadSegment(stream) == 0 && VLDataStreamCurrentReadSegment(stream) == NULL);
    VLDataStreamFree(stream);
}

static void StreamsAreMadeOverData(void) {
    ValData *data = ValDataCreateMutable(0);
    VLDataStream *stream = VLDataStreamWithData(data);
    Write(stream, 24);
    VLDataStreamFree(stream);
    CHECK(ValDataGetLength(data) == 73);

    stream = VLDataStreamWithData(data);
    CHECK(Is(VLDataStreamCurrentReadSegment(stream), 0, 24, 73, 24, kVLDataStreamNoParent, 0));
    Read(stream);
    VLDataStreamFree(stream);
    ValRelease(data);
    CHECK(VLDataStreamWithData(NULL) == NULL);
}

static void StreamsAreCleared(void) {
    VLDataStream *stream = VLDataStreamCreateStream();
    Write(stream, 0);
    CHECK(VLDataStreamOpenWriteSegment(stream));
    VLDataStreamAppendUInt32(stream, 1);
    CHECK(VLDataStreamClearToStartOfSegment(stream) == 97);
    CHECK(Is(VLDataStreamCurrentWriteSegment(stream), 2, 97, 0, 97, 0, 1));
    VLDataStreamClearStream(stream);
    CHECK(Is(VLDataStreamCurrentWriteSegment(stream), 0, 24, 0, 24, kVLDataStreamNoParent, 3));
    CHECK(VLDataStreamBytesLeftToRead(stream) == 0);
    VLDataStreamFree(stream);
}

/* Whether showing a stream writes this to the standard error stream first. */
static bool Shows(const VLDataStream *stream, const char *expected) {
    char shown[256] = "";
    FILE *real = stderr;
    FILE *caught = fmemopen(shown, sizeof shown, "w");
    CHECK(caught);
    stderr = caught;
    VLDataStreamShow(stream);
    stderr = real;
    fclose(caught);
    return strncmp(shown, expected, strlen(expected)) == 0;
}

static void StreamsAreShown(void) {
    VLDataStream *stream = VLDataStreamCreateStream();
    CHECK(Shows(stream, "readStack:\n\tid:0\tcnt:0\t <s:24 l:0/24 p:24>\n"
                        "writeStack:\n\tid:0\tcnt:0\t <s:24 l:0/24 p:24>\n\n"));
    VLDataStreamFree(stream);
}

int main(void) {
    StreamsAreWrittenAndRead();
    StreamsAreMadeOverData();
    StreamsAreCleared();
    StreamsAreShown();
    VLDataStreamFree(NULL);
    return EXIT_SUCCESS;
}
