// SPDX-License-Identifier: MIT
// Streams over anybody's bytes: headers that lie, loop or leave the buffer move nothing, and no call runs
// on for ever or outside of the buffer.
#include "ipc/stream/shorthand.hpp"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace vellum {
namespace {

using namespace test;

TEST(ForeignHeader, ThatIsItsOwnParentIsARoot) {
    const auto stream = StreamOver(Words({7, 48, 4, 0, 24, 0}) + "abcd");
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 48u);
    VLDataStreamReadUInt32(stream.get());
    VLDataStreamResetStream(stream.get()); // comes to an end
    EXPECT_EQ(ReadHeader(stream), Words({7, 48, 4, 48, 24, 0}));
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 0u);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), nullptr);
}

TEST(ForeignHeader, WhoseParentStandsBehindItIsARoot) {
    // Two headers that are each other's parents: of these, the lower one's does not count.
    const auto stream = StreamOver(Words({1, 48, 24, 0, 48, 0}) + Words({2, 72, 0, 0, 24, 0}));
    VLDataStreamOpenReadSegment(stream.get());
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 72u);
    VLDataStreamResetStream(stream.get());
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 24, 48, 48, 0}));
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 0u);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), nullptr);
}

TEST(ForeignHeader, WhoseParentIsOutsideOfTheBufferIsARoot) {
    for (const uint32_t parent : {52u, 0x7FFFFFFFu, 0xFFFFFFE8u, 0xFFFFFFFEu}) {
        const auto stream = StreamOver(Words({1, 48, 4, 0, parent, 0}) + "abcd");
        VLDataStreamOpenReadSegment(stream.get());
        VLDataStreamReadUInt32(stream.get());
        VLDataStreamResetStream(stream.get());
        EXPECT_EQ(ReadHeader(stream), Words({1, 48, 4, 48, parent, 0})) << parent;
        EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 0u) << parent;
    }
}

TEST(ForeignHeader, MayOverlapItsParent) {
    const auto stream = StreamOver(Words({1, 48, 4, 0, 23, 0}) + "abcd");
    VLDataStreamOpenReadSegment(stream.get());
    // The parent, read from 23 on, is 23's byte of the root and 23 bytes of the child; its position is
    // overwritten there.
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 52u);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get())->position, 52u);
    VLDataStreamResetStream(stream.get()); // comes to an end
    EXPECT_NE(VLDataStreamCurrentReadSegment(stream.get()), nullptr);
}

TEST(ForeignHeader, ThatIsAStringOfItsOwnSegmentIsChangedByReadingIt) {
    // The string is the count, which goes from the highest to 0, and the payload.
    const auto stream = StreamOver(Words({1, 44, 8, 0, 0, 0xFFFFFFFF}) + "abcd");
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 44u);
    size_t length = 0;
    const char *string = VLDataStreamReadString(stream.get(), &length);
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(std::string_view(string, length), "\0\0\0\0abcd"sv);
    EXPECT_EQ(ReadHeader(stream), Words({1, 44, 8, 53, 0, 0}));
}

TEST(ForeignHeader, ThatTheBufferCutsOffMovesNothing) {
    const std::string header = Words({1, 48, 0, 48, 0, 0});
    for (size_t cut = 1; cut <= header.size(); ++cut) {
        const auto stream = StreamOver(std::string_view(header).substr(cut));
        const std::string before = BytesOf(stream);
        EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 0u) << cut;
        EXPECT_EQ(VLDataStreamSkipReadSegment(stream.get()), 24u) << cut;
        EXPECT_EQ(BytesOf(stream), before) << cut;
    }
    EXPECT_EQ(VLDataStreamOpenReadSegment(StreamOver(header).get()), 48u);
}

TEST(ForeignHeader, MayStartAndEndAnywhere) {
    const auto stream = StreamOver(Words({1, 0xFFFFFFF0, 0xFFFFFFFF, 0, 0, 0}) + "abcd");
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 0xFFFFFFF0u);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), -1);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream.get()), 52 - int64_t{0xFFFFFFF0});
    size_t length = 9;
    EXPECT_EQ(VLDataStreamReadString(stream.get(), &length), nullptr);
    EXPECT_EQ(VLDataStreamReadCString(stream.get()), nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 0u);
    EXPECT_EQ(VLDataStreamSkipReadSegment(stream.get()), 0xFFFFFFF0u);
    // Zeros beyond the end of the buffer; the position goes round.
    std::array<char, 64> bytes;
    bytes.fill('.');
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes.data(), 64), 64u);
    EXPECT_EQ(bytes, (std::array<char, 64>{}));
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get())->position, 48u);
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes.data(), 5), 5u);
    EXPECT_EQ(std::string_view(bytes.data(), 5), "abcd\0"sv);
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 0xFFFFFFEFu);
}

