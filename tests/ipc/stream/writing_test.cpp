// SPDX-License-Identifier: MIT
// What writing leaves in the buffer, byte by byte.
#include "ipc/stream/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace test;

// A root of so many bytes and items, that position and length agree on.
std::string Root(uint32_t length, uint32_t count) {
    return Words({0, 24, length, 24 + length, kNone, count});
}

TEST(DataStreamAppending, OfBytesCountsOneItem) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "abcde", 3);
    EXPECT_EQ(BytesOf(stream), Root(3, 1) + "abc");
    VLDataStreamAppendBytes(stream.get(), "de", 2);
    EXPECT_EQ(BytesOf(stream), Root(5, 2) + "abcde");
}

TEST(DataStreamAppending, OfNoBytesIsAnItemToo) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "", 0);
    VLDataStreamAppendBytes(stream.get(), nullptr, 0);
    EXPECT_EQ(BytesOf(stream), Root(0, 2));
}

TEST(DataStreamAppending, OfAnIntegerTakesFourBytes) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 0x01020304);
    EXPECT_EQ(BytesOf(stream), Root(4, 1) + Words({0x01020304}));
    EXPECT_EQ(BytesOf(stream).size(), 28u);
}

TEST(DataStreamAppending, OfADoubleTakesEightBytes) {
    const auto stream = NewStream();
    VLDataStreamAppendDouble(stream.get(), -12.5);
    EXPECT_EQ(BytesOf(stream), Root(8, 1) + InMemory(-12.5));
}

TEST(DataStreamAppending, OfACStringKeepsItsZero) {
    const auto stream = NewStream();
    VLDataStreamAppendCString(stream.get(), "abc");
    EXPECT_EQ(BytesOf(stream), Root(4, 1) + std::string("abc\0"sv));
    VLDataStreamAppendCString(stream.get(), "");
    EXPECT_EQ(BytesOf(stream), Root(5, 2) + std::string("abc\0\0"sv));
    VLDataStreamAppendCString(stream.get(), nullptr);
    EXPECT_EQ(BytesOf(stream), Root(5, 2) + std::string("abc\0\0"sv));
}

TEST(DataStreamAppending, OfACountedStringAddsAZero) {
    const auto stream = NewStream();
    VLDataStreamAppendString(stream.get(), "abcdef", 3);
    EXPECT_EQ(BytesOf(stream), Root(4, 1) + std::string("abc\0"sv));
    VLDataStreamAppendString(stream.get(), "x\0y", 3);
    EXPECT_EQ(BytesOf(stream), Root(8, 2) + std::string("abc\0x\0y\0"sv));
    VLDataStreamAppendString(stream.get(), nullptr, 0);
    EXPECT_EQ(BytesOf(stream), Root(9, 3) + std::string("abc\0x\0y\0\0"sv));
}

TEST(DataStreamAppending, OfEmptyStringsAddsAZeroAndAnItemForEach) {
    const auto stream = NewStream();
    VLDataStreamAppendEmptyStrings(stream.get(), 3);
    EXPECT_EQ(BytesOf(stream), Root(3, 3) + std::string("\0\0\0"sv));
    for (const int32_t n : {0, -1, INT32_MIN}) VLDataStreamAppendEmptyStrings(stream.get(), n);
    EXPECT_EQ(BytesOf(stream), Root(3, 3) + std::string("\0\0\0"sv));
    VLDataStreamAppendEmptyStrings(stream.get(), 1);
    EXPECT_EQ(BytesOf(stream), Root(4, 4) + std::string("\0\0\0\0"sv));
}

TEST(DataStreamAppending, TakesBytesOfItsOwnBuffer) {
    const auto stream = NewStream();
    VLDataStreamAppendCString(stream.get(), "abc");
    const auto own = [&] {
        return reinterpret_cast<const char *>(ValDataGetBytes(stream->buffer.Get()) + 24);
    };
    for (int i = 0; i < 1'000; ++i) VLDataStreamAppendCString(stream.get(), own());
    for (int i = 0; i < 1'000; ++i) VLDataStreamAppendString(stream.get(), own(), 3);
    std::string expected = Root(4 * 2'001, 2'001);
    for (int i = 0; i < 2'001; ++i) expected += "abc\0"sv;
    EXPECT_EQ(BytesOf(stream), expected);
}

TEST(DataStreamAppending, OfWhatIsNotThereHasNoEffect) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), nullptr, 1);
    VLDataStreamAppendString(stream.get(), nullptr, 1);
    EXPECT_EQ(BytesOf(stream), Root(0, 0));
}

TEST(DataStreamAppending, OfMoreThanHeadersCanCountHasNoEffect) {
    const auto stream = NewStream();
    for (const size_t n : {size_t{UINT32_MAX} - 23, size_t{UINT32_MAX}, SIZE_MAX - 24, SIZE_MAX}) {
        VLDataStreamAppendBytes(stream.get(), "x", n);
        VLDataStreamAppendString(stream.get(), "x", n);
    }
    VLDataStreamAppendString(stream.get(), "x", size_t{UINT32_MAX} - 24); // the zero is one too many
    EXPECT_EQ(BytesOf(stream), Root(0, 0));
}

