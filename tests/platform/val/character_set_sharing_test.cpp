// SPDX-License-Identifier: MIT
#include "platform/val/character_set.hpp"
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace vellum {
namespace {

using SetRef = Ref<const ValCharacterSet>;

SetRef Covering(uint32_t first, uint32_t last) {
    return Adopt(ValCharacterSetCreateWithRange(first, last));
}

TEST(SharedCharacterSet, IsOneObjectForEqualSets) {
    auto a = ShareCharacterSet(Covering(1, 5000));
    auto b = ShareCharacterSet(Covering(1, 5000));
    auto c = ShareCharacterSet(Covering(1, 5001));
    EXPECT_EQ(a.Get(), b.Get());
    EXPECT_NE(a.Get(), c.Get());
    EXPECT_EQ(ShareCharacterSet(a).Get(), a.Get());
    EXPECT_EQ(ShareCharacterSet(nullptr).Get(), nullptr);
}

TEST(SharedCharacterSet, IsNotKeptAliveByTheTable) {
    auto first = ShareCharacterSet(Covering(1, 5));
    EXPECT_EQ(first.Get()->references.load(), 1u);
    first = nullptr;
    auto second = ShareCharacterSet(Covering(1, 5)); // nothing dead is found
    EXPECT_EQ(RangesOf(second.Get()), (Ranges{{1, 5}}));
    EXPECT_EQ(second.Get()->references.load(), 1u);
}

TEST(SharedCharacterSet, MayDieInAnyOrder) {
    std::vector<SetRef> sets;
    for (uint32_t i = 0; i < 1000; ++i) sets.push_back(ShareCharacterSet(Covering(i, 2 * i)));
    for (uint32_t i = 0; i < 1000; i += 2) sets[i] = nullptr;
    for (uint32_t i = 1; i < 1000; i += 2)
        EXPECT_EQ(ShareCharacterSet(Covering(i, 2 * i)).Get(), sets[i].Get());
    for (uint32_t i = 0; i < 1000; i += 2) sets[i] = ShareCharacterSet(Covering(i, 2 * i));
    for (uint32_t i = 0; i < 1000; ++i)
        EXPECT_EQ(ShareCharacterSet(Covering(i, 2 * i)).Get(), sets[i].Get());
}

TEST(ConcurrentSharing, GivesEveryThreadALiveSetThatIsEqual) {
    constexpr uint32_t kRounds = 2000;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 8; ++t) {
        threads.emplace_back([&wrong, t] {
            for (uint32_t i = 0; i < kRounds; ++i) {
                const uint32_t last = (i + t) % 5 + 1; // few sets, which die and come again all the time
                auto shared = ShareCharacterSet(Covering(1, last));
                if (ValCharacterSetGetCount(shared.Get()) != last) ++wrong;
                auto again = ShareCharacterSet(Covering(1, last));
                if (again.Get() != shared.Get()) ++wrong;
            }
        });
    }
    for (auto &thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace vellum