TEST(ForeignHeader, OfAnyLengthBoundsAStringByTheBuffer) {
    const auto stream = StreamOver(Words({1, 48, 0xFFFFFFFF, 0, 0, 0}) + "abcd");
    VLDataStreamOpenReadSegment(stream.get());
    size_t length = 0;
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), &length), "abcd");
    EXPECT_EQ(length, 4u);
}

TEST(ForeignHeader, IsSkippedToWhereverItEnds) {
    const auto stream = StreamOver(Words({1, 0x80000000, 0x80000018, 0, 0, 0}));
    EXPECT_EQ(VLDataStreamSkipReadSegment(stream.get()), 0x18u);
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 0x80000000u);
}

TEST(ForeignHeader, OfAWriteSegmentIsTrustedNoMore) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    Overwrite(stream, 24, Words({1, 0xFFFFFFFF, 0, 48, 24, 0})); // its own parent
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(stream.get()), 0xFFFFFFFFu);
    EXPECT_EQ(BytesOf(stream).size(), 48u); // cut, never grown
    VLDataStreamClearStream(stream.get());
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(VLDataStreamCurrentWriteSegment(stream.get()), nullptr);
}

TEST(ForeignHeader, ThatStartsBeforeItselfIsCutOffByClearing) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    Overwrite(stream, 24, Words({1, 30, 0, 48, 0, 0}));
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(stream.get()), 30u);
    EXPECT_EQ(BytesOf(stream).size(), 30u);
    EXPECT_EQ(VLDataStreamCurrentWriteSegment(stream.get()), nullptr);
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(BytesOf(stream).size(), 30u);
}

TEST(ForeignHeader, MayBeOpenedOverTheOneThatIsBeingWritten) {
    const auto stream = NewStream();
    Overwrite(stream, 0, Words({0, 24, 0, 0, kNone, 0})); // its position is its own header
    EXPECT_NE(VLDataStreamOpenWriteSegment(stream.get()), nullptr);
    EXPECT_EQ(BytesOf(stream), Words({1, 24, 24, 24, 0, 0}));
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(VLDataStreamCurrentWriteSegment(stream.get()), nullptr);
}

TEST(DataThatShrinksUnderItsStream, HasNoSegments) {
    const auto data = MutableData("");
    const Stream stream(VLDataStreamWithData(data.Get()));
    ValDataSetLength(data.Get(), 23);
    VLDataStreamAppendUInt32(stream.get(), 1);
    EXPECT_EQ(VLDataStreamOpenWriteSegment(stream.get()), nullptr);
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), nullptr);
    EXPECT_EQ(VLDataStreamReadUInt32(stream.get()), 0u);
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream.get()), 0u);
    VLDataStreamResetStream(stream.get());
    VLDataStreamClearStream(stream.get());
    EXPECT_EQ(ValDataGetLength(data.Get()), 23u);
}

TEST(ForeignHeader, InALoopIsShownOnce) {
    const auto stream = StreamOver(Words({9, 48, 0, 48, 24, 0}));
    VLDataStreamOpenReadSegment(stream.get());
    testing::internal::CaptureStderr();
    VLDataStreamShow(stream.get());
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind(
                  "readStack:\n\tid:9\tcnt:0\t <s:48 l:0/48 p:48>\nwriteStack:\n", 0),
              0u);
}

// ---- any calls over any bytes ------------------------------------------------------------------------

using Random = std::mt19937;

uint32_t Below(Random &random, uint32_t bound) {
    return static_cast<uint32_t>(random() % bound);
}

// Words that are likely to be offsets, and some that are likely to do harm.
std::string AnyBytes(Random &random) {
    constexpr std::array kEdges = {0u, 1u, 23u, 24u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFE8u, 0xFFFFFFFFu};
    std::string bytes;
    for (uint32_t words = Below(random, 60); words; --words) {
        bytes += Words({Below(random, 3) ? Below(random, 260) : kEdges[Below(random, kEdges.size())]});
    }
    return bytes.substr(0, bytes.size() - Below(random, 4) % (bytes.size() + 1));
}

