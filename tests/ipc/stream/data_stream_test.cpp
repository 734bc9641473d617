// SPDX-License-Identifier: MIT
// Streams from their making to their end: over new and given data, reset, cleared, shown.
#include "ipc/stream/shorthand.hpp"
#include "platform/val/data.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace test;

TEST(NewDataStream, HoldsARootHeaderAlone) {
    const auto stream = NewStream();
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 0, 24, kNone, 0}));
}

TEST(NewDataStream, ReadsAndWritesItsRoot) {
    const auto stream = NewStream();
    const auto *root = VLDataStreamCurrentWriteSegment(stream.get());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), root);
    EXPECT_EQ(root->id, 0u);
    EXPECT_EQ(root->start, 24u);
    EXPECT_EQ(root->length, 0u);
    EXPECT_EQ(root->position, 24u);
    EXPECT_EQ(root->parent, 0xFFFFFFFFu);
    EXPECT_EQ(root->count, 0u);
}

TEST(DataStreamWithData, OverwritesTheFirstBytesWithARootThatCountsItsOwnHeader) {
    const auto data = MutableData("the first 24 bytes go...payload");
    const Stream stream(VLDataStreamWithData(data.Get()));
    EXPECT_EQ(BytesOf(data.Get()), Words({0, 24, 31, 24, kNone, 0}) + "payload");
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), VLDataStreamCurrentWriteSegment(stream.get()));
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream.get()), 31);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream.get()), 7);
}

TEST(DataStreamWithData, GrowsShortDataToTheHeader) {
    for (const auto bytes : {""sv, "x"sv, "23 bytes, one too few.."sv, "24 bytes, just as many.."sv}) {
        const auto data = MutableData(bytes);
        const Stream stream(VLDataStreamWithData(data.Get()));
        EXPECT_EQ(BytesOf(data.Get()), Words({0, 24, 24, 24, kNone, 0})) << bytes;
    }
}

TEST(DataStreamWithData, CountsSegmentsFromOneOn) {
    const auto stream = StreamOver("");
    EXPECT_EQ(HeaderBytes(VLDataStreamOpenWriteSegment(stream.get())), Words({1, 48, 0, 48, 0, 0}));
}

TEST(DataStreamWithData, RetainsItsDataUntilItIsFreed) {
    const auto data = MutableData("");
    Stream stream(VLDataStreamWithData(data.Get()));
    EXPECT_EQ(data.Get()->references.load(), 2u);
    stream = nullptr;
    EXPECT_EQ(data.Get()->references.load(), 1u);
    EXPECT_EQ(ValDataGetLength(data.Get()), 24u);
}

TEST(DataStreamWithData, ReadsWhatAnotherStreamWrote) {
    const auto data = MutableData("");
    Stream writer(VLDataStreamWithData(data.Get()));
    VLDataStreamAppendUInt32(writer.get(), 7);
    VLDataStreamOpenWriteSegment(writer.get());
    VLDataStreamAppendCString(writer.get(), "abc");
    VLDataStreamCloseWriteSegment(writer.get());
    writer = nullptr;

    const Stream reader(VLDataStreamWithData(data.Get()));
    EXPECT_EQ(VLDataStreamReadUInt32(reader.get()), 7u);
    EXPECT_EQ(VLDataStreamOpenReadSegment(reader.get()), 52u);
    EXPECT_STREQ(VLDataStreamReadCString(reader.get()), "abc");
    EXPECT_EQ(VLDataStreamCloseReadSegment(reader.get()), 56u);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(reader.get()), 0);
}

TEST(DataStreamWithData, RefusesNullAndImmutableData) {
    EXPECT_EQ(VLDataStreamWithData(nullptr), nullptr);
    const std::string bytes(30, 'x');
    const auto lent = Adopt(ValDataCreateWithBytesNoCopy(bytes.data(), bytes.size(), nullptr, nullptr));
    EXPECT_EQ(VLDataStreamWithData(const_cast<ValData *>(lent.Get())), nullptr);
    EXPECT_EQ(bytes, std::string(30, 'x'));
    EXPECT_EQ(lent.Get()->references.load(), 1u);
}

TEST(DataStreamWithData, RefusesDataThatHeadersCannotCount) {
    const auto data = MutableData("abc");
    data.Get()->length = size_t{UINT32_MAX} + 1;
    EXPECT_EQ(VLDataStreamWithData(data.Get()), nullptr);
    data.Get()->length = 3;
    EXPECT_EQ(BytesOf(data.Get()), "abc");
}

TEST(DataStreamReset, LeavesEveryReadSegmentAndGoesBackToTheRootsStart) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamResetStream(stream.get());
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 48u);
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream.get()), 72u);
    VLDataStreamReadUInt32(stream.get());

    VLDataStreamResetStream(stream.get());
    // The child that was left has been read to its end; the root has not been read.
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 76, 24, kNone, 1}) + Words({1, 48, 52, 76, 0, 1}) +
                                   Words({2, 72, 4, 76, 24, 1}) + Words({1}));
    EXPECT_EQ(ReadHeader(stream), Words({0, 24, 76, 24, kNone, 1}));
}

TEST(DataStreamReset, HasNoEffectWhenTheRootWasClosed) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamCloseReadSegment(stream.get());
    VLDataStreamResetStream(stream.get());
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), nullptr);
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 4, 28, kNone, 1}) + Words({1}));
}

TEST(DataStreamClearing, ToTheStartOfTheRootKeepsItsCount) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamAppendUInt32(stream.get(), 2);
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(stream.get()), 24u);
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 0, 24, kNone, 2}));
}

