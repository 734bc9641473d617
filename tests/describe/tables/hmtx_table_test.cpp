// SPDX-License-Identifier: MIT
#include "describe/tables/hmtx_table.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

Bytes Hmtx(const std::vector<uint32_t> &advances) {
    ByteWriter table;
    int32_t bearing = 40;
    for (const uint32_t advance : advances) table.U16(advance).I16(bearing++);
    return table;
}

bool IsFixedPitch(const Bytes &bytes, size_t metrics) {
    return hmtxTable(TableData(bytes), static_cast<uint16_t>(metrics)).IsFixedPitch();
}

bool IsFixedPitch(const std::vector<uint32_t> &advances) {
    return IsFixedPitch(Hmtx(advances), advances.size());
}

TEST(hmtxTable, ASingleMetricIsOfFixedPitchWhateverItsWidth) {
    for (const uint32_t width : {0u, 1u, 500u, 0xFFFFu}) EXPECT_TRUE(IsFixedPitch({width})) << width;
}

TEST(hmtxTable, EqualWidthsAreOfFixedPitch) {
    EXPECT_TRUE(IsFixedPitch({500, 500, 500}));
}

TEST(hmtxTable, WidthsThatDifferAreProportional) {
    EXPECT_FALSE(IsFixedPitch({500, 600}));
    EXPECT_FALSE(IsFixedPitch({500, 500, 501}));
    EXPECT_FALSE(IsFixedPitch({0x0100, 0x0001}));
}

TEST(hmtxTable, ZeroWidthsArePassedOver) {
    EXPECT_TRUE(IsFixedPitch({0, 500, 0, 500}));
    EXPECT_FALSE(IsFixedPitch({500, 0, 600}));
    EXPECT_FALSE(IsFixedPitch({0, 0, 500, 600}));
}

TEST(hmtxTable, NothingButZerosIsOfFixedPitch) {
    EXPECT_TRUE(IsFixedPitch({0, 0, 0}));
}

TEST(hmtxTable, NoMetricsAreOfFixedPitch) {
    EXPECT_TRUE(IsFixedPitch({}));
    EXPECT_TRUE(IsFixedPitch(Hmtx({500, 600}), 0));
}

TEST(hmtxTable, OnlyTheDeclaredMetricsCount) {
    EXPECT_TRUE(IsFixedPitch(Hmtx({500, 500, 600}), 2));
    EXPECT_TRUE(IsFixedPitch(Hmtx({500, 600}), 1));
}

TEST(hmtxTable, SideBearingsDoNotCount) {
    ByteWriter table;
    EXPECT_TRUE(IsFixedPitch(table.U16(500).I16(-300).U16(500).I16(300), 2));
}

TEST(hmtxTable, AnAbsentTableIsOfFixedPitch) {
    for (const int metrics : {0, 1, 2, 0xFFFF})
        EXPECT_TRUE(hmtxTable(nullptr, static_cast<uint16_t>(metrics)).IsFixedPitch());
}

TEST(hmtxTable, MetricsBeyondTheEndAreZero) {
    EXPECT_TRUE(IsFixedPitch(Hmtx({500, 500}), 0xFFFF));
    EXPECT_FALSE(IsFixedPitch(Hmtx({500, 600}), 0xFFFF));
}

TEST(hmtxTable, OfAShortTableTheMissingBytesAreZero) {
    // 500, then 0x01F4 again, then 600: the high byte alone makes a width that differs.
    ForEveryLength(Hmtx({500, 500, 600}), [](auto cut, auto padded, size_t length) {
        EXPECT_EQ(hmtxTable(cut, 3).IsFixedPitch(), hmtxTable(padded, 3).IsFixedPitch()) << length;
        EXPECT_EQ(hmtxTable(cut, 3).IsFixedPitch(), length != 5 && length < 9) << length;
    });
}

} // namespace
} // namespace vellum::test
