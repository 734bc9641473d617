// SPDX-License-Identifier: MIT
#include "platform/val/character_set.hpp"
#include "platform/val/shorthand.hpp"

#include <gmock/gmock.h>

#include <random>

namespace vellum {
namespace {

using ::testing::ElementsAre;
using Range = std::pair<uint32_t, uint32_t>;
using SetRef = Ref<const ValCharacterSet>;

constexpr uint32_t kLast = 0x10FFFF;

SetRef Of(const Ranges &ranges) {
    return MutableSetOf(ranges);
}
bool Has(const SetRef &set, uint32_t c) {
    return ValCharacterSetContains(set.Get(), c);
}

TEST(CharacterSet, OfARangeHasBothEnds) {
    auto set = Adopt(ValCharacterSetCreateWithRange('a', 'z'));
    EXPECT_TRUE(Has(set, 'a') && Has(set, 'm') && Has(set, 'z'));
    EXPECT_FALSE(Has(set, 'a' - 1) || Has(set, 'z' + 1) || Has(set, 'a' + 512));
    EXPECT_EQ(ValCharacterSetGetCount(set.Get()), 26u);
}

TEST(CharacterSet, EndsWithUnicode) {
    auto all = Adopt(ValCharacterSetCreateWithRange(0, UINT32_MAX));
    EXPECT_EQ(ValCharacterSetGetCount(all.Get()), 0x110000u);
    EXPECT_TRUE(Has(all, 0) && Has(all, kLast));
    EXPECT_FALSE(Has(all, kLast + 1) || Has(all, UINT32_MAX));
    EXPECT_THAT(RangesOf(all.Get()), ElementsAre(Range(0, kLast)));
    EXPECT_EQ(ValCharacterSetGetCount(Adopt(ValCharacterSetCreateWithRange(kLast + 1, UINT32_MAX)).Get()),
              0u);
    EXPECT_THAT(RangesOf(Adopt(ValCharacterSetCreateWithRange(kLast, kLast)).Get()),
                ElementsAre(Range(kLast, kLast)));
}

TEST(CharacterSet, RefusesARangeBackwards) {
    EXPECT_EQ(ValCharacterSetCreateWithRange(2, 1), nullptr);
    auto set = MutableSetOf({{5, 6}});
    EXPECT_FALSE(ValCharacterSetAddRange(set.Get(), 2, 1));
    EXPECT_FALSE(ValCharacterSetRemoveRange(set.Get(), 6, 5));
    EXPECT_THAT(RangesOf(set.Get()), ElementsAre(Range(5, 6)));
}

TEST(CharacterSet, OfNullIsEmpty) {
    uint32_t first = 7;
    uint32_t last = UINT32_MAX;
    EXPECT_EQ(ValCharacterSetGetCount(nullptr), 0u);
    EXPECT_FALSE(ValCharacterSetContains(nullptr, 0));
    EXPECT_FALSE(ValCharacterSetHasMemberInPlane(nullptr, 0));
    EXPECT_FALSE(ValCharacterSetNextRange(nullptr, &first, &last));
    EXPECT_FALSE(ValCharacterSetAddRange(nullptr, 0, 1));
    EXPECT_FALSE(ValCharacterSetRemoveRange(nullptr, 0, 1));
    EXPECT_FALSE(ValCharacterSetUnion(nullptr, nullptr));
    EXPECT_EQ(ValCharacterSetCreateMutableCopy(nullptr), nullptr);
    EXPECT_EQ(ValCharacterSetCopyBitmap(nullptr), nullptr);
    EXPECT_TRUE(ValCharacterSetIsSuperset(nullptr, nullptr));
    EXPECT_TRUE(ValCharacterSetIsSuperset(nullptr, Of({}).Get()));
    EXPECT_FALSE(ValCharacterSetIsSuperset(nullptr, Of({{1, 1}}).Get()));
    EXPECT_TRUE(ValCharacterSetIsSuperset(Of({}).Get(), nullptr));
}

TEST(RangeWalk, JoinsWhatIsConsecutiveAcrossWordsPagesAndPlanes) {
    const Ranges ranges = {
        {0, 0},       {2, 63},           {65, 127},          {130, 511},          {513, 1023},
        {1025, 1535}, {0xFFF0, 0x1000F}, {0x2F800, 0x2FA1D}, {0x10FFFF, 0x10FFFF}};
    EXPECT_EQ(RangesOf(Of(ranges).Get()), ranges);
    EXPECT_TRUE(RangesOf(Of({}).Get()).empty());
    EXPECT_THAT(RangesOf(Of({{0, 511}, {512, 1023}, {1024, 70000}}).Get()), ElementsAre(Range(0, 70000)));
}

TEST(RangeWalk, LeavesItsPlaceAloneAtTheEnd) {
    uint32_t first = UINT32_MAX;
    uint32_t last = UINT32_MAX;
    auto set = Of({{3, 5}});
    EXPECT_TRUE(ValCharacterSetNextRange(set.Get(), &first, &last));
    EXPECT_FALSE(ValCharacterSetNextRange(set.Get(), &first, &last));
    EXPECT_EQ(first, 3u);
    EXPECT_EQ(last, 5u);
    EXPECT_FALSE(ValCharacterSetNextRange(set.Get(), nullptr, &last));
}

TEST(RangeWalk, CanBeginAnywhere) {
    auto set = Of({{10, 20}});
    uint32_t first = 0;
    uint32_t last = 14;
    EXPECT_TRUE(ValCharacterSetNextRange(set.Get(), &first, &last));
    EXPECT_EQ(first, 15u);
    EXPECT_EQ(last, 20u);
}

TEST(CharacterSet, DropsPagesThatBecomeEmpty) {
    auto set = MutableSetOf({{0, 5000}, {0x1F600, 0x1F64F}});
    EXPECT_TRUE(ValCharacterSetRemoveRange(set.Get(), 100, 4900));
    EXPECT_THAT(RangesOf(set.Get()), ElementsAre(Range(0, 99), Range(4901, 5000), Range(0x1F600, 0x1F64F)));
    EXPECT_TRUE(ValEqual(set.Get(), Of({{0, 99}, {4901, 5000}, {0x1F600, 0x1F64F}}).Get()));
    EXPECT_TRUE(ValCharacterSetRemoveRange(set.Get(), 0, UINT32_MAX));
    EXPECT_TRUE(ValEqual(set.Get(), Of({}).Get()));
    EXPECT_TRUE(ValCharacterSetRemoveRange(set.Get(), 0x110000, UINT32_MAX));
    EXPECT_EQ(ValHash(set.Get()), ValHash(Of({}).Get()));
}

TEST(CharacterSet, AddsRangesInAnyOrder) {
    auto set = MutableSetOf(
        {{0x4E00, 0x9FFF}, {0x20, 0x7E}, {0x1F600, 0x1F64F}, {0x3000, 0x30FF}, {0x7E, 0x3010}});
    EXPECT_THAT(RangesOf(set.Get()),
                ElementsAre(Range(0x20, 0x30FF), Range(0x4E00, 0x9FFF), Range(0x1F600, 0x1F64F)));
    EXPECT_TRUE(ValCharacterSetAddRange(set.Get(), 0x110000, 0x110005)); // all left out
    EXPECT_EQ(RangesOf(set.Get()).size(), 3u);
}

TEST(CharacterSet, DoesAsASetOfNumbersDoes) {
    std::mt19937 random(3);
    for (uint32_t span : {600u, 5'000u, 0x110000u}) {
        auto set = MutableSetOf({});
        std::vector<bool> model(span);
        for (int step = 0; step < 200; ++step) {
            const auto first = static_cast<uint32_t>(random() % span);
            const uint32_t last = std::min(span - 1, first + static_cast<uint32_t>(random() % 1500));
            const bool add = random() % 2 != 0;
            ASSERT_TRUE(add ? ValCharacterSetAddRange(set.Get(), first, last)
                            : ValCharacterSetRemoveRange(set.Get(), first, last));
            for (uint32_t c = first; c <= last; ++c) model[c] = add;
        }
        size_t count = 0;
        for (uint32_t c = 0; c < span; ++c) {
            ASSERT_EQ(ValCharacterSetContains(set.Get(), c), model[c]) << c;
            count += model[c];
        }
        EXPECT_EQ(ValCharacterSetGetCount(set.Get()), count);
        EXPECT_TRUE(ValEqual(set.Get(), Of(RangesOf(set.Get())).Get()));
    }
}

TEST(CharacterSetUnion, HasTheMembersOfBoth) {
    auto set = MutableSetOf({{10, 20}, {0x10000, 0x10010}});
    EXPECT_TRUE(ValCharacterSetUnion(set.Get(), Of({{15, 30}, {5000, 6000}, {0x10FFFF, 0x10FFFF}}).Get()));
    EXPECT_THAT(RangesOf(set.Get()), ElementsAre(Range(10, 30), Range(5000, 6000), Range(0x10000, 0x10010),
                                                 Range(kLast, kLast)));
    EXPECT_TRUE(ValCharacterSetUnion(set.Get(), set.Get()));
    EXPECT_TRUE(ValCharacterSetUnion(set.Get(), nullptr));
    EXPECT_EQ(RangesOf(set.Get()).size(), 4u);
}

TEST(Superset, HasEveryMemberOfTheOther) {
    auto set = Of({{0x20, 0x7E}, {0x4E00, 0x9FFF}, {0x1F600, 0x1F64F}});
    auto is_superset_of = [&](const Ranges &other) {
        return ValCharacterSetIsSuperset(set.Get(), Of(other).Get());
    };
    EXPECT_TRUE(is_superset_of({}));
    EXPECT_TRUE(is_superset_of({{0x20, 0x7E}}));
    EXPECT_TRUE(is_superset_of({{0x20, 0x7E}, {0x4E00, 0x9FFF}, {0x1F600, 0x1F64F}}));
    EXPECT_TRUE(is_superset_of({{0x7E, 0x7E}, {0x1F64F, 0x1F64F}}));
    EXPECT_FALSE(is_superset_of({{0x20, 0x7F}}));       // on a page that is there
    EXPECT_FALSE(is_superset_of({{0x3000, 0x3000}}));   // on one that is not
    EXPECT_FALSE(is_superset_of({{0x1F600, 0x1F650}})); // on the last page
    EXPECT_FALSE(is_superset_of({{0x4E00, 0xA000}}));
    EXPECT_TRUE(ValCharacterSetIsSuperset(set.Get(), set.Get()));
}

TEST(Planes, AreKnownToHaveMembers) {
    auto set = Of({{0xFFFF, 0x10000}, {0x20000, 0x20000}, {0x10FFFF, 0x10FFFF}});
    for (uint32_t plane = 0; plane < 20; ++plane) {
        EXPECT_EQ(ValCharacterSetHasMemberInPlane(set.Get(), plane), plane <= 2 || plane == 16) << plane;
    }
    EXPECT_FALSE(ValCharacterSetHasMemberInPlane(set.Get(), UINT32_MAX));
}

TEST(CharacterSetHash, AgreesWithEqualityHoweverTheSetWasMade) {
    auto grown = MutableSetOf({{0x1F600, 0x1F64F}, {0, 9000}});
    ValCharacterSetRemoveRange(grown.Get(), 128, 9000);
    auto made = Of({{0, 127}, {0x1F600, 0x1F64F}});
    EXPECT_TRUE(ValEqual(grown.Get(), made.Get()));
    EXPECT_EQ(ValHash(grown.Get()), ValHash(made.Get()));
    EXPECT_NE(ValHash(made.Get()), ValHash(Of({{0, 127}, {0x1F600, 0x1F64E}}).Get()));
    EXPECT_FALSE(ValEqual(made.Get(), Of({{512, 639}, {0x1F600, 0x1F64F}}).Get()));
}

TEST(MutableCopyOfACharacterSet, LeavesTheOriginalAlone) {
    auto original = Of({{1, 5}, {5000, 5001}});
    auto copy = Adopt(ValCharacterSetCreateMutableCopy(original.Get()));
    EXPECT_TRUE(ValEqual(copy.Get(), original.Get()));
    ValCharacterSetAddRange(copy.Get(), 600, 600);
    ValCharacterSetRemoveRange(copy.Get(), 1, 5);
    EXPECT_THAT(RangesOf(original.Get()), ElementsAre(Range(1, 5), Range(5000, 5001)));
    EXPECT_THAT(RangesOf(copy.Get()), ElementsAre(Range(600, 600), Range(5000, 5001)));
}

// Walks a list of ranges as a parser's own set is walked.
auto Walk(const Ranges &ranges) {
    return [&ranges, at = size_t{0}](uint32_t *first, uint32_t *last) mutable {
        if (at == ranges.size()) {
            at = 0;
            return false;
        }
        std::tie(*first, *last) = ranges[at++];
        return true;
    };
}

TEST(MakeCharacterSet, TakesRangesInAnyOrderAndLeavesOutWhatIsNoCodePoint) {
    const Ranges ranges = {
        {0x20, 0x7E}, {0x4E00, 0x9FFF}, {0x30, 0x2FF}, {kLast - 1, UINT32_MAX}, {0x110000, 0x110001}};
    auto set = MakeCharacterSet(Walk(ranges));
    EXPECT_THAT(RangesOf(set.Get()),
                ElementsAre(Range(0x20, 0x2FF), Range(0x4E00, 0x9FFF), Range(kLast - 1, kLast)));
    EXPECT_TRUE(ValEqual(set.Get(), Of(ranges).Get()));
    const Ranges none;
    EXPECT_EQ(ValCharacterSetGetCount(MakeCharacterSet(Walk(none)).Get()), 0u);
}

TEST(MakeCharacterSet, TakesJustTheMemoryThatItNeeds) {
    const Ranges ranges = {{0x20, 0x7E}, {0x4E00, 0x9FFF}};
    auto set = MakeCharacterSet(Walk(ranges));
    EXPECT_FALSE(set.Get()->on_heap);
    EXPECT_EQ(set.Get()->page_capacity, set.Get()->page_count);
}

TEST(CoverageOfALargeFont, IsTheSameRangeByRangeAndAtOnce) {
    Ranges ranges;
    for (uint32_t c = 0x20; c < 0x30000; c += 6) ranges.emplace_back(c, c + 3);
    EXPECT_TRUE(ValEqual(MakeCharacterSet(Walk(ranges)).Get(), Of(ranges).Get()));
    EXPECT_EQ(RangesOf(Of(ranges).Get()), ranges);
}

} // namespace
} // namespace vellum
