// SPDX-License-Identifier: MIT
// The reader: every kind out of bytes written out by hand, and what it makes of odd ones.
#include "ipc/encoding/encoded.hpp"
#include "platform/val/string.hpp"
#include "support/captured_log.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_cast.hpp"

#include <vellum/vellum.h>

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view kEmptyData = "00000012 00000000";

TEST(Resurrect, ReadsStrings) {
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 00000009 c3a9 e282ac f09f9880"))), "é€😀");
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 00000003 610062"))), std::string("a\0b", 3));
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 00000004 efbbbf78"))), "\xEF\xBB\xBFx"); // with its mark
}

TEST(Resurrect, ReadsAnEmptyString) {
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 00000000"))), "");
}

TEST(Resurrect, ReadsALengthBelowZeroAsNone) {
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 80000000"))), "");
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 ffffffff"))), "");
    EXPECT_FALSE(Resurrected(Hex("00000012 80000000")));
    EXPECT_FALSE(Resurrected(Hex("0000001b ffffffff")));
    EXPECT_FALSE(Resurrected(Hex("00000102 ffffffff 00112233445566778899aabbccddeeff")));
    EXPECT_TRUE(ValEqual(Resurrected(Hex("00000011 80000000")).Get(), List({}).Get()));
    EXPECT_TRUE(ValEqual(Resurrected(Hex("00000100 ffffffff")).Get(), SetOf({}).Get()));
    EXPECT_TRUE(ValEqual(Resurrected(Hex("00000010 80000000")).Get(), Dictionary({}).Get()));
}

TEST(Resurrect, ReadsAStringThatIsNoUTF8AsAnEmptyOneAndGoesOnBehindIt) {
    for (const char *text : {"ff", "eda080", "c0af", "f5808080", "e282"}) {
        const Bytes bytes = Hex(text);
        Reader reader(
            ByteWriter().U32(7).U32(static_cast<uint32_t>(bytes.size())).Append(bytes).Append(Hex(kTrue)));
        EXPECT_EQ(TextOf(reader->Resurrect()), "") << text;
        EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue) << text;
    }
}

TEST(Resurrect, ReadsAStringThatIsNoUTF8AsAnEmptyOneThoughThePoolHasSuchAName) {
    const uint16_t lone[] = {0xD800};
    const auto name = TValStringUniquer().GetUniqueString(Adopt(ValStringCreateWithUTF16(lone, 1)).Get());
    ASSERT_EQ(TextOf(name), "\xED\xA0\x80");
    EXPECT_EQ(TextOf(Resurrected(Hex("00000007 00000003 eda080"))), "");
}

TEST(Resurrect, ReadsNumbersInTheirTypes) {
    struct {
        const char *bytes;
        ValNumberType type;
        double value;
    } const rows[] = {
        {"00000001 00000001 fe", kValNumberTypeSInt8, -2},
        {"00000002 00000002 1234", kValNumberTypeSInt16, 0x1234},
        {"00000003 00000004 80000000", kValNumberTypeSInt32, INT32_MIN},
        {"00000004 00000008 0000010000000001", kValNumberTypeSInt64, 0x10000000001},
        {"00000005 00000004 3f000000", kValNumberTypeFloat32, 0.5},
        {"00000006 00000008 c000000000000000", kValNumberTypeFloat64, -2},
    };
    for (const auto &row : rows) {
        const auto value = Resurrected(Hex("00000016") + Hex(row.bytes));
        ASSERT_EQ(ValNumberGetNumberType(Cast<ValNumber>(value.Get())), row.type) << row.bytes;
        EXPECT_EQ(ValNumberGetFloat64(Cast<ValNumber>(value.Get())), row.value) << row.bytes;
    }
}

TEST(Resurrect, ReadsBooleansAsTheSharedConstants) {
    EXPECT_EQ(Resurrected(Hex(kTrue)).Get(), kValBooleanTrue);
    EXPECT_EQ(Resurrected(Hex("00000103 00000001 00")).Get(), kValBooleanFalse);
    EXPECT_EQ(Resurrected(Hex("00000103 00000001 80")).Get(), kValBooleanTrue);
}

TEST(Resurrect, ReadsABooleanOfAnotherLengthAsFalseAndStaysAtItsPayload) {
    CapturedLog log;
    Reader reader(Hex("00000103 00000002 00000007 00000001 78"));
    EXPECT_EQ(reader->Resurrect().Get(), kValBooleanFalse);
    EXPECT_EQ(reader->BytesLeft(), 9U);
    EXPECT_EQ(TextOf(reader->Resurrect()), "x");
    EXPECT_THAT(log.Lines(), ElementsAre("*** incorrect size 2 for boolean data, expected 1"));
    EXPECT_EQ(log.Records()[0].level, LogLevel::kError);
}

