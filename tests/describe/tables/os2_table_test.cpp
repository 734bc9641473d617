// SPDX-License-Identifier: MIT
#include "describe/tables/os2_table.hpp"
#include "describe/tables/table_data.hpp"
#include "support/sfnt_tables.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

constexpr Os2Fields kFields = {.version = 4,
                               .weight_class = 0x0102,
                               .width_class = 0x0304,
                               .family_class = 0x0805,
                               .panose = {2, 11, 6, 9, 2, 2, 2, 2, 2, 4},
                               .unicode_ranges = {0x01020304, 0x05060708, 0x090A0B0C, 0x0D0E0F10},
                               .selection = 0x0140,
                               .code_page_ranges = {0x11121314, 0x15161718}};

OS2Table Table(const Os2Fields &fields) {
    return OS2Table(TableData(Os2Table(fields)));
}

OS2Table TableOfLength(size_t length) {
    return OS2Table(TableData(CutTo(Os2Table(kFields), length)));
}

TEST(OS2Table, ReadsEveryFieldWhereItStands) {
    const OS2Table table = Table(kFields);
    EXPECT_EQ(table.GetVersion(), 4);
    EXPECT_EQ(table.GetWeightClass(), 0x0102);
    EXPECT_EQ(table.GetWidthClass(), 0x0304);
    EXPECT_EQ(table.GetSelection(), 0x0140);
    EXPECT_EQ(table.GetFamilyClass(), 0x0805);
    EXPECT_THAT(table.GetUnicodeRanges(), ElementsAre(0x01020304, 0x05060708, 0x090A0B0C, 0x0D0E0F10));
    ASSERT_TRUE(table.GetCodePageRanges());
    EXPECT_THAT(*table.GetCodePageRanges(), ElementsAre(0x11121314, 0x15161718));
}

TEST(OS2Table, PanoseHasTenDigitsAndAnyOtherIsZero) {
    const OS2Table table = Table(kFields);
    for (size_t i = 0; i < 10; ++i) EXPECT_EQ(table.GetPanoseDigit(i), kFields.panose[i]) << i;
    for (const size_t i : {size_t{10}, size_t{11}, SIZE_MAX, SIZE_MAX - 31})
        EXPECT_EQ(table.GetPanoseDigit(i), 0) << i;
}

TEST(OS2Table, OnlyProportionNineIsFixedPitch) {
    for (uint32_t proportion = 0; proportion < 256; ++proportion) {
        Os2Fields fields;
        fields.panose[3] = static_cast<uint8_t>(proportion);
        EXPECT_EQ(Table(fields).IsFixedPitch(), proportion == 9) << proportion;
    }
}

TEST(OS2Table, TheFamilyClassHasASign) {
    EXPECT_EQ(Table({.family_class = -1}).GetFamilyClass(), -1);
    EXPECT_EQ(Table({.family_class = INT16_MIN}).GetFamilyClass(), -32768);
    EXPECT_EQ(Table({.family_class = 0x0C03}).GetFamilyClass(), 0x0C03);
}

TEST(OS2Table, Of77BytesPitchAndClassAreNotBelieved) {
    EXPECT_FALSE(TableOfLength(77).IsComplete());
    EXPECT_EQ(TableOfLength(77).GetFamilyClass(), 0);
    EXPECT_FALSE(TableOfLength(77).IsFixedPitch());
}

TEST(OS2Table, Of78BytesPitchAndClassAreBelieved) {
    EXPECT_TRUE(TableOfLength(78).IsComplete());
    EXPECT_EQ(TableOfLength(78).GetFamilyClass(), 0x0805);
    EXPECT_TRUE(TableOfLength(78).IsFixedPitch());
}

TEST(OS2Table, CodePagesNeed86Bytes) {
    EXPECT_FALSE(TableOfLength(78).GetCodePageRanges());
    EXPECT_FALSE(TableOfLength(85).GetCodePageRanges());
    EXPECT_TRUE(TableOfLength(86).GetCodePageRanges());
}

TEST(OS2Table, AnAbsentTableSaysNothing) {
    const OS2Table table(nullptr);
    EXPECT_FALSE(table.IsComplete());
    EXPECT_EQ(table.GetVersion(), 0);
    EXPECT_EQ(table.GetWeightClass(), 0);
    EXPECT_EQ(table.GetWidthClass(), 0);
    EXPECT_EQ(table.GetSelection(), 0);
    EXPECT_EQ(table.GetFamilyClass(), 0);
    EXPECT_FALSE(table.IsFixedPitch());
    EXPECT_EQ(table.GetPanoseDigit(3), 0);
    EXPECT_THAT(table.GetUnicodeRanges(), ElementsAre(0, 0, 0, 0));
    EXPECT_FALSE(table.GetCodePageRanges());
}

TEST(OS2Table, OfAShortTableTheMissingBytesAreZero) {
    ForEveryLength(Os2Table(kFields), [](auto cut, auto padded, size_t length) {
        const OS2Table shorter(cut), whole(padded);
        EXPECT_EQ(shorter.GetVersion(), whole.GetVersion()) << length;
        EXPECT_EQ(shorter.GetWeightClass(), whole.GetWeightClass()) << length;
        EXPECT_EQ(shorter.GetWidthClass(), whole.GetWidthClass()) << length;
        EXPECT_EQ(shorter.GetSelection(), whole.GetSelection()) << length;
        EXPECT_EQ(shorter.GetPanoseDigit(9), whole.GetPanoseDigit(9)) << length;
        EXPECT_EQ(shorter.GetUnicodeRanges(), whole.GetUnicodeRanges()) << length;
    });
}

TEST(OS2Table, PitchClassAndCodePagesAppearAtTheirLengths) {
    ForEveryLength(Os2Table(kFields), [](auto cut, auto, size_t length) {
        const OS2Table table(cut);
        EXPECT_EQ(table.IsFixedPitch(), length >= 78) << length;
        EXPECT_EQ(table.GetFamilyClass(), length >= 78 ? 0x0805 : 0) << length;
        EXPECT_EQ(table.GetCodePageRanges().has_value(), length >= 86) << length;
    });
}

} // namespace
} // namespace vellum::test
