// SPDX-License-Identifier: MIT
#include "describe/tables/hhea_table.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace vellum::test {
namespace {

constexpr double kQuarterTurn = 1.57079632679489661923;

Bytes Hhea(int32_t rise, int32_t run, uint32_t metrics = 7) {
    ByteWriter table;
    table.U16(1).U16(0).I16(800).I16(-200).I16(0).U16(500).Zeros(6);
    return table.I16(rise).I16(run).Zeros(12).U16(metrics);
}

float AngleOf(int32_t rise, int32_t run) {
    return hheaTable(TableData(Hhea(rise, run))).GetItalicAngle();
}

TEST(hheaTable, TellsTheNumberOfMetrics) {
    EXPECT_EQ(hheaTable(TableData(Hhea(1, 0, 0))).GetMetricsCount(), 0);
    EXPECT_EQ(hheaTable(TableData(Hhea(1, 0, 0x0102))).GetMetricsCount(), 0x0102);
    EXPECT_EQ(hheaTable(TableData(Hhea(1, 0, 0xFFFF))).GetMetricsCount(), 0xFFFF);
}

TEST(hheaTable, ACaretWithoutRunIsUpright) {
    EXPECT_EQ(AngleOf(1, 0), 0.0f);
    EXPECT_EQ(AngleOf(-5, 0), 0.0f);
    EXPECT_EQ(AngleOf(0, 0), 0.0f);
}

TEST(hheaTable, TheAngleIsInRadiansOver180) {
    EXPECT_EQ(AngleOf(1, 1), static_cast<float>(kQuarterTurn / 2 / 180));
    EXPECT_FLOAT_EQ(AngleOf(1000, 213), 0.007560737f); // an italic of 12 degrees
    EXPECT_EQ(AngleOf(0, 1), 0.0f);
}

TEST(hheaTable, RiseAndRunHaveSigns) {
    EXPECT_EQ(AngleOf(-1, 1), static_cast<float>(-kQuarterTurn / 2 / 180));
    EXPECT_EQ(AngleOf(1, -1), static_cast<float>(-kQuarterTurn / 2 / 180));
    EXPECT_EQ(AngleOf(-1, -1), static_cast<float>(kQuarterTurn / 2 / 180));
    EXPECT_EQ(AngleOf(-32768, -1), static_cast<float>(std::atan(32768.0) / 180));
}

TEST(hheaTable, AnAbsentTableHasNoMetricsAndIsUpright) {
    const hheaTable table(nullptr);
    EXPECT_EQ(table.GetMetricsCount(), 0);
    EXPECT_EQ(table.GetItalicAngle(), 0.0f);
}

TEST(hheaTable, OfAShortTableTheMissingBytesAreZero) {
    ForEveryLength(Hhea(0x0403, 0x0201, 0x0605), [](auto cut, auto padded, size_t length) {
        EXPECT_EQ(hheaTable(cut).GetItalicAngle(), hheaTable(padded).GetItalicAngle()) << length;
        EXPECT_EQ(hheaTable(cut).GetMetricsCount(), hheaTable(padded).GetMetricsCount()) << length;
        EXPECT_EQ(hheaTable(cut).GetItalicAngle() != 0, length > 20) << length;
        EXPECT_EQ(hheaTable(cut).GetMetricsCount() != 0, length > 34) << length;
    });
}

} // namespace
} // namespace vellum::test
