// SPDX-License-Identifier: MIT
// The writer into memory that travels.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/encoding.hpp"
#include "ipc/encoding/vm_flatten_context.hpp"
#include "support/captured_log.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vellum::test {
namespace {

const size_t kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));

Bytes Read(const uint8_t *bytes, size_t length) {
    return Bytes(bytes, bytes + length);
}

TEST(VMFlatten, HoldsWhatThePlainWriterWrites) {
    const auto value = Dictionary({{String("a"), List({Int(1), String("é")})}});
    TValVMFlattenContext context(value.Get());
    EXPECT_TRUE(context.IsOk());
    EXPECT_EQ(Read(context.GetBuffer(), context.GetLength()), Flattened(value));
    EXPECT_EQ(context.GetBytePtr(), context.GetBuffer());
}

TEST(VMFlatten, TakesWholePagesAndFillsTheRestWithZeros) {
    TValVMFlattenContext context(kValBooleanTrue);
    EXPECT_EQ(context.GetLength(), 9U);
    ASSERT_EQ(context.GetBufferSize(), kPage);
    EXPECT_EQ(Read(context.GetBuffer() + 9, kPage - 9), Bytes(kPage - 9));
}

TEST(VMFlatten, HoldsAValueOfManyPieces) {
    std::vector<Ref<const void>> values;
    for (int i = 0; i < 5'000; ++i) values.push_back(String(std::string(static_cast<size_t>(i) % 97, 'x')));
    values.push_back(Adopt(ValDataCreate(std::string(1'000'000, 'd').data(), 1'000'000)));
    values.push_back(Adopt(ValCharacterSetCreateWithRange(0, 0x10FFFF)));
    const auto value = List(values);
    TValVMFlattenContext context(value.Get());
    EXPECT_TRUE(Read(context.GetBuffer(), context.GetLength()) == Flattened(value));
}

TEST(VMFlatten, TakesNoMorePagesThanTheBytesNeed) {
    const std::string text(40 * kPage, 'x'); // estimated at three bytes a character
    TValVMFlattenContext context(String(text).Get());
    EXPECT_EQ(context.GetBufferSize(), 41 * kPage);
    EXPECT_EQ(context.GetLength(), 40 * kPage + 8);
    EXPECT_EQ(lseek(context.OrphanBuffer().Descriptor(), 0, SEEK_END), static_cast<off_t>(41 * kPage));
}

// More than is copied into a message.
Ref<const ValString> Large() {
    return String(std::string(100'000, 'x'));
}

TEST(VMFlatten, NeedsNoDescriptorForASmallValue) {
    TValVMFlattenContext context(kValBooleanTrue);
    EXPECT_EQ(context.OrphanBuffer().Descriptor(), -1);
}

TEST(VMFlatten, SealsTheBlock) {
    TValVMFlattenContext context(Large().Get());
    const MemoryBlock block = context.OrphanBuffer();
    constexpr int kSeals = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;
    EXPECT_EQ(fcntl(block.Descriptor(), F_GET_SEALS) & kSeals, kSeals);
}

TEST(VMFlatten, OrphansTheBlockAndHasNoneAnyMore) {
    TValVMFlattenContext context(kValBooleanTrue);
    const uint8_t *address = context.GetBuffer();
    const MemoryBlock block = context.OrphanBuffer();
    EXPECT_EQ(block.Bytes(), address);
    EXPECT_EQ(Read(block.Bytes(), 9), Hex("00000103 00000001 01"));
    EXPECT_EQ(context.GetBuffer(), nullptr);
    EXPECT_EQ(context.GetBufferSize(), 0U);
    EXPECT_EQ(context.GetBytePtr(), nullptr);
}

TEST(VMFlatten, KeepsABlockThatOutlivesTheContext) {
    MemoryBlock block;
    {
        TValVMFlattenContext context(String("kept").Get());
        block = context.OrphanBuffer();
    }
    EXPECT_EQ(Read(block.Bytes(), 12), Hex("00000007 00000004 6b657074"));
}

TEST(VMFlatten, GivesItsBlockBackUnlessItWasOrphaned) {
    int descriptor = -1;
    {
        TValVMFlattenContext context(Large().Get());
        descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    TValVMFlattenContext next(Large().Get()); // its descriptor is the lower one that became free
    EXPECT_LT(next.OrphanBuffer().Descriptor(), descriptor);
    close(descriptor);
}

TEST(VMFlatten, WritesNothingAfterItsOneValue) {
    TValVMFlattenContext context(kValBooleanTrue);
    context.Flatten(kValBooleanFalse);
    context.FlattenValString(String("more").Get());
    const auto raw = Adopt(ValArrayCreateMutable(0, &kValRawCallbacks));
    ValArrayAppend(raw.Get(), kValBooleanTrue);
    context.FlattenValArray(raw.Get()); // nor does it fail any more
    EXPECT_EQ(context.GetLength(), 9U);
    EXPECT_TRUE(context.IsOk());
}

TEST(VMFlatten, HasNoBlockForNull) {
    TValVMFlattenContext context(nullptr);
    EXPECT_EQ(context.GetBuffer(), nullptr);
    EXPECT_EQ(context.GetBufferSize(), 0U);
    EXPECT_EQ(context.GetLength(), 0U);
}

TEST(VMFlatten, HasNoBlockForWhatCannotBeFlattened) {
    CapturedLog log;
    TValVMFlattenContext context(Nested(65).Get());
    EXPECT_EQ(context.OrphanBuffer().Descriptor(), -1);
    EXPECT_EQ(context.GetBuffer(), nullptr);
    EXPECT_EQ(context.GetBufferSize(), 0U);
    EXPECT_FALSE(context.IsOk());
}

TEST(VMFlatten, HasNoBlockForWhatIsLargerThanALengthCanSay) {
    const auto large = Adopt(ValDataCreateWithBytesNoCopy("", size_t{1} << 31, nullptr, nullptr));
    TValVMFlattenContext context(List({String("before"), large}).Get());
    EXPECT_EQ(context.GetBuffer(), nullptr);
    EXPECT_EQ(context.GetLength(), 0U);
    EXPECT_FALSE(context.IsOk());
}

TEST(VMFlatten, HasNoBlockWhenTheSystemHasNoRoom) {
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    const auto value = Large();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
    TValVMFlattenContext context(value.Get());
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(context.GetBuffer(), nullptr);
    EXPECT_EQ(context.GetBufferSize(), 0U);
    EXPECT_EQ(context.GetLength(), 0U);
    EXPECT_FALSE(context.IsOk());
}

TEST(VMFlatten, AnswersZeroWhereOthersHaveAnAddressAndASize) {
    TValVMFlattenContext context(kValBooleanTrue);
    EXPECT_EQ(context.GetSize(), 0U);
    EXPECT_EQ(context.GetAddr(), 0U);
}

} // namespace
} // namespace vellum::test