TEST(Resurrect, ReadsData) {
    const auto data = Resurrected(Hex("00000012 00000003 ff007f"));
    EXPECT_TRUE(ValEqual(data.Get(), Adopt(ValDataCreate("\xFF\0\x7F", 3)).Get()));
}

TEST(Resurrect, ReadsEmptyDataAsNull) {
    CapturedLog log;
    EXPECT_FALSE(Resurrected(Hex(kEmptyData)));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(Resurrect, ReadsCharacterSets) {
    Bytes bytes = Hex("0000001b 00004001") + Bytes(8192) + Hex("01") + Bytes(8192);
    bytes[8 + 0x41 / 8] = 0x02;
    bytes[8 + 8193 + 0xF600 / 8] = 0x01;
    const auto set = Resurrected(bytes);
    const auto expected = Adopt(ValCharacterSetCreateMutable());
    ValCharacterSetAddRange(expected.Get(), 0x41, 0x41);
    ValCharacterSetAddRange(expected.Get(), 0x1F600, 0x1F600);
    EXPECT_TRUE(ValEqual(set.Get(), expected.Get()));
}

TEST(Resurrect, GivesOneObjectForEqualCharacterSetsThatStandTogether) {
    const auto first = Flattened(Adopt(ValCharacterSetCreateWithRange(1, 2)));
    const auto second = Flattened(Adopt(ValCharacterSetCreateWithRange(1, 3)));
    const auto value =
        Resurrected(Hex("00000011 00000005") + first + first + second + Hex("0000001b 00000000") + second);
    const auto *array = Cast<ValArray>(value.Get());
    EXPECT_EQ(ValArrayGetValue(array, 0), ValArrayGetValue(array, 1));
    EXPECT_EQ(ValArrayGetValue(array, 2), ValArrayGetValue(array, 4));
    EXPECT_EQ(Flattened(ValArrayGetValue(array, 0)), first);
    EXPECT_EQ(Flattened(ValArrayGetValue(array, 2)), second);
    EXPECT_EQ(ValArrayGetValue(array, 3), nullptr);
}

TEST(Resurrect, ReadsWhatIsNoBitmapAsNullAndGoesOn) {
    CapturedLog log;
    for (uint32_t length : {1u, 8191u, 8193u}) {
        Reader reader(ByteWriter().U32(27).U32(length).Zeros(length).Append(Hex(kTrue)));
        EXPECT_FALSE(reader->Resurrect());
        EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue);
    }
    EXPECT_FALSE(Resurrected(Hex("0000001b 00000000")));
    EXPECT_THAT(log.Lines(), ElementsAre("*** 1 bytes are no bitmap of a character set",
                                         "*** 8191 bytes are no bitmap of a character set",
                                         "*** 8193 bytes are no bitmap of a character set"));
}

TEST(Resurrect, ReadsUrls) {
    const auto whole = Resurrected(ByteWriter().U32(257).U32(15).Text("file:///a.ttf#b"));
    EXPECT_TRUE(ValEqual(whole.Get(), Url("file:///a.ttf#b").Get()));
    EXPECT_EQ(ValURLGetBase(Cast<ValURL>(whole.Get())), nullptr);
}

TEST(Resurrect, ReadsWhatIsNoAbsoluteUrlAsNullAndGoesOn) {
    CapturedLog log;
    for (const std::string_view text : {"", "a/b", "\xFF", "file:///a\nb"}) {
        Reader reader(
            ByteWriter().U32(257).U32(static_cast<uint32_t>(text.size())).Text(text).Append(Hex(kTrue)));
        EXPECT_FALSE(reader->Resurrect()) << text;
        EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue) << text;
    }
    EXPECT_EQ(log.Lines().size(), 4U);
}

TEST(Resurrect, ReadsUuidsWhateverTheirLengthSays) {
    const auto expected =
        Adopt(ValUUIDCreateWithString(String("00112233-4455-6677-8899-AABBCCDDEEFF").Get()));
    for (const char *length : {"00000010", "00000001", "7fffffff"}) {
        Reader reader(Hex("00000102") + Hex(length) + Hex("00112233445566778899aabbccddeeff") + Hex(kTrue));
        EXPECT_TRUE(ValEqual(reader->Resurrect().Get(), expected.Get())) << length;
        EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue) << length;
    }
}

TEST(Resurrect, ReadsAUuidOfLengthZeroAsNullAndNothingMore) {
    Reader reader(Hex("00000102 00000000") + Hex(kTrue));
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue);
}