TEST(DataStreamWriteSegment, StandsAtTheEndAndIsPartOfItsParent) {
    const auto stream = NewStream();
    const auto *header = VLDataStreamOpenWriteSegment(stream.get());
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header, VLDataStreamCurrentWriteSegment(stream.get()));
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 24, 24, kNone, 0}) + Words({1, 48, 0, 48, 0, 0}));
}

TEST(DataStreamWriteSegment, IsFilledBehindItsParentsBack) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendDouble(stream.get(), 1);
    EXPECT_EQ(BytesOf(stream),
              Words({0, 24, 24, 24, kNone, 0}) + Words({1, 48, 8, 56, 0, 1}) + InMemory(1.0));
}

TEST(DataStreamWriteSegment, IsCountedWithItsHeaderTwiceWhenItIsClosed) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendDouble(stream.get(), 1);
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(BytesOf(stream),
              Words({0, 24, 24 + 32, 56, kNone, 1}) + Words({1, 48, 8, 56, 0, 1}) + InMemory(1.0));
    EXPECT_EQ(WriteHeader(stream), Words({0, 24, 56, 56, kNone, 1}));
}

TEST(DataStreamWriteSegment, MayStandAnywhereAndBeNested) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "x", 1);
    VLDataStreamOpenWriteSegment(stream.get()); // at 25
    VLDataStreamAppendCString(stream.get(), "ab");
    VLDataStreamOpenWriteSegment(stream.get()); // at 52
    VLDataStreamAppendUInt32(stream.get(), 5);
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamOpenWriteSegment(stream.get()); // at 80
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamAppendUInt32(stream.get(), 6);
    // The first child: 3 + 24 + 28; the root: 1 + 24 + (80 - 25) + 24 + 24 + 4.
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 132, 108, kNone, 4}) + "x" + Words({1, 49, 55, 80, 0, 2}) +
                                   std::string("ab\0"sv) + Words({2, 76, 4, 80, 25, 1}) + Words({5}) +
                                   Words({3, 104, 0, 104, 0, 0}) + Words({6}));
}

TEST(DataStreamWriteSegment, CanBeNestedAsDeepAsTheBufferIsLong) {
    const auto stream = NewStream();
    for (uint32_t depth = 1; depth <= 10'000; ++depth) VLDataStreamOpenWriteSegment(stream.get());
    EXPECT_EQ(WriteHeader(stream), Words({10'000, 240'024, 0, 240'024, 239'976, 0}));
    for (uint32_t depth = 1; depth <= 10'000; ++depth) VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(WriteHeader(stream), Words({0, 24, 240'024, 240'024, kNone, 1}));
}

TEST(DataStreamWriteSegment, IsNoneWhenTheRootIsClosed) {
    const auto stream = NewStream();
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(VLDataStreamCurrentWriteSegment(stream.get()), nullptr);
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamAppendEmptyStrings(stream.get(), 1);
    EXPECT_EQ(VLDataStreamOpenWriteSegment(stream.get()), nullptr);
    EXPECT_EQ(BytesOf(stream), Root(0, 0));
}

// Why a writer comes before the reset, and a reader behind it.
TEST(DataStreamWrittenAfterAReset, AppendsAtTheEndButOpensAtThePosition) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "0123456789abcdefghijklmnop", 26);
    VLDataStreamResetStream(stream.get());
    VLDataStreamAppendBytes(stream.get(), "!", 1);
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 27, 25, kNone, 2}) + "0123456789abcdefghijklmnop!");
    VLDataStreamOpenWriteSegment(stream.get());
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 51, 25, kNone, 2}) + "0" + Words({1, 49, 0, 49, 0, 0}) + "p!");
}

TEST(DataStreamWrittenAfterReadingOn, GrowsWithZerosUpToThePosition) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "ab", 2);
    char bytes[2];
    VLDataStreamReadBytes(stream.get(), bytes, 2); // from the end, where writing left the position
    EXPECT_NE(VLDataStreamOpenWriteSegment(stream.get()), nullptr);
    EXPECT_EQ(BytesOf(stream),
              Words({0, 24, 26, 28, kNone, 1}) + std::string("ab\0\0"sv) + Words({1, 52, 0, 52, 0, 0}));
}

TEST(DataStreamWrittenAfterReadingOn, OpensNoSegmentThatHeadersCannotCount) {
    for (const uint32_t position : {UINT32_MAX - 23, UINT32_MAX}) {
        const auto stream = NewStream();
        const std::string header = Words({0, 24, 0, position, kNone, 0});
        Overwrite(stream, 0, header);
        EXPECT_EQ(VLDataStreamOpenWriteSegment(stream.get()), nullptr);
        EXPECT_EQ(BytesOf(stream), header);
        EXPECT_EQ(WriteHeader(stream), header);
    }
}

} // namespace
} // namespace vellum
