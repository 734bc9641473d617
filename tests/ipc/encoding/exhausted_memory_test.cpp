// SPDX-License-Identifier: MIT
// Exhausted memory, one allocation after the other: a value is written and read whole or not at all.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "support/allocations.hpp"
#include "support/captured_log.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// One of each kind, and more strings than a reader remembers.
Ref<const void> Everything() {
    std::vector<Ref<const void>> strings;
    for (int i = 0; i < 200; ++i) strings.push_back(String("string " + std::to_string(i)));
    return Dictionary({{String("numbers"), List({Int(1'000), Adopt(ValNumberCreateFloat64(0.5))})},
                       {String("data"), Adopt(ValDataCreate("abc", 3))},
                       {String("uuid"), Adopt(ValUUIDCreate())},
                       {String("url"), Url("file:///a.ttf")},
                       {String("set"), SetOf({Retain(kValBooleanTrue), Int(2'000)})},
                       {String("characters"), Adopt(ValCharacterSetCreateWithRange(0x20, 0x2000))},
                       {String("strings"), List(strings)}});
}

using FlattenInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(FlattenInExhaustedMemory, WritesAllOrNothing) {
    const auto value = Everything();
    const Bytes whole = Flattened(value);
    CapturedLog log;
    int failures = 0;
    for (bool failed = true; failed; failures += failed) {
        const auto buffer = Adopt(ValDataCreateMutable(16));
        TValFlattenContext context(buffer.Get(), false);
        failed = FailAfter(failures, [&] { context.Flatten(value.Get()); });
        EXPECT_EQ(context.IsOk(), !failed);
        EXPECT_TRUE(Bytes(context.GetBytePtr(), context.GetBytePtr() + context.GetLength()) ==
                    (failed ? Bytes() : whole));
    }
    EXPECT_GT(failures, 3); // the buffer doubles
}

TEST_F(FlattenInExhaustedMemory, HasABlockOrNone) {
    const auto value = Everything();
    CapturedLog log;
    int failures = 0;
    for (bool failed = true; failed; failures += failed) {
        failed = FailAfter(failures, [&] {
            TValVMFlattenContext context(value.Get());
            EXPECT_EQ(context.GetBuffer() != nullptr, context.IsOk());
            EXPECT_EQ(context.GetBuffer() != nullptr, !HasAllocationFailed());
            EXPECT_EQ(context.OrphanBuffer().Bytes() != nullptr, !HasAllocationFailed());
        });
    }
    EXPECT_GE(failures, 1);
}

using ResurrectInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(ResurrectInExhaustedMemory, ReadsAllOrNothing) {
    const auto value = Everything();
    const Bytes bytes = Flattened(value);
    CapturedLog log;
    int failures = 0;
    int refusals = 0;
    for (bool failed = true; failed; failures += failed) {
        TValResurrectContext context(bytes.data(), bytes.size());
        Ref<const void> read;
        failed = FailAfter(failures, [&] { read = context.Resurrect(); });
        // A string for which the pool has no memory stands outside of it, and the reading goes on.
        EXPECT_TRUE(context.IsRefused() ? !read : ValEqual(read.Get(), value.Get()));
        refusals += context.IsRefused();
        ASSERT_LT(failures, 1'000);
    }
    EXPECT_GT(refusals, 10);
}

} // namespace
} // namespace vellum::test
