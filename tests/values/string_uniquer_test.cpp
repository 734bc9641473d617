// SPDX-License-Identifier: MIT
#include "platform/val/static_string.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_str.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vellum {
namespace {

constinit const StaticString kSeeded("a seeded constant");

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

TEST(StringPool, IsOneForTheProcess) {
    const auto first = TValStringUniquer().GetUniqueString(TValStr("one pool").Get());
    EXPECT_EQ(TValStringUniquer().GetUniqueString(TValStr("one pool").Get()).Get(), first.Get());
}

TEST(StringPool, GivesSeededConstantsForEqualText) {
    const ValString *const constants[] = {kSeeded.Get()};
    SeedUniqueStrings(constants);
    EXPECT_EQ(TValStringUniquer().GetUniqueString(TValStr("a seeded constant").Get()).Get(), kSeeded.Get());
    for (int i = 0; i < 10'000; ++i) (void)TValStringUniquer().GetUniqueString(Numbered(i).Get());
    EXPECT_EQ(TValStringUniquer().GetUniqueString(TValStr("a seeded constant").Get()).Get(), kSeeded.Get());
    EXPECT_EQ(kSeeded.references.load(), ValObject::kImmortal);
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