TEST(DataStreamClearing, ToTheStartOfAChildKeepsWhatStandsBeforeIt) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendUInt32(stream.get(), 2);
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(stream.get()), 52u);
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 28, 24, kNone, 1}) + Words({1}) + Words({1, 52, 0, 52, 0, 1}));
    // The reset has moved the root's position, so that what stands before the child is counted again.
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(WriteHeader(stream), Words({0, 24, 28 + 28, 52, kNone, 2}));
}

TEST(DataStreamClearing, LeavesReadSegments) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamCloseWriteSegment(stream.get());
    VLDataStreamResetStream(stream.get());
    VLDataStreamOpenReadSegment(stream.get());
    VLDataStreamClearToStartOfSegment(stream.get());
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream.get()), VLDataStreamCurrentWriteSegment(stream.get()));
    EXPECT_EQ(ReadHeader(stream), Words({0, 24, 0, 24, kNone, 1}));
}

TEST(DataStreamClearing, WithoutAWriteSegmentOnlyResets) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamCloseWriteSegment(stream.get());
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(stream.get()), 0u);
    VLDataStreamClearStream(stream.get());
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 4, 24, kNone, 1}) + Words({1}));
}

TEST(DataStreamClearing, OfAllClosesWriteSegmentsUpToTheRoot) {
    const auto stream = NewStream();
    VLDataStreamAppendUInt32(stream.get(), 1);
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendUInt32(stream.get(), 2);
    VLDataStreamClearStream(stream.get());
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 0, 24, kNone, 2}));
    EXPECT_EQ(WriteHeader(stream), BytesOf(stream));
    // Segments are counted on.
    EXPECT_EQ(HeaderBytes(VLDataStreamOpenWriteSegment(stream.get())), Words({3, 48, 0, 48, 0, 0}));
}

TEST(DataStreamShow, WritesBothStacksAndTheBufferToStandardError) {
    const auto stream = NewStream();
    VLDataStreamOpenWriteSegment(stream.get());
    VLDataStreamAppendCString(stream.get(), "abc");
    testing::internal::CaptureStderr();
    VLDataStreamShow(stream.get());
    const auto description = Adopt(ValCopyDescription(stream->buffer.Get()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string("readStack:\n"
                                                                  "\tid:0\tcnt:0\t <s:24 l:24/52 p:24>\n"
                                                                  "writeStack:\n"
                                                                  "\tid:1\tcnt:1\t <s:48 l:4/52 p:52>\n"
                                                                  "\tid:0\tcnt:0\t <s:24 l:24/52 p:24>\n"
                                                                  "\n") +
                                                          ValStringGetUTF8(description.Get(), nullptr));
}

TEST(DataStreamShow, WritesNumbersUnsigned) {
    const auto stream = NewStream();
    Overwrite(stream, 0, Words({0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFD, 0xFFFFFFFC, 0, 0xFFFFFFFB}));
    testing::internal::CaptureStderr();
    VLDataStreamShow(stream.get());
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind(
                  "readStack:\n\tid:4294967295\tcnt:4294967291\t "
                  "<s:4294967294 l:4294967293/24 p:4294967292>\nwriteStack:\n",
                  0),
              0u);
}

TEST(DataStreamShow, OfClosedStacksHasNoLines) {
    const auto stream = NewStream();
    VLDataStreamCloseReadSegment(stream.get());
    VLDataStreamCloseWriteSegment(stream.get());
    testing::internal::CaptureStderr();
    VLDataStreamShow(stream.get());
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("readStack:\nwriteStack:\n\n", 0), 0u);
}

TEST(NullDataStream, IsHarmlessEverywhere) {
    char byte = 'x';
    size_t length = 1;
    testing::internal::CaptureStderr();
    VLDataStreamFree(nullptr);
    VLDataStreamAppendBytes(nullptr, &byte, 1);
    VLDataStreamAppendUInt32(nullptr, 1);
    VLDataStreamAppendDouble(nullptr, 1);
    VLDataStreamAppendCString(nullptr, "x");
    VLDataStreamAppendString(nullptr, "x", 1);
    VLDataStreamAppendEmptyStrings(nullptr, 1);
    EXPECT_EQ(VLDataStreamOpenWriteSegment(nullptr), nullptr);
    VLDataStreamCloseWriteSegment(nullptr);
    EXPECT_EQ(VLDataStreamCurrentWriteSegment(nullptr), nullptr);
    EXPECT_EQ(VLDataStreamReadBytes(nullptr, &byte, 1), 0u);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(VLDataStreamReadUInt32(nullptr), 0u);
    EXPECT_EQ(VLDataStreamReadDouble(nullptr), 0.0);
    EXPECT_EQ(VLDataStreamReadString(nullptr, &length), nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(VLDataStreamReadString(nullptr, nullptr), nullptr);
    EXPECT_EQ(VLDataStreamReadCString(nullptr), nullptr);
    EXPECT_EQ(VLDataStreamOpenReadSegment(nullptr), 0u);
    EXPECT_EQ(VLDataStreamSkipReadSegment(nullptr), 0u);
    EXPECT_EQ(VLDataStreamCloseReadSegment(nullptr), 0u);
    EXPECT_EQ(VLDataStreamResetReadSegment(nullptr), 0u);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(nullptr), nullptr);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(nullptr), 0);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(nullptr), 0);
    VLDataStreamResetStream(nullptr);
    EXPECT_EQ(VLDataStreamClearToStartOfSegment(nullptr), 0u);
    VLDataStreamClearStream(nullptr);
    VLDataStreamShow(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace vellum
