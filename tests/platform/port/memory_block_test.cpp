// SPDX-License-Identifier: MIT
#include "platform/port/memory_block.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace vellum::test {
namespace {

const size_t kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));

TEST(MemoryBlock, IsEmptyToBeginWith) {
    const MemoryBlock block;
    EXPECT_EQ(block.Bytes(), nullptr);
    EXPECT_EQ(block.Size(), 0U);
    EXPECT_EQ(block.Descriptor(), -1);
}

MemoryBlock Sealed(std::string_view text) {
    MemoryBlock block = MemoryBlock::Create();
    EXPECT_TRUE(block.Append(text.data(), text.size()));
    EXPECT_TRUE(block.Seal());
    return block;
}

TEST(MemoryBlock, HasNoAddressBeforeItIsSealed) {
    MemoryBlock block = MemoryBlock::Create();
    EXPECT_GE(block.Descriptor(), 0);
    EXPECT_TRUE(block.Append("abc", 3));
    EXPECT_EQ(block.Bytes(), nullptr);
    EXPECT_EQ(block.Size(), 0U);
}

TEST(MemoryBlock, HoldsWhatWasAppendedAndZerosToTheEndOfThePage) {
    MemoryBlock block = MemoryBlock::Create();
    const std::string large(kPage, 'x');
    ASSERT_TRUE(block.Append("ab", 2) && block.Append(large.data(), large.size()) && block.Append("", 0));
    ASSERT_TRUE(block.Seal());
    ASSERT_EQ(block.Size(), 2 * kPage);
    const std::string bytes(reinterpret_cast<const char *>(block.Bytes()), block.Size());
    EXPECT_EQ(bytes, "ab" + large + std::string(kPage - 2, '\0'));
}

TEST(MemoryBlock, CannotBeChangedOnceItIsSealed) {
    MemoryBlock block = Sealed("x");
    constexpr int kSeals = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL;
    EXPECT_EQ(fcntl(block.Descriptor(), F_GET_SEALS) & kSeals, kSeals);
    EXPECT_FALSE(block.Append("y", 1));
    EXPECT_EQ(mmap(nullptr, kPage, PROT_READ | PROT_WRITE, MAP_SHARED, block.Descriptor(), 0), MAP_FAILED);
    EXPECT_EQ(pwrite(block.Descriptor(), "x", 1, 0), -1);
    EXPECT_EQ(ftruncate(block.Descriptor(), 0), -1);
    EXPECT_EQ(ftruncate(block.Descriptor(), static_cast<off_t>(2 * kPage)), -1);
    EXPECT_EQ(fcntl(block.Descriptor(), F_ADD_SEALS, F_SEAL_WRITE), -1);
    EXPECT_NE(fcntl(block.Descriptor(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_TRUE(block.Seal()); // it is
    EXPECT_EQ(block.Bytes()[0], 'x');
}

TEST(MemoryBlock, CanBeMappedByAReceiver) {
    const MemoryBlock block = Sealed("r");
    void *memory = mmap(nullptr, kPage, PROT_READ, MAP_PRIVATE, block.Descriptor(), 0);
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_EQ(*static_cast<char *>(memory), 'r');
    munmap(memory, kPage);
}

TEST(MemoryBlock, IsEmptyAfterSealingNothing) {
    MemoryBlock block = MemoryBlock::Create();
    EXPECT_FALSE(block.Seal());
    EXPECT_EQ(block.Bytes(), nullptr);
    EXPECT_EQ(block.Size(), 0U);
    EXPECT_EQ(block.Descriptor(), -1);
    EXPECT_FALSE(block.Append("x", 1));
    EXPECT_FALSE(MemoryBlock().Seal());
}

// Whoever writes beyond the limit is ended by a signal; none may be raised.
class MemoryBlockWithALimit : public ::testing::Test {
protected:
    void SetLimit(size_t bytes) {
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former_), 0);
        const rlimit limit = {bytes, former_.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    void TearDown() override { setrlimit(RLIMIT_FSIZE, &former_); }

private:
    rlimit former_ = {RLIM_INFINITY, RLIM_INFINITY};
};

TEST_F(MemoryBlockWithALimit, IsEmptyWhenMoreIsAppendedThanAFileMayHold) {
    SetLimit(kPage);
    const std::string large(kPage, 'x');
    MemoryBlock block = MemoryBlock::Create();
    EXPECT_TRUE(block.Append(large.data(), large.size()));
    EXPECT_FALSE(block.Append("x", 1));
    EXPECT_EQ(block.Descriptor(), -1);
}

TEST_F(MemoryBlockWithALimit, IsEmptyWhenItsLastPageIsMoreThanAFileMayHold) {
    SetLimit(kPage - 1);
    MemoryBlock block = MemoryBlock::Create();
    EXPECT_TRUE(block.Append("x", 1));
    EXPECT_FALSE(block.Seal());
    EXPECT_EQ(block.Descriptor(), -1);
}

TEST(MemoryBlock, IsEmptyWhenDescriptorsAreExhausted) {
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const MemoryBlock block = MemoryBlock::Create();
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(block.Descriptor(), -1);
    EXPECT_EQ(block.Size(), 0U);
}

TEST(MemoryBlock, HoldsASmallCopyWithoutADescriptor) {
    const MemoryBlock block = MemoryBlock::CreateCopy("small", 5);
    ASSERT_EQ(block.Size(), kPage);
    const std::string bytes(reinterpret_cast<const char *>(block.Bytes()), block.Size());
    EXPECT_EQ(bytes, "small" + std::string(kPage - 5, '\0'));
    EXPECT_EQ(block.Descriptor(), -1);
    EXPECT_EQ(MemoryBlock::CreateCopy("", 0).Bytes(), nullptr);
}

TEST(MemoryBlock, MovesAndLeavesNothingBehind) {
    MemoryBlock block = Sealed("m");
    const uint8_t *address = block.Bytes();
    const MemoryBlock other = std::move(block);
    EXPECT_EQ(other.Bytes(), address);
    EXPECT_EQ(block.Bytes(), nullptr); // NOLINT(bugprone-use-after-move): what is left is stated
    EXPECT_EQ(block.Descriptor(), -1);
}

TEST(MemoryBlock, ClosesItsDescriptorWhenItDies) {
    int descriptor = -1;
    {
        const MemoryBlock block = Sealed("x");
        descriptor = block.Descriptor();
        ASSERT_GE(fcntl(descriptor, F_GETFD), 0);
    }
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    EXPECT_EQ(errno, EBADF);
}

} // namespace
} // namespace vellum::test