TEST(Resurrect, ReadsContainers) {
    EXPECT_TRUE(
        ValEqual(Resurrected(Hex("00000011 00000002") + Hex(kTrue) + Hex("00000011 00000000")).Get(),
                 List({Retain(kValBooleanTrue), List({})}).Get()));
    EXPECT_TRUE(
        ValEqual(Resurrected(Hex("00000100 00000002 00000007 00000001 62 00000007 00000001 61")).Get(),
                 SetOf({String("a"), String("b")}).Get()));
    EXPECT_TRUE(ValEqual(Resurrected(Hex("00000010 00000001 00000007 00000001 61") + Hex(kTrue)).Get(),
                         Dictionary({{String("a"), Retain(kValBooleanTrue)}}).Get()));
}

TEST(Resurrect, KeepsTheOrderOfDictionariesAndSets) {
    const Bytes set =
        Hex("00000100 00000003 00000007 00000001 63 00000007 00000001 61 00000007 00000001 62");
    EXPECT_EQ(Flattened(Resurrected(set)), set);
    Bytes dictionary = Hex("00000010 00000014");
    for (uint32_t i = 20; i > 0; --i)
        dictionary = dictionary + Flattened(Int(static_cast<int32_t>(i))) + Hex(kTrue);
    EXPECT_EQ(Flattened(Resurrected(dictionary)), dictionary);
}

TEST(Resurrect, KeepsTheFirstOfEqualKeysWithTheLastValue) {
    const auto value = Resurrected(Hex("00000010 00000003"
                                       "00000016 00000003 00000004 00000001 00000007 00000001 61"
                                       "00000007 00000001 78 00000007 00000001 62"
                                       "00000016 00000004 00000008 0000000000000001 00000007 00000001 63"));
    EXPECT_EQ(Flattened(value), Hex("00000010 00000002"
                                    "00000016 00000003 00000004 00000001 00000007 00000001 63"
                                    "00000007 00000001 78 00000007 00000001 62"));
}

TEST(Resurrect, KeepsOneOfEqualMembers) {
    const Bytes letter = Hex("00000007 00000001 61");
    EXPECT_EQ(Flattened(Resurrected(Hex("00000100 00000003") + letter + letter + letter)),
              Hex("00000100 00000001") + letter);
}

TEST(Resurrect, ReadsAnUnknownTagAsNullAndGoesOnBehindTheTag) {
    CapturedLog log;
    Reader reader(Hex("00000008") + Hex(kTrue));
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue);
    EXPECT_THAT(log.Lines(), ElementsAre("*** don't how to resurrect type 8"));
    EXPECT_EQ(log.Records()[0].level, LogLevel::kError);
}

TEST(Resurrect, LeavesNullsInArraysAndSets) {
    CapturedLog log;
    const auto array =
        Resurrected(Hex("00000011 00000003") + Hex(kTrue) + Hex("00000008") + Hex(kEmptyData));
    ASSERT_EQ(ValArrayGetCount(Cast<ValArray>(array.Get())), 3U);
    EXPECT_EQ(ValArrayGetValue(Cast<ValArray>(array.Get()), 0), kValBooleanTrue);
    EXPECT_EQ(ValArrayGetValue(Cast<ValArray>(array.Get()), 1), nullptr);
    EXPECT_EQ(ValArrayGetValue(Cast<ValArray>(array.Get()), 2), nullptr);

    const auto value =
        Resurrected(Hex("00000100 00000003") + Hex(kEmptyData) + Hex(kTrue) + Hex(kEmptyData));
    const auto *set = Cast<ValSet>(value.Get());
    ASSERT_EQ(ValSetGetCount(set), 2U);
    EXPECT_TRUE(ValSetContains(set, kValBooleanTrue));
    EXPECT_TRUE(ValEqual(set, Adopt(ValSetCreateMutableCopy(set)).Get()));
    EXPECT_FALSE(ValEqual(set, SetOf({Retain(kValBooleanTrue)}).Get()));
    EXPECT_NE(TextOf(Adopt(ValCopyDescription(set))), "");
}

TEST(Resurrect, TruncatesADictionaryAtAMissingKeyOrValueAndGoesOnThere) {
    const Bytes pair = Hex("00000007 00000001 61 00000007 00000001 62");
    for (const Bytes &odd : {Hex(kEmptyData) + Hex("00000007 00000001 63"),    // no key
                             Hex("00000007 00000001 63") + Hex(kEmptyData)}) { // no value
        CapturedLog log;
        Reader reader(Hex("00000010 00000003") + pair + odd + Hex(kTrue));
        EXPECT_TRUE(ValEqual(reader->Resurrect().Get(), Dictionary({{String("a"), String("b")}}).Get()));
        EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue);
        EXPECT_THAT(log.Lines(), ElementsAre("*** ResurrectValDictionary missing either a key or a value, "
                                             "truncating dictionary"));
    }
}

