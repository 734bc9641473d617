// SPDX-License-Identifier: MIT
// Tables of random bytes and lengths: no reader leaves the table, and none gives what no table can say.
#include "describe/tables/cmap_table.hpp"
#include "describe/tables/head_table.hpp"
#include "describe/tables/hhea_table.hpp"
#include "describe/tables/hmtx_table.hpp"
#include "describe/tables/indexed_strings.hpp"
#include "describe/tables/os2_table.hpp"
#include "describe/tables/post_table.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vellum::test {
namespace {

constexpr int kRounds = 3000;

// Few values or many: small numbers are what counts and platforms look like.
Bytes RandomBytes(std::mt19937 &random) {
    const uint32_t values = random() % 2 ? 256 : 3;
    Bytes bytes(random() % 120);
    for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(random() % values);
    return bytes;
}

template <class Check>
void ForRandomTables(uint32_t seed, Check check) {
    std::mt19937 random(seed);
    for (int round = 0; round < kRounds; ++round) {
        const Bytes bytes = RandomBytes(random);
        check(TableData(bytes), bytes);
    }
}

uint32_t ByteAt(const Bytes &bytes, size_t offset) {
    return offset < bytes.size() ? bytes[offset] : 0;
}

TEST(HostileTables, OS2SaysNothingThatIsNotThere) {
    ForRandomTables(1, [](auto data, const Bytes &bytes) {
        const OS2Table table(data);
        EXPECT_EQ(table.GetWeightClass(), ByteAt(bytes, 4) << 8 | ByteAt(bytes, 5));
        EXPECT_EQ(table.GetWidthClass(), ByteAt(bytes, 6) << 8 | ByteAt(bytes, 7));
        EXPECT_EQ(table.GetSelection(), ByteAt(bytes, 62) << 8 | ByteAt(bytes, 63));
        EXPECT_EQ(table.GetUnicodeRanges()[3] & 0xFF, ByteAt(bytes, 57));
        EXPECT_EQ(table.IsFixedPitch(), bytes.size() >= 78 && bytes[35] == 9);
        EXPECT_EQ(table.GetFamilyClass() & 0xFF, bytes.size() >= 78 ? bytes[31] : 0);
        EXPECT_EQ(table.GetCodePageRanges().has_value(), bytes.size() >= 86);
    });
}

TEST(HostileTables, HeadSaysNothingThatIsNotThere) {
    ForRandomTables(2, [](auto data, const Bytes &bytes) {
        const headTable table(data);
        EXPECT_EQ(table.IsBold(), (ByteAt(bytes, 45) & 0x01) != 0);
        EXPECT_EQ(table.IsItalic(), (ByteAt(bytes, 45) & 0x02) != 0);
        EXPECT_EQ(table.IsCondensed(), (ByteAt(bytes, 45) & 0x20) != 0);
        EXPECT_EQ(table.IsExtended(), (ByteAt(bytes, 45) & 0x40) != 0);
    });
}

TEST(HostileTables, AnglesStayWithinTheirBounds) {
    ForRandomTables(3, [](auto data, const Bytes &) {
        const float caret = hheaTable(data).GetItalicAngle();
        EXPECT_LE(std::abs(caret), 0.00873f); // a quarter turn
        const float post = postTable(data).GetItalicAngle();
        EXPECT_TRUE(post >= 0 && post <= 65536 / 180.0f) << post;
    });
}

TEST(HostileTables, PitchesSayNothingThatIsNotThere) {
    ForRandomTables(4, [](auto data, const Bytes &bytes) {
        const uint16_t metrics = hheaTable(data).GetMetricsCount();
        EXPECT_EQ(metrics, ByteAt(bytes, 34) << 8 | ByteAt(bytes, 35));
        EXPECT_TRUE(hmtxTable(data, 1).IsFixedPitch());
        EXPECT_TRUE(hmtxTable(data, metrics).IsFixedPitch() || !hmtxTable(data, 0xFFFF).IsFixedPitch());
        const bool fixed = ByteAt(bytes, 12) || ByteAt(bytes, 13) || ByteAt(bytes, 14) || ByteAt(bytes, 15);
        EXPECT_EQ(postTable(data).IsFixedPitch(), fixed);
    });
}

TEST(HostileTables, CmapAlwaysNamesAScriptOrUnicode) {
    ForRandomTables(5, [](auto data, const Bytes &) {
        const ValStringEncoding encoding = cmapTable(data).GetStringEncoding();
        EXPECT_TRUE(encoding < 32 || encoding == kValStringEncodingUnicode) << encoding;
    });
}

TEST(HostileTables, AnIndexedStringLiesWithinItsList) {
    ForRandomTables(6, [](auto data, const Bytes &bytes) {
        const uint8_t *begin = ValDataGetBytes(data.Get());
        for (const uint32_t index : {0u, 1u, 2u, 7u, 60u, 0xFFFFu, UINT32_MAX}) {
            const uint8_t *string = FindIndexedString(data.Get(), index);
            if (!string) continue;
            ASSERT_GE(string, begin + 2);
            EXPECT_LE(string + 1 + *string, begin + bytes.size());
        }
    });
}

} // namespace
} // namespace vellum::test
