// SPDX-License-Identifier: MIT
// Reading what was written: values, bounds, and where reading stands afterwards.
#include "ipc/stream/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace test;

// What a call writes to the standard error stream.
template <class Call>
std::string Printed(Call call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

// A stream with a child of these bytes (one item), then `behind` in the root; reset, the child entered.
Stream InChild(std::string_view bytes, std::string_view behind) {
    Stream stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendBytes(stream.get(), bytes.data(), bytes.size());
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamAppendBytes(stream.get(), behind.data(), behind.size());
    VLDataStreamResetStream(stream.get());
    VLDataStreamOpenReadSegment(stream.get());
    return stream;
}

TEST(DataStreamReading, GivesBackEveryKindOfItem) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 0xFEDCBA98);
    VLDataStreamAppendDouble(stream.get(), 3.25);
    VLDataStreamAppendCString(stream.get(), "one");
    VLDataStreamAppendString(stream.get(), "twofold", 3);
    VLDataStreamAppendEmptyStrings(stream.get(), 2);
    VLDataStreamAppendBytes(stream.get(), "\x01\x00\x02", 3);
    VLDataStreamResetStream(stream.get());

    EXPECT_EQ(VLDataStreamReadUInt32(stream.get()), 0xFEDCBA98u);
    EXPECT_EQ(VLDataStreamReadDouble(stream.get()), 3.25);
    EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "one");
    EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "two");
    EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "");
    EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "");
    char bytes[3];
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 3), 3u);
    EXPECT_EQ(std::string_view(bytes, 3), "\x01\x00\x02"sv);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), 0);
}

TEST(DataStreamReadingBytes, MovesThePositionAndCountsNothing) {
    const auto stream = InChild("abcdef", "");
    char bytes[] = "....";
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 2), 2u);
    EXPECT_STREQ(bytes, "ab..");
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 6, 50, 0, 1}));
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 0), 0u);
    EXPECT_STREQ(bytes, "ab..");
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 4), 4u);
    EXPECT_STREQ(bytes, "cdef");
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 6, 54, 0, 1}));
}

TEST(DataStreamReadingBytes, IsBoundedByTheWholeLengthOfTheSegment) {
    const auto stream = InChild("abcd", "rest of the root");
    char bytes[] = "..........";
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 3), 3u);
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 10), 4u);
    EXPECT_STREQ(bytes, "dres......");
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), -3);
}

TEST(DataStreamReadingBytes, GivesZerosBeyondTheBuffer) {
    const auto stream = InChild("abcd", "");
    char bytes[] = "......";
    VLDataStreamReadBytes(stream.get(), bytes, 3);
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 6), 4u);
    EXPECT_EQ(std::string_view(bytes, 6), "d\0\0\0.."sv);
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), bytes, 6), 4u);
    EXPECT_EQ(std::string_view(bytes, 6), "\0\0\0\0.."sv);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 4, 59, 0, 1}));
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream.get()), -7);
}

TEST(DataStreamReadingBytes, OfAnEmptySegmentGivesNone) {
    const auto stream = InChild("", "abc");
    char byte = '.';
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), &byte, 1), 0u);
    EXPECT_EQ(byte, '.');
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 0, 48, 0, 1}));
}

TEST(DataStreamReadingBytes, IntoNothingMovesNothing) {
    const auto stream = InChild("abc", "");
    EXPECT_EQ(VLDataStreamReadBytes(stream.get(), nullptr, 2), 0u);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 3, 48, 0, 1}));
}

TEST(DataStreamReadingNumbers, FillsUpWithZeroBytesWhatASegmentIsTooShortFor) {
    uint32_t integer = 0;
    std::memcpy(&integer, "ab", 2);
    auto stream = InChild("ab", "cdefghij");
    EXPECT_EQ(VLDataStreamReadUInt32(stream.get()), integer);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 2, 50, 0, 1}));

    double number = 0;
    std::memcpy(&number, "ABCDEFG", 7);
    stream = InChild("ABCDEFG", "HIJ");
    EXPECT_EQ(VLDataStreamReadDouble(stream.get()), number);
}

TEST(DataStreamReadingNumbers, OfAnEmptySegmentGivesZero) {
    const auto stream = InChild("", "abcdefghij");
    EXPECT_EQ(VLDataStreamReadUInt32(stream.get()), 0u);
    EXPECT_EQ(VLDataStreamReadDouble(stream.get()), 0.0);
}

TEST(DataStreamReadingStrings, PointsIntoTheBufferAndCountsOneItem) {
    const auto stream = InChild("abc\0de\0"sv, "");
    size_t length = 0;
    const char *string = VLDataStreamReadString(stream.get(), &length);
    EXPECT_EQ(static_cast<const void *>(string), ValDataGetBytes(stream->buffer.Get()) + 48);
    EXPECT_EQ(length, 3u);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 7, 52, 0, 2}));
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), nullptr), "de");
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 7, 55, 0, 3}));
}

TEST(DataStreamReadingStrings, EndsAtAZeroAmongTheBytes) {
    const auto stream = NewStream();
    VLDataStreamAppendString(stream.get(), "x\0y", 3);
    VLDataStreamResetStream(stream.get());
    size_t length = 0;
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), &length), "x");
    EXPECT_EQ(length, 1u);
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), &length), "y");
}

