// SPDX-License-Identifier: MIT
// Entering, leaving and skipping segments while reading.
#include "ipc/stream/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace test;

// "x", a child of two integers, a child of a string, an integer.
class DataStreamReadSegments : public ::testing::Test {
protected:
    void SetUp() override {
        VLDataStreamAppendBytes(stream_.get(), "x", 1);
        VLDataStreamOpenWriteSegment(stream_.get()); // at 25, its payload from 49 to 57
        VLDataStreamAppendUInt32(stream_.get(), 1);
        VLDataStreamAppendUInt32(stream_.get(), 2);
        VLDataStreamCloseWriteSegment(stream_.get());
        VLDataStreamOpenWriteSegment(stream_.get()); // at 57, its payload from 81 to 85
        VLDataStreamAppendCString(stream_.get(), "abc");
        VLDataStreamCloseWriteSegment(stream_.get());
        VLDataStreamAppendUInt32(stream_.get(), 3); // at 85
        VLDataStreamResetStream(stream_.get());
        char byte = 0;
        VLDataStreamReadBytes(stream_.get(), &byte, 1);
        EXPECT_EQ(byte, 'x');
    }

    Stream stream_ = NewStream();
};

constexpr uint32_t kRootLength = 1 + (24 + 32) + (24 + 28) + 4;

TEST_F(DataStreamReadSegments, AreEnteredAtTheirStart) {
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream_.get()), 49u);
    EXPECT_EQ(ReadHeader(stream_), Words({1, 49, 8, 49, 0, 2}));
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 1u);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream_.get()), 4);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream_.get()), 89 - 53);
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 2u);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream_.get()), 0);
}

TEST_F(DataStreamReadSegments, AreLeftByTheirOwnLengthHoweverFarTheyWereRead) {
    VLDataStreamOpenReadSegment(stream_.get());
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream_.get()), 57u);
    // Closing a read segment counts no item.
    EXPECT_EQ(ReadHeader(stream_), Words({0, 24, kRootLength, 57, kNone, 4}));
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream_.get()), 81u);
    EXPECT_STREQ(VLDataStreamReadCString(stream_.get()), "abc");
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream_.get()), 85u);
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 3u);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream_.get()), 0);
    // What is left by the root's length is what was counted twice: the headers of two children.
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream_.get()), 48);
}

TEST_F(DataStreamReadSegments, AreSkippedWithoutBeingEntered) {
    EXPECT_EQ(VLDataStreamSkipReadSegment(stream_.get()), 57u);
    EXPECT_EQ(VLDataStreamSkipReadSegment(stream_.get()), 85u);
    EXPECT_EQ(ReadHeader(stream_), Words({0, 24, kRootLength, 85, kNone, 4}));
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 3u);
}

TEST_F(DataStreamReadSegments, AreReadAgainFromTheirStart) {
    VLDataStreamOpenReadSegment(stream_.get());
    VLDataStreamReadUInt32(stream_.get());
    EXPECT_EQ(VLDataStreamResetReadSegment(stream_.get()), 49u);
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 1u);
    VLDataStreamCloseReadSegment(stream_.get());
    EXPECT_EQ(VLDataStreamResetReadSegment(stream_.get()), 24u);
}

TEST_F(DataStreamReadSegments, AreNoneWhenTheRootIsClosed) {
    char byte = '.';
    size_t length = 9;
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream_.get()), 0u);
    const std::string before = BytesOf(stream_);
    EXPECT_EQ(VLDataStreamCurrentReadSegment(stream_.get()), nullptr);
    EXPECT_EQ(VLDataStreamReadBytes(stream_.get(), &byte, 1), 0u);
    EXPECT_EQ(byte, '.');
    EXPECT_EQ(VLDataStreamReadUInt32(stream_.get()), 0u);
    EXPECT_EQ(VLDataStreamReadDouble(stream_.get()), 0.0);
    EXPECT_EQ(VLDataStreamReadString(stream_.get(), &length), nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(VLDataStreamReadCString(stream_.get()), nullptr);
    EXPECT_EQ(VLDataStreamOpenReadSegment(stream_.get()), 0u);
    EXPECT_EQ(VLDataStreamSkipReadSegment(stream_.get()), 0u);
    EXPECT_EQ(VLDataStreamCloseReadSegment(stream_.get()), 0u);
    EXPECT_EQ(VLDataStreamResetReadSegment(stream_.get()), 0u);
    EXPECT_EQ(VLDataStreamBytesLeftToReadInCurrentSegment(stream_.get()), 0);
    EXPECT_EQ(VLDataStreamBytesLeftToRead(stream_.get()), 0);
    EXPECT_EQ(BytesOf(stream_), before);
}

} // namespace
} // namespace vellum
