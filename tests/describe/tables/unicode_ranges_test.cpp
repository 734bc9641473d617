// SPDX-License-Identifier: MIT
// The rows of the Unicode ranges, and the bits of sets of characters.
#include "describe/tables/os2_table.hpp"
#include "describe/tables/unicode_ranges.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <set>
#include <tuple>
#include <utility>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

using Ranges = OS2Table::TUnicodeRanges;
using Row = std::tuple<uint32_t, uint32_t, uint32_t>;

constexpr size_t kRows = std::size(kUnicodeRanges);

Row RowAt(size_t index) {
    return {kUnicodeRanges[index].bit, kUnicodeRanges[index].first, kUnicodeRanges[index].last};
}

Ref<const ValCharacterSet> SetOf(const std::vector<std::pair<uint32_t, uint32_t>> &runs) {
    auto set = Adopt(ValCharacterSetCreateMutable());
    for (const auto &[first, last] : runs) ValCharacterSetAddRange(set.Get(), first, last);
    return set;
}

Ranges RangesOf(const Ref<const ValCharacterSet> &set, double threshold = 0) {
    Ranges ranges = {};
    OS2Table::GetUnicodeRangesFromCharacterSet(set.Get(), ranges, threshold);
    return ranges;
}

std::vector<uint32_t> BitsOf(const Ranges &ranges) {
    std::vector<uint32_t> bits;
    for (uint32_t bit = 0; bit < 128; ++bit)
        if (ranges[bit / 32] >> bit % 32 & 1) bits.push_back(bit);
    return bits;
}

std::vector<uint32_t> BitsOfCharacter(uint32_t character, double threshold = 0) {
    return BitsOf(RangesOf(SetOf({{character, character}}), threshold));
}

// The definition, a code point at a time.
bool HasRow(const ValCharacterSet *set, const TUnicodeRange &row, double threshold) {
    uint32_t count = 0;
    for (uint32_t c = row.first; c <= row.last; ++c) {
        if (!ValCharacterSetContains(set, c)) continue;
        if (threshold == 0) return true;
        ++count;
    }
    return threshold != 0 && (count > 0 || 0 / static_cast<double>(row.last - row.first) > threshold);
}

Ranges ByDefinition(const Ref<const ValCharacterSet> &set, double threshold) {
    Ranges ranges = {};
    for (const TUnicodeRange &row : kUnicodeRanges)
        if (HasRow(set.Get(), row, threshold)) ranges[row.bit / 32] |= uint32_t{1} << row.bit % 32;
    return ranges;
}

// Members at the edges of rows, where errors would be, and runs anywhere.
Ref<const ValCharacterSet> RandomSet(std::mt19937 &random) {
    std::vector<std::pair<uint32_t, uint32_t>> runs;
    for (uint32_t left = static_cast<uint32_t>(random() % 40); left > 0; --left) {
        const TUnicodeRange &row = kUnicodeRanges[random() % kRows];
        const uint32_t edges[] = {row.first - 1, row.first, row.last, row.last + 1};
        const uint32_t edge = edges[random() % 4];
        if (edge <= 0x10FFFF) runs.emplace_back(edge, edge);
    }
    for (uint32_t left = static_cast<uint32_t>(random() % 4); left > 0; --left) {
        const auto first = static_cast<uint32_t>(random() % (random() % 2 ? 0x110000 : 0x3000));
        runs.emplace_back(first, first + static_cast<uint32_t>(random() % 2000));
    }
    return SetOf(runs);
}

TEST(UnicodeRanges, OpenWithTheLatinBlocks) {
    EXPECT_EQ(RowAt(0), Row(0, 0x0000, 0x007F));
    EXPECT_EQ(RowAt(1), Row(1, 0x0080, 0x00FF));
    EXPECT_EQ(RowAt(2), Row(2, 0x0100, 0x017F));
}

TEST(UnicodeRanges, EndWithThePlanesBeyondTheSecond) {
    EXPECT_EQ(RowAt(kRows - 6), Row(59, 0x20000, 0x2A6DF));
    EXPECT_EQ(RowAt(kRows - 5), Row(61, 0x2F800, 0x2FA1F));
    EXPECT_EQ(RowAt(kRows - 4), Row(92, 0xE0000, 0xE007F));
    EXPECT_EQ(RowAt(kRows - 3), Row(91, 0xE0100, 0xE01EF));
    EXPECT_EQ(RowAt(kRows - 2), Row(90, 0xF0000, 0xFFFFF));
    EXPECT_EQ(RowAt(kRows - 1), Row(90, 0x100000, 0x10FFFF));
}

TEST(UnicodeRanges, EveryAssignedBitHasARowAndNoOtherHas) {
    std::set<uint32_t> bits;
    for (const TUnicodeRange &row : kUnicodeRanges) bits.insert(row.bit);
    EXPECT_EQ(bits.size(), 123u);
    EXPECT_EQ(*bits.rbegin(), 122u);
}

TEST(UnicodeRanges, ABitOfSeveralBlocksHasARowForEach) {
    std::map<uint32_t, int> rows;
    for (const TUnicodeRange &row : kUnicodeRanges) ++rows[row.bit];
    std::erase_if(rows, [](const auto &entry) { return entry.second == 1; });
    const std::map<uint32_t, int> expected = {
        {4, 3},  {5, 2},  {6, 2},  {9, 4},  {13, 2},  {26, 2},  {29, 3},  {31, 2}, {37, 4},
        {38, 4}, {50, 2}, {51, 2}, {59, 7}, {61, 3},  {65, 2},  {75, 3},  {80, 2}, {83, 2},
        {84, 4}, {88, 3}, {90, 2}, {91, 2}, {101, 3}, {110, 2}, {121, 3}, {122, 2}};
    EXPECT_EQ(rows, expected);
}

