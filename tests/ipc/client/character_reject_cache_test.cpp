// SPDX-License-Identifier: MIT
// The characters that no font was found for.
#include "frame/registry/generation_seed.hpp"
#include "ipc/client/character_reject_cache.hpp"
#include "support/allocations.hpp"

#include <gtest/gtest.h>

#include <thread>

namespace vellum::test {
namespace {

class CharacterRejectCache : public ::testing::Test {
protected:
    void SetUp() override { TGenerationSeed::UpdateGeneration(); } // whatever this thread had asked before
};

TEST_F(CharacterRejectCache, IsEmptyToBeginWith) {
    EXPECT_FALSE(TCharacterRejectCache().Contains(0));
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x41));
}

TEST_F(CharacterRejectCache, RemembersCharactersOfEveryPlane) {
    for (uint32_t character : {0u, 0x41u, 0xFFFFu, 0x1F600u, 0x10FFFFu})
        TCharacterRejectCache().Add(character);
    for (uint32_t character : {0u, 0x41u, 0xFFFFu, 0x1F600u, 0x10FFFFu}) {
        EXPECT_TRUE(TCharacterRejectCache().Contains(character)) << character;
    }
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x42));
}

TEST_F(CharacterRejectCache, RemembersNothingThatIsNoCharacter) {
    TCharacterRejectCache().Add(0x110000);
    TCharacterRejectCache().Add(UINT32_MAX);
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x110000));
    EXPECT_FALSE(TCharacterRejectCache().Contains(UINT32_MAX));
}

TEST_F(CharacterRejectCache, IsEmptyAfterAFontHasChanged) {
    TCharacterRejectCache().Add(0x41);
    TGenerationSeed::UpdateGeneration();
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x41));
    TCharacterRejectCache().Add(0x42);
    EXPECT_TRUE(TCharacterRejectCache().Contains(0x42));
}

TEST_F(CharacterRejectCache, DoesNotRememberACharacterDuringWhoseSearchAFontChanged) {
    const TCharacterRejectCache cache;
    TGenerationSeed::UpdateGeneration();
    cache.Add(0x41);
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x41));
    cache.Add(0x42); // and not into the memory that another handle has emptied
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x42));
}

TEST_F(CharacterRejectCache, AllocatesNothingToTellThatACharacterWasRejected) {
    ASSERT_TRUE(IsAllocatorWrapped());
    TCharacterRejectCache().Add(0x41);
    bool contains = false;
    EXPECT_EQ(CountAllocations([&] { contains = TCharacterRejectCache().Contains(0x41); }), 0);
    EXPECT_TRUE(contains);
}

TEST(ConcurrentCharacterRejectCache, IsEachThreadsOwn) {
    TCharacterRejectCache().Add(0x41);
    std::thread([] {
        EXPECT_FALSE(TCharacterRejectCache().Contains(0x41));
        TCharacterRejectCache().Add(0x42);
    }).join();
    EXPECT_TRUE(TCharacterRejectCache().Contains(0x41));
    EXPECT_FALSE(TCharacterRejectCache().Contains(0x42));
}

using CharacterRejectCacheInExhaustedMemory = ExhaustedMemoryTest;

TEST_F(CharacterRejectCacheInExhaustedMemory, RemembersNothingUntilThereIsMemoryAgain) {
    for (int successes = 0; successes < 3; ++successes) { // the object, its set, the set's first page
        std::thread([successes] {
            EXPECT_TRUE(FailAfter(successes, [] { TCharacterRejectCache().Add(0x41); })) << successes;
            EXPECT_FALSE(TCharacterRejectCache().Contains(0x41)) << successes;
            TCharacterRejectCache().Add(0x41);
            EXPECT_TRUE(TCharacterRejectCache().Contains(0x41)) << successes;
        }).join();
    }
}

} // namespace
} // namespace vellum::test
