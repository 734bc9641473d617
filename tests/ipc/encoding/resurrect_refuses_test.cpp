// SPDX-License-Identifier: MIT
// The reader: what refuses the whole reading.
#include "ipc/encoding/encoded.hpp"
#include "support/captured_log.hpp"
#include "values/val_cast.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

TEST(ResurrectRefuses, BytesThatEndTooEarlyWhereverTheyAreCut) {
    const Bytes whole = Flattened(Dictionary(
        {{String("string"), String("text")},
         {String("number"), Int(1)},
         {String("data"), Adopt(ValDataCreate("abc", 3))},
         {String("list"), List({Retain(kValBooleanTrue), Adopt(ValUUIDCreate()), Url("file:///a")})},
         {String("set"), SetOf({Adopt(ValCharacterSetCreateWithRange(1, 2))})}}));
    CapturedLog log;
    for (size_t length = 1; length<whole.size(); length += length> 300 ? 97 : 1) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        Reader reader(cut);
        ASSERT_FALSE(reader->Resurrect()) << length;
        ASSERT_TRUE(reader->IsRefused()) << length;
    }
    EXPECT_TRUE(Resurrected(whole));
}

TEST(ResurrectRefuses, EverythingOnceItHasRefused) {
    CapturedLog log;
    Reader reader(Hex("00000007 00000100") + Hex(kTrue));
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_FALSE(reader->ResurrectValArray());
    EXPECT_EQ(log.Lines().size(), 1U);
    EXPECT_EQ(log.Records()[0].level, LogLevel::kError);
}

TEST(ResurrectRefuses, LengthsAndCountsThatTheBytesLeftCannotHold) {
    for (const char *tag :
         {"00000007", "00000012", "0000001b", "00000101", "00000011", "00000100", "00000010"}) {
        for (const char *length : {"7fffffff", "0000000a"}) {
            CapturedLog log;
            EXPECT_FALSE(Resurrected(Hex(tag) + Hex(length) + Hex(kTrue))) << tag;
            EXPECT_EQ(log.Lines().size(), 1U) << tag;
        }
    }
}

TEST(ResurrectRefuses, ACountOfOneMoreThanFits) {
    CapturedLog log;
    EXPECT_TRUE(Resurrected(Hex("00000011 00000002 00000008 00000008")));
    EXPECT_FALSE(Resurrected(Hex("00000011 00000003 00000008 00000008")));
    EXPECT_TRUE(Resurrected(Hex("00000010 00000001 00000008 00000008")));
    EXPECT_FALSE(Resurrected(Hex("00000010 00000002 00000008 00000008 00000008")));
}

TEST(ResurrectRefuses, NumbersOfAnImpossibleSize) {
    for (const char *bytes :
         {"00000003 00000008 0000000000000001", "00000001 00000000", "00000006 00000004 00000000",
          "00000007 00000003 000000", "00000000 00000000", "00000003 ffffffff 00000001"}) {
        CapturedLog log;
        Reader reader(Hex("00000016") + Hex(bytes) + Hex(kTrue));
        EXPECT_FALSE(reader->Resurrect()) << bytes;
        EXPECT_TRUE(reader->IsRefused()) << bytes;
    }
}

Bytes NestedArrays(size_t depth) {
    Bytes bytes;
    for (size_t i = 1; i < depth; ++i) bytes = bytes + Hex("00000011 00000001");
    return bytes + Hex("00000011 00000000");
}

TEST(ResurrectRefuses, ContainersNestedDeeperThanSixtyFour) {
    CapturedLog log;
    EXPECT_TRUE(ValEqual(Resurrected(NestedArrays(64)).Get(), Nested(64).Get()));
    EXPECT_FALSE(Resurrected(NestedArrays(65)));
    EXPECT_FALSE(Resurrected(NestedArrays(5'000)));
    EXPECT_EQ(log.Lines().size(), 2U);
}

TEST(ResurrectRefuses, AnythingBadInsideOfTheOuterContainerToo) {
    CapturedLog log;
    EXPECT_FALSE(Resurrected(Hex("00000011 00000002") + Hex(kTrue) + Hex("00000007 00001000")));
    EXPECT_FALSE(Resurrected(Hex("00000010 00000001 00000007 00000001 61 00000007 00001000")));
    EXPECT_FALSE(Resurrected(Hex("00000100 00000001 00000016 00000003 00000001 00")));
}

// Sets of eight, eight deep in each other: their members are found equal or not by looking into them, and
// so on.
Bytes NestedSets(int depth, int32_t &next) {
    if (depth == 0) return Hex("00000011 00000001 00000011 00000001") + Flattened(Int(next++ << 10));
    Bytes bytes = Hex("00000100 00000008");
    for (int i = 0; i < 8; ++i) bytes = bytes + NestedSets(depth - 1, next);
    return bytes;
}

TEST(ResurrectRefuses, SetsInSetsThatWereMadeToTakeLong) {
    CapturedLog log;
    int32_t next = 0;
    const Bytes small = NestedSets(2, next);
    EXPECT_TRUE(Resurrected(small));
    const Bytes large = NestedSets(5, next); // 1.3 MB, of which the comparisons alone took seconds
    EXPECT_FALSE(Resurrected(large));
    ASSERT_EQ(log.Lines().size(), 1U);
    EXPECT_THAT(log.Lines()[0], ::testing::HasSubstr("made to collide"));
}

TEST(ResurrectRefuses, KeysThatWereMadeToCollide) {
    // Of an array's members that are containers the hash knows no more than the kind.
    Bytes set = Hex("00000100 00002000");
    for (uint32_t i = 0; i < 0x2000; ++i) {
        set = set + Hex("00000011 00000001 00000011 00000001") + Flattened(Int(static_cast<int32_t>(i)));
    }
    CapturedLog log;
    EXPECT_FALSE(Resurrected(set));
    EXPECT_EQ(log.Lines().size(), 1U);
    EXPECT_THAT(log.Lines()[0], ::testing::HasSubstr("made to collide"));
}

TEST(Resurrect, WritesAtMostSeventeenLinesToTheLog) {
    CapturedLog log;
    ByteWriter bytes;
    bytes.U32(17).U32(1'000);
    for (int i = 0; i < 999; ++i) bytes.U32(8);
    bytes.U32(7).U32(5); // and refuses at the end
    EXPECT_FALSE(Resurrected(bytes));
    EXPECT_EQ(log.Lines().size(), 17U);
    EXPECT_THAT(log.Lines().back(), ::testing::StartsWith("*** refused to resurrect a value"));
}

} // namespace
} // namespace vellum::test