TEST(DataStreamReadingStrings, GivesNoneAtTheEndOfASegment) {
    const auto stream = InChild("ab\0"sv, "behind");
    size_t length = 9;
    VLDataStreamReadString(stream.get(), nullptr);
    const std::string before = BytesOf(stream);
    EXPECT_EQ(VLDataStreamReadString(stream.get(), &length), nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(VLDataStreamReadCString(stream.get()), nullptr);
    EXPECT_EQ(BytesOf(stream), before);
}

TEST(DataStreamReadingStrings, GivesNoneInAnEmptySegmentWhereverItsPositionIs) {
    const auto stream = InChild("", "behind");
    for (const uint32_t position : {48u, 47u, 50u}) {
        Overwrite(stream, 24, Words({1, 48, 0, position, 0, 0}));
        size_t length = 9;
        EXPECT_EQ(VLDataStreamReadString(stream.get(), &length), nullptr) << position;
        EXPECT_EQ(length, 0u) << position;
        EXPECT_EQ(ReadHeader(stream), Words({1, 48, 0, position, 0, 0}));
    }
}

TEST(DataStreamReadingStrings, IsNoLongerThanItsSegment) {
    const auto stream = InChild("ab", "cd\0"sv);
    size_t length = 0;
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), &length), "abcd");
    EXPECT_EQ(length, 2u);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 2, 51, 0, 2}));
}

TEST(DataStreamReadingStrings, EndsAtTheEndOfTheBuffer) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "abcdef", 6);
    VLDataStreamResetStream(stream.get());
    size_t length = 0;
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), &length), "abcdef");
    EXPECT_EQ(length, 6u);
    EXPECT_EQ(ReadHeader(stream), Words({0, 24, 6, 31, kNone, 2}));
    // One past the end of the segment, and of the buffer.
    EXPECT_EQ(VLDataStreamReadString(stream.get(), &length), nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(ReadHeader(stream), Words({0, 24, 6, 31, kNone, 2}));
}

TEST(DataStreamReadingStrings, FindsAZeroBehindWhateverTheBufferEndsWith) {
    // Of any length, so that some fill the buffer's capacity to its last byte.
    for (size_t length = 1; length < 1'100; ++length) {
        const std::string text(length, 'x');
        const auto appended = NewStream();
        VLDataStreamAppendBytes(appended.get(), text.data(), text.size());
        VLDataStreamResetStream(appended.get());
        EXPECT_STREQ(VLDataStreamReadString(appended.get(), nullptr), text.c_str());
        const auto given = StreamOver(text);
        EXPECT_STREQ(VLDataStreamReadString(given.get(), nullptr), text.c_str());
    }
}

TEST(DataStreamReadingStrings, FindsAZeroWhereClearedBytesWere) {
    const auto stream = StreamOver("cleared");
    VLDataStreamClearStream(stream.get());
    VLDataStreamAppendBytes(stream.get(), "abc", 3);
    VLDataStreamResetStream(stream.get());
    EXPECT_STREQ(VLDataStreamReadString(stream.get(), nullptr), "abc");
}

TEST(DataStreamReadingCStrings, ReadsLikeCountedOnes) {
    const auto stream = InChild("abc\0de\0"sv, "");
    const char *string = nullptr;
    EXPECT_EQ(Printed([&] { string = VLDataStreamReadCString(stream.get()); }), "");
    EXPECT_EQ(static_cast<const void *>(string), ValDataGetBytes(stream->buffer.Get()) + 48);
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 7, 52, 0, 2}));
    EXPECT_EQ(Printed([&] { EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "de"); }), "");
    EXPECT_EQ(Printed([&] { EXPECT_EQ(VLDataStreamReadCString(stream.get()), nullptr); }), "");
}

TEST(DataStreamReadingCStrings, SaysHiWhenTheSegmentEndsBeforeTheString) {
    const auto stream = InChild("x\0ab"sv, "cd\0"sv);
    EXPECT_EQ(Printed([&] { EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "x"); }), "");
    EXPECT_EQ(Printed([&] { EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "abcd"); }), "hi\n");
    // The whole of the string is not longer than the whole of the segment, and was passed.
    EXPECT_EQ(ReadHeader(stream), Words({1, 48, 4, 55, 0, 3}));
    // Past the end of the segment, before that of the buffer.
    Overwrite(stream, 54, "e");
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), -3);
    EXPECT_EQ(VLDataStreamReadCString(stream.get()), nullptr); // the buffer ends here
}

TEST(DataStreamReadingCStrings, SaysHiPastTheEndOfTheSegment) {
    const auto stream = InChild("ab", "cdef\0"sv);
    EXPECT_EQ(Printed([&] { VLDataStreamReadCString(stream.get()); }), "hi\n");
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), -1);
    EXPECT_EQ(Printed([&] { EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "def"); }), "hi\n");
}

TEST(DataStreamReadingCStrings, SaysHiAtTheEndOfTheBuffer) {
    const auto stream = NewStream();
    VLDataStreamAppendBytes(stream.get(), "abc", 3);
    VLDataStreamResetStream(stream.get());
    EXPECT_EQ(Printed([&] { EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "abc"); }), "hi\n");
}

TEST(DataStreamReadingCStrings, SaysHiOnlyOfCStrings) {
    const auto stream = InChild("ab", "cdef\0"sv);
    EXPECT_EQ(Printed([&] { EXPECT_NE(VLDataStreamReadString(stream.get(), nullptr), nullptr); }), "");
}

} // namespace
} // namespace vellum