TEST(Resurrect, GivesOneObjectForEqualStringsOfDifferentReplies) {
    const Bytes bytes = Hex("00000007 00000006 43616e746172"); // "Cantar"
    const auto first = Resurrected(bytes);
    EXPECT_EQ(Resurrected(bytes).Get(), first.Get());
    EXPECT_EQ(TValStringUniquer().GetUniqueString(String("Cantar").Get()).Get(), first.Get());
}

TEST(Resurrect, GivesOneObjectForEqualStringsOfOneReply) {
    Bytes bytes = Hex("00000011 00000400");
    for (uint32_t i = 0; i < 1024; ++i) bytes = bytes + Flattened(String("key " + std::to_string(i % 256)));
    const auto value = Resurrected(bytes);
    const auto *array = Cast<ValArray>(value.Get());
    for (size_t i = 256; i < 1024; ++i)
        ASSERT_EQ(ValArrayGetValue(array, i), ValArrayGetValue(array, i - 256));
}

TEST(Resurrect, GivesTheKeyConstantsThemselves) {
    EXPECT_EQ(Resurrected(Flattened(String("KSFontNameAttribute"))).Get(), kVLFontPropertyName);
    EXPECT_EQ(Resurrected(Flattened(kVLFontTraitWeight)).Get(), kVLFontTraitWeight);
}

TEST(Resurrect, OfNoBytesIsNullWithoutAWord) {
    CapturedLog log;
    EXPECT_FALSE(TValResurrectContext(nullptr, 0).Resurrect());
    EXPECT_FALSE(TValResurrectContext(nullptr, 100).Resurrect());
    EXPECT_FALSE(TValResurrectContext(reinterpret_cast<const uint8_t *>(""), 0).Resurrect());
    Reader reader(Hex(kTrue));
    EXPECT_TRUE(reader->Resurrect());
    EXPECT_FALSE(reader->Resurrect()); // there are no more
    EXPECT_FALSE(reader->IsRefused());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(Resurrect, StreamsElementsInInTheProcessorsOrder) {
    Reader reader(Hex("010203 0102 0304 01020304 0102030405060708 00"));
    uint8_t bytes[3];
    uint16_t words[2];
    uint32_t double_word;
    uint64_t quad_word;
    ASSERT_TRUE(reader->StreamInData(bytes, 1, 3));
    ASSERT_TRUE(reader->StreamInData(words, 2, 2));
    ASSERT_TRUE(reader->StreamInData(&double_word, 4, 1));
    ASSERT_TRUE(reader->StreamInData(&quad_word, 8, 1));
    EXPECT_THAT(bytes, ElementsAre(1, 2, 3));
    EXPECT_THAT(words, ElementsAre(0x0102, 0x0304));
    EXPECT_EQ(double_word, 0x01020304U);
    EXPECT_EQ(quad_word, 0x0102030405060708U);
    EXPECT_FALSE(reader->StreamInData(words, 2, 1));
    EXPECT_TRUE(reader->IsRefused());
}

TEST(Resurrect, ReadsANumberOfAnUnknownTypeAsNullAndGoesOn) {
    CapturedLog log;
    Reader reader(Hex("00000016 00000007 00000002 0001") +
                  Hex("00000016 00000000 00000008 0000000000000001") + Hex(kTrue));
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_FALSE(reader->Resurrect());
    EXPECT_EQ(reader->Resurrect().Get(), kValBooleanTrue);
    EXPECT_THAT(log.Lines(), ElementsAre("*** don't know number type 7", "*** don't know number type 0"));
}

// As many as fill the table to the most, where by chance alone each key meets another one.
TEST(Resurrect, ReadsLargeDictionariesAndSets) {
    constexpr uint32_t kCount = 690'000;
    ByteWriter set;
    ByteWriter dictionary;
    set.U32(256).U32(kCount);
    dictionary.U32(16).U32(kCount);
    for (uint32_t i = 0; i < kCount; ++i) {
        set.U32(22).U32(3).U32(4).U32(i);
        dictionary.U32(22).U32(3).U32(4).U32(i).U32(259).U32(1).U8(1);
    }
    EXPECT_EQ(ValSetGetCount(Cast<ValSet>(Resurrected(set).Get())), kCount);
    EXPECT_EQ(ValDictionaryGetCount(Cast<ValDictionary>(Resurrected(dictionary).Get())), kCount);
}

} // namespace
} // namespace vellum::test
