// SPDX-License-Identifier: MIT
// What FreeType gets when it asks for memory, and what becomes of it.
#include "platform/font/freetype_library.hpp"
#include "platform/font/limits.hpp"
#include "support/allocations.hpp"

#include <cstring>

namespace vellum::test {
namespace {

constexpr long kMegabyte = 1 << 20;
constexpr long kCeiling = limits::kFreeTypeMemory;

class FreeTypeMemory : public ExhaustedMemoryTest {
protected:
    char *Allocate(long size) const { return static_cast<char *>(memory->alloc(memory, size)); }
    char *Reallocate(char *block, long before, long size) const {
        return static_cast<char *>(memory->realloc(memory, before, size, block));
    }
    void Free(char *block) const { memory->free(memory, block); }

    FT_Memory memory = TFreeType::Memory();
};

TEST_F(FreeTypeMemory, HasACeilingThatSmallBlocksMayPassByALittle) {
    const TFreeType freetype;
    ASSERT_TRUE(freetype.Library());
    char *most = Allocate(kCeiling - kMegabyte);
    ASSERT_TRUE(most);
    EXPECT_FALSE(Allocate(kMegabyte));
    EXPECT_FALSE(Reallocate(most, kCeiling - kMegabyte, kCeiling));
    int small_blocks = 0;
    while (Allocate(4000)) ++small_blocks;
    EXPECT_GT(small_blocks, kMegabyte / 2 / 4000);
    EXPECT_LT(small_blocks, 2 * kMegabyte / 4000);
    EXPECT_FALSE(Allocate(-1));
}

TEST_F(FreeTypeMemory, IsFreedWhateverIsLeftBehindWhenSomeWasRefused) {
    {
        const TFreeType freetype;
        EXPECT_TRUE(Allocate(kCeiling / 2));
        EXPECT_FALSE(Allocate(kCeiling));
    }
    const TFreeType freetype;
    EXPECT_TRUE(freetype.Library());
    char *most = Allocate(kCeiling - kMegabyte);
    ASSERT_TRUE(most);
    Free(most);
}

TEST_F(FreeTypeMemory, OfSmallBlocksIsReserved) {
    for (int i = 0; i < 3; ++i) { // each time as much
        const TFreeType freetype;
        ASSERT_TRUE(freetype.Library());
        FailAllocationAfter(0);
        EXPECT_FALSE(Allocate(kMegabyte));
        EXPECT_TRUE(HasAllocationFailed());
        int blocks = 0;
        bool has_more = true;
        for (; has_more; blocks += has_more) {
            FailAllocationAfter(0);
            char *block = Allocate(1000);
            EXPECT_TRUE(HasAllocationFailed());
            has_more = block;
            if (has_more) std::memset(block, blocks, 1000);
        }
        EXPECT_GT(blocks, 50);
        EXPECT_LT(blocks, 70);
    }
}

TEST_F(FreeTypeMemory, ThatWasReservedCanBeMadeLargerAndFreed) {
    const TFreeType freetype;
    FailAllocationAfter(0);
    char *block = Allocate(5);
    ASSERT_TRUE(HasAllocationFailed());
    ASSERT_TRUE(block);
    std::strcpy(block, "text");
    FailAllocationAfter(0);
    EXPECT_FALSE(Reallocate(block, 5, kMegabyte));
    EXPECT_STREQ(block, "text");
    block = Reallocate(block, 5, kMegabyte);
    ASSERT_TRUE(block);
    EXPECT_STREQ(block, "text");
    Free(block);
}

} // namespace
} // namespace vellum::test
