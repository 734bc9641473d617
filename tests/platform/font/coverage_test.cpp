// SPDX-License-Identifier: MIT
// The code points that sfnt faces cover, and character maps that cost more than they are worth.
#include "asking.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr uint32_t kGlyphs = 65535;

Ref<const GxFont> FontWithMap(const Bytes &cmap, uint32_t glyphs = 100) {
    return FontOf(FontBuilder().Table("cmap", cmap).Table("maxp", MaxpTable(glyphs)));
}

std::string CoverageOf(const Bytes &subtable, uint32_t glyphs = 100) {
    return Coverage(FontWithMap(CmapTable({{3, 10, subtable}}), glyphs).Get());
}

TEST(Coverage, ComesFromSegmentsOfFormat4) {
    EXPECT_EQ(CoverageOf(CmapFormat4({{'A', 'C', 1}, {0x3B1, 0x3B2, 4}})), "41-43 3B1-3B2");
}

TEST(Coverage, ComesFromGroupsOfFormat12) {
    EXPECT_EQ(CoverageOf(CmapFormat12({{'A', 'C', 1}, {0x1F600, 0x1F602, 4}})), "41-43 1F600-1F602");
}

TEST(Coverage, ComesFromGroupsOfFormat13) {
    EXPECT_EQ(CoverageOf(CmapFormat13({{0x4E00, 0x9FFF, 1}}), 2), "4E00-9FFF");
}

TEST(Coverage, LeavesOutWhatMapsToTheMissingGlyph) {
    EXPECT_EQ(CoverageOf(CmapFormat4({{'A', 'C', 0}})), "42-43");
}

TEST(Coverage, LeavesOutGlyphsThatTheFaceDoesNotHave) {
    const auto font = FontWithMap(CmapTable({{3, 10, CmapFormat12({{'A', 'Z', 1}})}}), 5);
    const auto coverage = GxFontCopyCharacterSet(font.Get());
    EXPECT_TRUE(ValCharacterSetContains(coverage.Get(), 'D')); // glyph 4, the last
    EXPECT_FALSE(ValCharacterSetContains(coverage.Get(), 'Z'));
}

TEST(Coverage, IsEmptyWithoutACharacterMap) {
    const auto font = FontOf(FontBuilder().Without("cmap"));
    EXPECT_TRUE(GxFontCopyCharacterSet(font.Get()));
    EXPECT_EQ(Coverage(font.Get()), "");
}

TEST(Coverage, OfEqualFacesIsOneObject) {
    const auto one = FontWithMap(CmapTable({{3, 10, CmapFormat12({{'A', 'C', 1}})}}));
    const auto two = FontWithMap(CmapTable({{3, 1, CmapFormat4({{'A', 'C', 7}})}}));
    EXPECT_EQ(GxFontCopyCharacterSet(one.Get()).Get(), GxFontCopyCharacterSet(two.Get()).Get());
}

TEST(Coverage, OfOneFaceIsDerivedOnce) {
    const auto font = FontOf(FontBuilder());
    EXPECT_EQ(GxFontCopyCharacterSet(font.Get()).Get(), GxFontCopyCharacterSet(font.Get()).Get());
}

TEST(CoverageLimits, AllowAllOfUnicodeFourTimes) {
    const std::vector<CmapGroup> groups(4, {0, 0x10FFFF, 1});
    EXPECT_EQ(CoverageOf(CmapFormat13(groups)), "0-10FFFF");
}

TEST(CoverageLimits, RefuseMapsThatNameMore) {
    std::vector<CmapGroup> groups(4, {0, 0x10FFFF, 1});
    groups.push_back({'A', 'A', 1});
    EXPECT_EQ(CoverageOf(CmapFormat13(groups)), "");
    EXPECT_EQ(CoverageOf(CmapFormat12(groups), kGlyphs), "");
}

TEST(CoverageLimits, RefuseOverlappingSegmentsThatNameMore) {
    EXPECT_EQ(CoverageOf(CmapFormat4(std::vector<CmapGroup>(68, {0, 0xFFFF, 1})), kGlyphs), "");
}

TEST(CoverageLimits, RefuseAMapOfManyRecords) {
    const Bytes subtable = CmapFormat12({{'A', 'C', 1}});
    EXPECT_EQ(Coverage(FontWithMap(CmapTable(std::vector<CmapSubtable>(128, {3, 10, subtable}))).Get()),
              "41-43");
    EXPECT_EQ(Coverage(FontWithMap(CmapTable(std::vector<CmapSubtable>(129, {3, 10, subtable}))).Get()),
              "");
}

} // namespace
} // namespace vellum::test
