// SPDX-License-Identifier: MIT
#include "describe/tables/os2_languages.hpp"
#include "describe/tables/os2_table.hpp"
#include "describe/tables/table_data.hpp"
#include "support/sfnt_tables.hpp"
#include "support/values.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_set.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using TLanguages = std::set<std::string>;

struct TRow {
    uint32_t bit;
    std::string language;
};

// Written out once more, so that no row of the tables changes unseen.
const std::vector<TRow> kCodePages = {
    {2, "ru"},  {3, "el"},  {4, "tr"},       {5, "he"},  {6, "ar"},       {8, "vi"},
    {16, "th"}, {17, "ja"}, {18, "zh-Hans"}, {19, "ko"}, {20, "zh-Hant"}, {21, "ko"},
    {48, "el"}, {49, "ru"}, {51, "ar"},      {53, "he"}, {54, "is"},      {56, "tr"},
    {57, "ru"}, {60, "el"}, {61, "ar"},      {63, "en"},
};
const std::vector<TRow> kRanges = {
    {7, "el"},  {9, "ru"},  {10, "hy"},  {11, "he"}, {13, "ar"}, {17, "pa"},
    {18, "gu"}, {24, "th"}, {25, "lo"},  {26, "ka"}, {28, "ko"}, {49, "ja"},
    {50, "ja"}, {70, "bo"}, {76, "chr"}, {77, "iu"}, {81, "mn"},
};

TLanguages LanguagesOf(const Bytes &bytes) {
    TLanguages languages;
    const auto set = OS2Table(TableData(bytes)).CopySupportedLanguages();
    for (const void *language : TValSet(set)) languages.insert(TextOf(language));
    EXPECT_EQ(languages.empty(), !set) << "an empty set is none";
    return languages;
}

Os2Fields WithCodePage(uint32_t bit) {
    Os2Fields fields{.version = 1};
    fields.code_page_ranges[bit / 32] = uint32_t{1} << bit % 32;
    return fields;
}

Os2Fields WithRange(uint32_t bit) {
    Os2Fields fields{.version = 1};
    fields.unicode_ranges[bit / 32] = uint32_t{1} << bit % 32;
    return fields;
}

// By bit, of the rows that have it.
std::map<uint32_t, TLanguages> ByBit(const std::vector<TRow> &rows) {
    std::map<uint32_t, TLanguages> languages;
    for (const auto &[bit, language] : rows) languages[bit].insert(language);
    return languages;
}

TLanguages AllOf(const std::vector<TRow> &rows) {
    TLanguages languages;
    for (const TRow &row : rows) languages.insert(row.language);
    return languages;
}

// Bits for code pages and for ranges whose languages differ: "ru" by the one, "bo" by the other.
Os2Fields WithBoth(uint16_t version) {
    Os2Fields fields = WithRange(70);
    fields.version = version;
    fields.code_page_ranges[0] = 1u << 2;
    return fields;
}

TEST(OS2Languages, HaveTwentyTwoCodePagesAndSeventeenRanges) {
    EXPECT_EQ(std::size(kUnicodeCodePageLanguages), 22u);
    EXPECT_EQ(std::size(kUnicodeRangeLanguages), 17u);
}

TEST(OS2Languages, EachCodePageBitStandsForItsLanguageOrNone) {
    auto expected = ByBit(kCodePages);
    for (uint32_t bit = 0; bit < 64; ++bit)
        EXPECT_EQ(LanguagesOf(Os2Table(WithCodePage(bit))), expected[bit]) << bit;
}

TEST(OS2Languages, EachUnicodeRangeBitStandsForItsLanguageOrNone) {
    auto expected = ByBit(kRanges);
    for (uint32_t bit = 0; bit < 128; ++bit)
        EXPECT_EQ(LanguagesOf(Os2Table(WithRange(bit))), expected[bit]) << bit;
}

TEST(OS2Languages, OfAllBitsAreAllLanguages) {
    Os2Fields fields{.version = 4};
    std::ranges::fill(fields.code_page_ranges, UINT32_MAX);
    TLanguages expected = AllOf(kCodePages);
    EXPECT_EQ(LanguagesOf(Os2Table(fields)), expected);
    std::ranges::fill(fields.unicode_ranges, UINT32_MAX);
    expected.merge(AllOf(kRanges));
    EXPECT_EQ(LanguagesOf(Os2Table(fields)), expected);
}

TEST(OS2Languages, JapaneseIsThereOnceForBothOfItsRanges) {
    Os2Fields fields{.version = 1};
    fields.unicode_ranges[1] = 1u << (49 - 32) | 1u << (50 - 32);
    EXPECT_THAT(LanguagesOf(Os2Table(fields)), ElementsAre("ja"));
    const auto set = OS2Table(TableData(Os2Table(fields))).CopySupportedLanguages();
    EXPECT_EQ(ValSetGetCount(set.Get()), 1u);
}

TEST(OS2Languages, OfAnAbsentTableAreNone) {
    EXPECT_FALSE(OS2Table(nullptr).CopySupportedLanguages());
}

TEST(OS2Languages, OfATableWithoutBitsAreNone) {
    EXPECT_THAT(LanguagesOf(Os2Table({.version = 4})), IsEmpty());
}

TEST(OS2Languages, OfAShortTableAreNone) {
    EXPECT_THAT(LanguagesOf(CutTo(Os2Table(WithBoth(4)), 0)), IsEmpty());
    EXPECT_THAT(LanguagesOf(CutTo(Os2Table(WithBoth(4)), 77)), IsEmpty());
}

TEST(OS2Languages, AreThoseOfTheRangesAloneWithoutBothCodePageWords) {
    for (size_t length = 78; length <= 85; ++length)
        EXPECT_THAT(LanguagesOf(CutTo(Os2Table(WithBoth(4)), length)), ElementsAre("bo")) << length;
    EXPECT_THAT(LanguagesOf(CutTo(Os2Table(WithBoth(4)), 86)), ElementsAre("bo", "ru"));
}

TEST(OS2Languages, AreThoseOfTheRangesAloneInVersionZero) {
    const Bytes longer = [] {
        Bytes bytes = Os2Table(WithBoth(1));
        bytes[0] = bytes[1] = 0;
        return bytes;
    }();
    ASSERT_GE(longer.size(), 86u);
    EXPECT_THAT(LanguagesOf(longer), ElementsAre("bo"));
    EXPECT_THAT(LanguagesOf(Os2Table(WithBoth(1))), ElementsAre("bo", "ru"));
}

TEST(OS2Languages, AreInterned) {
    const auto set = OS2Table(TableData(Os2Table(WithRange(76)))).CopySupportedLanguages();
    const auto unique = TValStringUniquer().GetUniqueString("chr");
    for (const void *language : TValSet(set)) EXPECT_EQ(language, unique.Get());
}

} // namespace
} // namespace vellum::test
