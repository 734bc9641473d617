// SPDX-License-Identifier: MIT
#include "platform/val/string.hpp"
#include "support/allocations.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_str.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace vellum {
namespace {

TValStr Numbered(int number) {
    return TValStr("name " + std::to_string(number));
}

TEST(StringUniquer, GivesTheFirstOfEqualStrings) {
    TValStringUniquerImp pool;
    const TValStr first("text");
    const TValStr second(std::string("text"));
    ASSERT_NE(first.Get(), second.Get());
    EXPECT_EQ(pool.GetUniqueString(first.Get()).Get(), first.Get());
    EXPECT_EQ(pool.GetUniqueString(second.Get()).Get(), first.Get());
    EXPECT_EQ(pool.GetUniqueString(TValStr("Text").Get()).Get() == first.Get(), false);
    EXPECT_EQ(pool.Count(), 2u);
}

TEST(StringUniquer, GivesNullForNull) {
    TValStringUniquerImp pool;
    EXPECT_FALSE(pool.GetUniqueString(nullptr));
    EXPECT_EQ(pool.Count(), 0u);
}

TEST(StringUniquer, KeepsWhatItWasGiven) {
    TValStringUniquerImp pool;
    const ValString *address = nullptr;
    {
        const TValStr text("kept");
        address = text.Get();
        (void)pool.GetUniqueString(text.Get());
    }
    EXPECT_EQ(pool.GetUniqueString(TValStr("kept").Get()).Get(), address);
}

TEST(StringUniquer, DropsWhatNobodyElseHoldsWhenItHasGrown) {
    TValStringUniquerImp pool;
    const TValStr held = Numbered(-1);
    (void)pool.GetUniqueString(held.Get());
    const auto last = static_cast<int>(TValStringUniquerImp::kSmallestSweep);
    for (int i = 1; i < last - 1; ++i) (void)pool.GetUniqueString(Numbered(i).Get());
    EXPECT_EQ(pool.Count(), TValStringUniquerImp::kSmallestSweep - 1);
    const auto latest = pool.GetUniqueString(Numbered(last).Get()); // this one sweeps
    EXPECT_EQ(pool.Count(), 2u);
    EXPECT_EQ(pool.GetUniqueString(Numbered(-1).Get()).Get(), held.Get());
    EXPECT_EQ(pool.GetUniqueString(Numbered(last).Get()).Get(), latest.Get());
}

TEST(StringUniquer, DropsNothingThatIsHeld) {
    TValStringUniquerImp pool;
    std::vector<Ref<const ValString>> held;
    for (int i = 0; i < 20'000; ++i) held.push_back(pool.GetUniqueString(Numbered(i).Get()));
    EXPECT_EQ(pool.Count(), 20'000u);
    for (int i = 0; i < 20'000; i += 7) {
        EXPECT_EQ(pool.GetUniqueString(Numbered(i).Get()).Get(), held[static_cast<size_t>(i)].Get());
    }
}

TEST(StringUniquer, StaysSmallUnderPassingStrings) {
    TValStringUniquerImp pool;
    for (int i = 0; i < 50'000; ++i) {
        (void)pool.GetUniqueString(Numbered(i).Get());
        ASSERT_LE(pool.Count(), TValStringUniquerImp::kSmallestSweep);
    }
}

TEST(StringUniquer, StaysSmallUnderPassingLargeStrings) {
    TValStringUniquerImp pool;
    const std::string text(100'000, 'x');
    for (int i = 0; i < 200; ++i) {
        (void)pool.GetUniqueString(text + std::to_string(i));
        ASSERT_LE(pool.CountBytes(), TValStringUniquerImp::kSmallestSweepBytes + 2 * text.size());
    }
}

TEST(StringUniquer, CountsTheBytesOfWhatItKeeps) {
    TValStringUniquerImp pool;
    std::vector<Ref<const ValString>> kept;
    const std::string text(100'000, 'x');
    for (int i = 0; i < 50; ++i) kept.push_back(pool.GetUniqueString(text + std::to_string(i)));
    EXPECT_GE(pool.CountBytes(), 5'000'000u);
    kept.clear();
    for (int i = 0; i < 60; ++i) (void)pool.GetUniqueString(text + "passing" + std::to_string(i));
    EXPECT_LT(pool.CountBytes(), 5'000'000u);
}

// Texts of 32 bytes whose hash with the constant seeds does not depend on their last 16: after the first
// 16 the state is the very word that the next 8 must be to make a product of zero.
std::vector<std::string> TextsOfOneHash(size_t count) {
    std::vector<std::string> texts;
    std::string start(16, 'a');
    for (uint32_t i = 0;; ++i) {
        for (int digit = 0; digit < 8; ++digit)
            start[static_cast<size_t>(digit)] = static_cast<char>('a' + (i >> 4 * digit & 15));
        const uint64_t state = MixHash(LoadBytes(start.data(), 8) ^ kHashSeeds[1],
                                       LoadBytes(start.data() + 8, 8) ^ kHashSeeds[0]);
        char word[8];
        for (int byte = 0; byte < 8; ++byte) word[byte] = static_cast<char>(state >> 8 * byte);
        if (AsciiPrefixLength({word, 8}) != 8) continue;
        for (size_t n = 0; n < count; ++n) {
            std::string number = std::to_string(n);
            texts.push_back(start + std::string(8 - number.size(), '0') + number + std::string(word, 8) +
                            "a");
        }
        return texts;
    }
}

TEST(StringUniquer, IsNotSlowedDownByTextsThatWereMadeToCollide) {
    std::vector<Ref<const ValString>> kept;
    const auto texts = TextsOfOneHash(50'000);
    ASSERT_EQ(HashText(texts[0]), HashText(texts[1])); // they do, for whoever knows the seeds
    ASSERT_EQ(HashText(texts[0]), HashText(texts[49'999]));
    TValStringUniquerImp pool;
    for (const std::string &text : texts)
        kept.push_back(pool.GetUniqueString(text)); // quadratic: over a minute
    EXPECT_EQ(pool.Count(), texts.size());
}

TEST(StringPool, IsOneForTheProcess) {
    const auto first = TValStringUniquer().GetUniqueString(TValStr("one pool").Get());
    EXPECT_EQ(TValStringUniquer().GetUniqueString(TValStr("one pool").Get()).Get(), first.Get());
}

TEST(StringPool, GivesTheKeyConstantsForEqualText) {
    ASSERT_FALSE(PooledConstants().empty());
    for (int i = 0; i < 10'000; ++i) (void)TValStringUniquer().GetUniqueString(Numbered(i).Get());
    for (const ValString *constant : PooledConstants()) {
        const TValStr copy(Text(constant));
        const auto unique = TValStringUniquer().GetUniqueString(copy.Get());
        EXPECT_EQ(Text(unique), Text(constant));
        EXPECT_EQ(std::ranges::count(PooledConstants(), unique.Get()), 1); // two of them have one text
        EXPECT_EQ(constant->references.load(), ValObject::kImmortal);
    }
}

using StringUniquerInExhaustedMemory = test::ExhaustedMemoryTest;

TEST_F(StringUniquerInExhaustedMemory, BeginsWithItsConstantsOrNotAtAll) {
    TValStringUniquerImp pool(PooledConstants());
    const TValStr copy(Text(PooledConstants().front()));
    Ref<const ValString> unique;
    EXPECT_TRUE(FailAfter(0, [&] { unique = pool.GetUniqueString(copy.Get()); }));
    EXPECT_EQ(unique.Get(), copy.Get());
    EXPECT_EQ(pool.Count(), 0u);
    EXPECT_EQ(pool.GetUniqueString(copy.Get()).Get(), PooledConstants().front()); // there is memory again
}

TEST(StringUniquer, FindsAStringByItsTextAlone) {
    TValStringUniquerImp pool;
    const TValStr string("by text");
    const auto unique = pool.GetUniqueString(string.Get());
    EXPECT_EQ(pool.GetUniqueString("by text").Get(), unique.Get());
    const auto other = pool.GetUniqueString("other");
    EXPECT_EQ(Text(other), "other");
    EXPECT_EQ(pool.GetUniqueString("other").Get(), other.Get());
    EXPECT_EQ(pool.Count(), 2U);
}

TEST(StringUniquer, GivesTheEmptyStringForATextThatIsNoUTF8) {
    TValStringUniquerImp pool;
    EXPECT_EQ(Text(pool.GetUniqueString("\xFF")), "");
    EXPECT_EQ(pool.Count(), 0U);
    const uint16_t lone[] = {0xD800}; // a name out of a font
    const auto name = Adopt(ValStringCreateWithUTF16(lone, 1));
    EXPECT_EQ(pool.GetUniqueString(name.Get()).Get(), name.Get());
    EXPECT_EQ(Text(pool.GetUniqueString(Text(name))), "");
}

TEST(ConcurrentStringUniquer, GivesEveryThreadTheSameStringsThroughSweeps) {
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    const auto common = TValStringUniquer().GetUniqueString(TValStr("common").Get());
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 3'000; ++i) {
                const TValStr text = Numbered(t % 2 * 10'000 + i); // half of the threads meet
                const auto first = TValStringUniquer().GetUniqueString(text.Get());
                const auto second = TValStringUniquer().GetUniqueString(TValStr(text.View()).Get());
                if (first.Get() != second.Get() || !(TValStr(first) == text)) ++wrong;
                if (TValStringUniquer().GetUniqueString(TValStr("common").Get()).Get() != common.Get())
                    ++wrong;
            }
        });
    }
    for (auto &thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace vellum