// Strings lie in the buffer and end in it, or with the zero right behind it.
void CheckString(const VLDataStream *stream, const char *string, size_t length) {
    if (!string) return;
    const auto *start = reinterpret_cast<const char *>(ValDataGetBytes(stream->buffer.Get()));
    const size_t size = ValDataGetLength(stream->buffer.Get());
    ASSERT_TRUE(string >= start && string < start + size);
    const size_t offset = static_cast<size_t>(string - start);
    ASSERT_LE(length, size - offset);
    ASSERT_LE(std::strlen(string), size - offset);
}

using Call = void (*)(VLDataStream *stream, Random &random);
constexpr Call kCalls[] = {
    [](VLDataStream *stream, Random &random) {
        VLDataStreamAppendBytes(stream, "0123456789", Below(random, 11));
    },
    [](VLDataStream *stream, Random &random) { VLDataStreamAppendUInt32(stream, Below(random, 300)); },
    [](VLDataStream *stream, Random &) { VLDataStreamAppendDouble(stream, 1.5); },
    [](VLDataStream *stream, Random &) { VLDataStreamAppendCString(stream, "cstring"); },
    [](VLDataStream *stream, Random &random) {
        VLDataStreamAppendString(stream, "string", Below(random, 7));
    },
    [](VLDataStream *stream, Random &random) {
        VLDataStreamAppendEmptyStrings(stream, static_cast<int32_t>(Below(random, 40)) - 4);
    },
    [](VLDataStream *stream, Random &) {
        // A position that reading moved far away would ask for gigabytes of zeros.
        const auto *header = VLDataStreamCurrentWriteSegment(stream);
        if (header && header->position < 4'096) VLDataStreamOpenWriteSegment(stream);
    },
    [](VLDataStream *stream, Random &) { VLDataStreamCloseWriteSegment(stream); },
    [](VLDataStream *stream, Random &random) {
        std::string bytes(Below(random, 100), '.'); // on the heap, to its last byte
        bytes.shrink_to_fit();
        ASSERT_LE(VLDataStreamReadBytes(stream, bytes.data(), bytes.size()), bytes.size());
    },
    [](VLDataStream *stream, Random &) { VLDataStreamReadUInt32(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamReadDouble(stream); },
    [](VLDataStream *stream, Random &) {
        size_t length = 0;
        const char *string = VLDataStreamReadString(stream, &length);
        CheckString(stream, string, length);
    },
    [](VLDataStream *stream, Random &) { CheckString(stream, VLDataStreamReadCString(stream), 0); },
    [](VLDataStream *stream, Random &) { VLDataStreamOpenReadSegment(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamOpenReadSegment(stream); }, // likelier, to go deep
    [](VLDataStream *stream, Random &) { VLDataStreamSkipReadSegment(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamCloseReadSegment(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamResetReadSegment(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamBytesLeftToReadInCurrentSegment(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamBytesLeftToRead(stream); },
    [](VLDataStream *stream, Random &) { VLDataStreamResetStream(stream); },
    [](VLDataStream *stream, Random &random) {
        if (!Below(random, 8)) VLDataStreamClearToStartOfSegment(stream);
    },
    [](VLDataStream *stream, Random &random) {
        if (!Below(random, 8)) VLDataStreamClearStream(stream);
    },
    [](VLDataStream *stream, Random &random) {
        if (!Below(random, 8)) VLDataStreamShow(stream);
    },
};

TEST(AnyCallsOverAnyBytes, StayInTheBufferAndEnd) {
    testing::internal::CaptureStderr();
    for (uint32_t seed = 0; seed < 3'000 && !testing::Test::HasFatalFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Stream stream(VLDataStreamWithData(MutableData(AnyBytes(random)).Get()));
        for (int call = 0; call < 100; ++call)
            kCalls[Below(random, std::size(kCalls))](stream.get(), random);
        // However far reading went, the buffer is as long as what was written.
        EXPECT_LT(BytesOf(stream).size(), 16'384u);
        EXPECT_EQ(ValDataGetBytes(stream->buffer.Get())[BytesOf(stream).size()], 0);
    }
    testing::internal::GetCapturedStderr();
}

} // namespace
} // namespace vellum
