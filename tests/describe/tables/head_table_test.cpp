// SPDX-License-Identifier: MIT
#include "describe/tables/head_table.hpp"
#include "describe/tables/table_data.hpp"
#include "support/sfnt_tables.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

headTable WithStyle(uint32_t mac_style) {
    return headTable(TableData(HeadTable({.mac_style = static_cast<uint16_t>(mac_style)})));
}

TEST(headTable, EachStyleIsOneBitAndNoOther) {
    for (uint32_t bit = 0; bit < 16; ++bit) {
        const headTable table = WithStyle(1u << bit);
        EXPECT_EQ(table.IsBold(), bit == 0) << bit;
        EXPECT_EQ(table.IsItalic(), bit == 1) << bit;
        EXPECT_EQ(table.IsCondensed(), bit == 5) << bit;
        EXPECT_EQ(table.IsExtended(), bit == 6) << bit;
    }
}

TEST(headTable, StylesDoNotExcludeEachOther) {
    const headTable table = WithStyle(0x63);
    EXPECT_TRUE(table.IsBold() && table.IsItalic() && table.IsCondensed() && table.IsExtended());
}

TEST(headTable, AnAbsentTableIsPlain) {
    const headTable table(nullptr);
    EXPECT_FALSE(table.IsBold() || table.IsItalic() || table.IsCondensed() || table.IsExtended());
}

TEST(headTable, OfAShortTableTheMissingBytesAreZero) {
    const Bytes whole = HeadTable({.mac_style = 0xFFFF});
    ForEveryLength(whole, [](auto cut, auto, size_t length) {
        const headTable table(cut);
        EXPECT_EQ(table.IsBold(), length >= 46) << length;
        EXPECT_EQ(table.IsItalic(), length >= 46) << length;
        EXPECT_EQ(table.IsCondensed(), length >= 46) << length;
        EXPECT_EQ(table.IsExtended(), length >= 46) << length;
    });
}

} // namespace
} // namespace vellum::test
