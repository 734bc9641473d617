// SPDX-License-Identifier: MIT
#include "describe/tables/post_table.hpp"
#include "describe/tables/table_data.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

Bytes Post(uint32_t angle, uint32_t fixed_pitch) {
    ByteWriter table;
    return table.U32(0x00030000).U32(angle).I16(-100).I16(50).U32(fixed_pitch).Zeros(16);
}

float AngleOf(uint32_t angle) {
    return postTable(TableData(Post(angle, 0))).GetItalicAngle();
}

bool IsFixedPitch(uint32_t value) {
    return postTable(TableData(Post(0, value))).IsFixedPitch();
}

TEST(postTable, AnyValueButZeroIsFixedPitch) {
    EXPECT_FALSE(IsFixedPitch(0));
    for (const uint32_t value : {1u, 0x100u, 0x10000u, 0x01000000u, 0xFFFFFFFFu})
        EXPECT_TRUE(IsFixedPitch(value)) << value;
}

TEST(postTable, AnAngleOfZeroIsZero) {
    EXPECT_EQ(AngleOf(0), 0.0f);
}

TEST(postTable, TheAngleIsInDegreesOver180) {
    EXPECT_EQ(AngleOf(0x000C0000), static_cast<float>(12 / 180.0));
    EXPECT_EQ(AngleOf(0x000C8000), static_cast<float>(12.5 / 180.0));
}

TEST(postTable, ANegativeAngleIsReadWithoutItsSign) {
    EXPECT_EQ(AngleOf(0xFFF40000), static_cast<float>(65524 / 180.0)); // -12 degrees
    EXPECT_NEAR(AngleOf(0xFFF40000), 364.02, 0.005);
    EXPECT_EQ(AngleOf(0x80000000), static_cast<float>(32768 / 180.0));
}

TEST(postTable, TheAngleIsRoundedToSinglePrecisionBeforeItIsDivided) {
    EXPECT_EQ(AngleOf(0xFFFFFFFF), static_cast<float>(65536 / 180.0));
    EXPECT_EQ(AngleOf(0xA265B1F5), static_cast<float>(41573.6953125 / 180.0)); // of 41573.6951447
}

TEST(postTable, AnAbsentTableIsUprightAndNotOfFixedPitch) {
    EXPECT_EQ(postTable(nullptr).GetItalicAngle(), 0.0f);
    EXPECT_FALSE(postTable(nullptr).IsFixedPitch());
}

TEST(postTable, OfAShortTableTheMissingBytesAreZero) {
    ForEveryLength(Post(0x01020304, 0x01020304), [](auto cut, auto padded, size_t length) {
        EXPECT_EQ(postTable(cut).GetItalicAngle(), postTable(padded).GetItalicAngle()) << length;
        EXPECT_EQ(postTable(cut).GetItalicAngle() != 0, length > 4) << length;
        EXPECT_EQ(postTable(cut).IsFixedPitch(), length > 12) << length;
    });
}

} // namespace
} // namespace vellum::test
