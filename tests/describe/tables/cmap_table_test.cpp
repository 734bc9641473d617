// SPDX-License-Identifier: MIT
#include "describe/tables/cmap_table.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace vellum::test {
namespace {

using Records = std::vector<std::pair<uint32_t, uint32_t>>; // platform, encoding

Bytes Cmap(const Records &records) {
    ByteWriter table;
    table.U16(0).U16(static_cast<uint32_t>(records.size()));
    for (const auto &[platform, encoding] : records) table.U16(platform).U16(encoding).U32(0x01010101);
    return table;
}

ValStringEncoding EncodingOf(const Records &records) {
    return cmapTable(TableData(Cmap(records))).GetStringEncoding();
}

TEST(cmapTable, AnyOtherScriptWinsOverRoman) {
    EXPECT_EQ(EncodingOf({{1, 0}, {1, 25}}), kValStringEncodingSimplifiedChinese);
    EXPECT_EQ(EncodingOf({{1, 1}, {1, 0}}), kValStringEncodingJapanese);
    EXPECT_EQ(EncodingOf({{0, 3}, {1, 0}, {1, 31}, {3, 1}}), 31u);
}

TEST(cmapTable, OfSeveralScriptsTheLowestWins) {
    EXPECT_EQ(EncodingOf({{1, 25}, {1, 3}, {1, 7}}), kValStringEncodingKorean);
}

TEST(cmapTable, RomanAloneIsRoman) {
    EXPECT_EQ(EncodingOf({{1, 0}}), kValStringEncodingRoman);
    EXPECT_EQ(EncodingOf({{0, 3}, {1, 0}, {3, 1}}), kValStringEncodingRoman);
}

TEST(cmapTable, SubtablesOfOtherPlatformsAloneAreUnicode) {
    EXPECT_EQ(EncodingOf({{0, 3}, {3, 1}, {3, 10}}), kValStringEncodingUnicode);
    EXPECT_EQ(EncodingOf({{2, 1}, {0x0100, 1}, {0x0101, 1}}), kValStringEncodingUnicode);
}

TEST(cmapTable, ATableWithoutSubtablesIsUnicode) {
    EXPECT_EQ(EncodingOf({}), kValStringEncodingUnicode);
}

TEST(cmapTable, ScriptCodesCountModulo32) {
    EXPECT_EQ(EncodingOf({{1, 33}}), kValStringEncodingJapanese);
    EXPECT_EQ(EncodingOf({{1, 32}}), kValStringEncodingRoman);
    EXPECT_EQ(EncodingOf({{1, 0xFFFF}}), 31u);
}

TEST(cmapTable, OnlyTheDeclaredRecordsCount) {
    Bytes bytes = Cmap({{3, 1}, {1, 1}});
    bytes[3] = 1;
    EXPECT_EQ(cmapTable(TableData(bytes)).GetStringEncoding(), kValStringEncodingUnicode);
}

TEST(cmapTable, RecordsBeyondTheEndAreNone) {
    Bytes bytes = Cmap({{1, 2}});
    bytes[2] = bytes[3] = 0xFF;
    EXPECT_EQ(cmapTable(TableData(bytes)).GetStringEncoding(), kValStringEncodingTraditionalChinese);
}

TEST(cmapTable, AnAbsentTableIsUnicode) {
    EXPECT_EQ(cmapTable(nullptr).GetStringEncoding(), kValStringEncodingUnicode);
}

TEST(cmapTable, OfAShortTableTheMissingBytesAreZero) {
    // The platform ends at 6, the encoding at 8; the second record's at 14 and 16.
    const auto expected = [](size_t length) {
        if (length < 6) return kValStringEncodingUnicode;
        if (length < 8) return kValStringEncodingRoman;
        return length < 16 ? kValStringEncodingSimplifiedChinese : kValStringEncodingKorean;
    };
    ForEveryLength(Cmap({{1, 25}, {1, 3}}), [&](auto cut, auto padded, size_t length) {
        EXPECT_EQ(cmapTable(cut).GetStringEncoding(), expected(length)) << length;
        EXPECT_EQ(cmapTable(padded).GetStringEncoding(), expected(length)) << length;
    });
}

} // namespace
} // namespace vellum::test