TEST(UnicodeRanges, BlocksDoNotOverlap) {
    uint32_t end = 0; // behind the block before
    for (const TUnicodeRange &row : kUnicodeRanges) {
        if (row.bit == 57) continue; // no block
        EXPECT_GE(row.first, end) << row.bit;
        end = row.last + 1;
    }
}

TEST(UnicodeRanges, BlocksBeginAndEndAtColumnsOfSixteen) {
    for (const TUnicodeRange &row : kUnicodeRanges) {
        EXPECT_EQ(row.first % 16, 0u) << row.bit;
        EXPECT_EQ(row.last % 16, 15u) << row.bit;
    }
}

TEST(RangesOfCharacterSet, ALetterSetsItsOwnBitAlone) {
    EXPECT_THAT(BitsOfCharacter('A'), ElementsAre(0));
    EXPECT_THAT(BitsOfCharacter(0x416), ElementsAre(9));
    EXPECT_THAT(BitsOfCharacter(0x52F), ElementsAre(9));
    EXPECT_THAT(BitsOfCharacter(0xAC00), ElementsAre(56));
}

TEST(RangesOfCharacterSet, ACharacterBeyondPlaneZeroAlsoSaysSo) {
    EXPECT_THAT(BitsOfCharacter(0x10FFFD), ElementsAre(57, 90));
    EXPECT_THAT(BitsOfCharacter(0x20000), ElementsAre(57, 59));
    EXPECT_THAT(BitsOfCharacter(0x10000), ElementsAre(57, 101));
    EXPECT_THAT(BitsOfCharacter(0x1F600), ElementsAre(57));
}

TEST(RangesOfCharacterSet, ACharacterInNoBlockSetsNothing) {
    EXPECT_THAT(BitsOfCharacter(0x0870), IsEmpty());
    EXPECT_THAT(BitsOfCharacter(0xD800), IsEmpty());
    EXPECT_THAT(BitsOf(RangesOf(SetOf({}))), IsEmpty());
}

TEST(RangesOfCharacterSet, EveryRowIsFoundByItsFirstAndItsLastCharacterAlone) {
    for (const TUnicodeRange &row : kUnicodeRanges)
        for (const uint32_t character : {row.first, row.last})
            EXPECT_THAT(BitsOfCharacter(character), ::testing::Contains(row.bit)) << character;
}

TEST(RangesOfCharacterSet, AFullSetSetsEveryAssignedBit) {
    EXPECT_EQ(BitsOf(RangesOf(SetOf({{0, 0x10FFFF}}))).size(), 123u);
}

TEST(RangesOfCharacterSet, BitsThatWereSetStay) {
    Ranges ranges = {0x80000000, 0, 0, 1};
    OS2Table::GetUnicodeRangesFromCharacterSet(SetOf({{'A', 'A'}}).Get(), ranges, 0);
    EXPECT_THAT(ranges, ElementsAre(0x80000001, 0, 0, 1));
}

TEST(RangesOfCharacterSet, WithoutASetNothingIsDone) {
    for (const double threshold : {0.0, 0.5, -1.0}) {
        Ranges ranges = {1, 2, 3, 4};
        OS2Table::GetUnicodeRangesFromCharacterSet(nullptr, ranges, threshold);
        EXPECT_THAT(ranges, ElementsAre(1, 2, 3, 4)) << threshold;
    }
}

TEST(RangesOfCharacterSet, NoPositiveThresholdTakesABitAway) {
    for (const double threshold : {1e-9, 0.5, 1.0, 1000.0, std::numeric_limits<double>::infinity()}) {
        EXPECT_THAT(BitsOfCharacter('A', threshold), ElementsAre(0)) << threshold;
        EXPECT_THAT(BitsOfCharacter(0x10FFFD, threshold), ElementsAre(57, 90)) << threshold;
    }
}

TEST(RangesOfCharacterSet, ANegativeThresholdSetsEveryAssignedBit) {
    EXPECT_EQ(BitsOf(RangesOf(SetOf({}), -1e-9)).size(), 123u);
}

TEST(RangesOfCharacterSet, AThresholdThatIsNoNumberChangesNothing) {
    EXPECT_THAT(BitsOfCharacter('A', std::numeric_limits<double>::quiet_NaN()), ElementsAre(0));
    EXPECT_THAT(BitsOfCharacter('A', -0.0), ElementsAre(0));
}

TEST(RangesOfCharacterSet, TheWalkFindsWhatTheDefinitionFinds) {
    std::mt19937 random(41);
    for (int round = 0; round < 40; ++round) {
        const auto set = RandomSet(random);
        ASSERT_EQ(RangesOf(set), ByDefinition(set, 0)) << round;
    }
}

TEST(RangesOfCharacterSet, TheCountFindsWhatTheDefinitionFinds) {
    std::mt19937 random(42);
    for (const double threshold : {0.5, 1e-9, -0.5, 2.0}) {
        const auto set = RandomSet(random);
        ASSERT_EQ(RangesOf(set, threshold), ByDefinition(set, threshold)) << threshold;
    }
}

} // namespace
} // namespace vellum::test
