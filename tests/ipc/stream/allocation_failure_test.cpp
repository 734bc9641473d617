// SPDX-License-Identifier: MIT
// Exhausted memory: no stream is made, and a stream that was to be written stays as it was.
#include "ipc/stream/shorthand.hpp"
#include "platform/val/data.hpp"
#include "support/allocations.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace test;

using DataStreamInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(DataStreamInExhaustedMemory, IsNotMade) {
    Stream stream;
    int failed = 0;
    while (FailAfter(failed, [&] { stream = NewStream(); })) {
        EXPECT_FALSE(stream) << failed;
        ++failed;
    }
    EXPECT_TRUE(stream);
    EXPECT_EQ(failed, 2); // the buffer, the handle
}

TEST_F(DataStreamInExhaustedMemory, IsNotMadeOverDataWhichStaysAsItIs) {
    for (const auto bytes : {"short"sv, "as long as its capacity, and more than a header"sv}) {
        const auto data = MutableData(bytes);
        Stream stream;
        int failed = 0;
        while (FailAfter(failed, [&] { stream = Stream(VLDataStreamWithData(data.Get())); })) {
            EXPECT_FALSE(stream) << failed;
            EXPECT_EQ(BytesOf(data.Get()), bytes) << failed;
            EXPECT_EQ(data.Get()->references.load(), 1u) << failed;
            ++failed;
        }
        EXPECT_TRUE(stream);
        EXPECT_EQ(failed, 2); // the handle, the longer buffer
    }
}

// A stream of so many bytes; `write` is called on it with each of its allocations failing, and must then
// change nothing. How many allocations it made.
int FailWriting(size_t length, const std::function<void(VLDataStream *)> &write,
                const std::function<bool(int, const std::function<void()> &)> &fail) {
    for (int failed = 0;; ++failed) {
        const auto stream = NewStream();
        const std::string bytes(length, 'x');
        VLDataStreamAppendBytes(stream.get(), bytes.data(), bytes.size());
        const std::string before = BytesOf(stream);
        if (!fail(failed, [&] { write(stream.get()); })) {
            EXPECT_NE(BytesOf(stream), before);
            return failed;
        }
        EXPECT_EQ(BytesOf(stream), before) << length;
        EXPECT_EQ(WriteHeader(stream), before.substr(0, 24)) << length;
        EXPECT_EQ(ValDataGetBytes(stream->buffer.Get())[before.size()], 0) << length;
    }
}

TEST_F(DataStreamInExhaustedMemory, IsNotWritten) {
    const std::function<void(VLDataStream *)> kWrites[] = {
        [](VLDataStream *stream) { VLDataStreamAppendBytes(stream, "abcde", 5); },
        [](VLDataStream *stream) { VLDataStreamAppendUInt32(stream, 1); },
        [](VLDataStream *stream) { VLDataStreamAppendDouble(stream, 1); },
        [](VLDataStream *stream) { VLDataStreamAppendCString(stream, "abc"); },
        [](VLDataStream *stream) { VLDataStreamAppendString(stream, "abc", 3); },
        [](VLDataStream *stream) { VLDataStreamAppendEmptyStrings(stream, 3); },
        [](VLDataStream *stream) { VLDataStreamOpenWriteSegment(stream); },
    };
    for (const auto &write : kWrites) {
        int allocations = 0;
        // Of every length around the buffer's capacity.
        for (size_t length = 180; length < 260; ++length)
            allocations += FailWriting(length, write, FailAfter);
        EXPECT_GE(allocations, 3);
    }
}

TEST_F(DataStreamInExhaustedMemory, CountsNoSegmentThatWasNotOpened) {
    const auto stream = NewStream();
    VLDataStreamAppendEmptyStrings(stream.get(), 230);
    const VLDataStreamSegment *header = nullptr;
    EXPECT_TRUE(FailAfter(0, [&] { header = VLDataStreamOpenWriteSegment(stream.get()); }));
    EXPECT_EQ(header, nullptr);
    EXPECT_EQ(HeaderBytes(VLDataStreamOpenWriteSegment(stream.get())), Words({1, 278, 0, 278, 0, 0}));
}

TEST_F(DataStreamInExhaustedMemory, IsReadAndClearedAllTheSame) {
    const auto stream = NewStream();
    VLDataStreamAppendCString(stream.get(), "abc");
    EXPECT_FALSE(FailAfter(0, [&] {
        VLDataStreamResetStream(stream.get());
        EXPECT_STREQ(VLDataStreamReadCString(stream.get()), "abc");
        VLDataStreamClearStream(stream.get());
    }));
    EXPECT_EQ(BytesOf(stream), Words({0, 24, 0, 24, kNone, 2}));
}

} // namespace
} // namespace vellum
