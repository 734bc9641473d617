// SPDX-License-Identifier: MIT
// The writer, byte for byte.
#include "ipc/encoding/encoded.hpp"
#include "ipc/encoding/encoding.hpp"
#include "platform/val/string.hpp"
#include "support/captured_log.hpp"
#include "values/val_cast.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace vellum::test {
namespace {

using ::testing::IsEmpty;

constexpr std::string_view kHeadOfBitmap = "0000001b 00002000";

Ref<const ValData> DataOf(const Bytes &bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

Ref<const ValCharacterSet> Range(uint32_t first, uint32_t last) {
    return Adopt(ValCharacterSetCreateWithRange(first, last));
}

TEST(Flatten, WritesAStringAsItsUTF8) {
    EXPECT_EQ(Flattened(String("Noto")), Hex("00000007 00000004 4e6f746f"));
    EXPECT_EQ(Flattened(String("é€😀")), Hex("00000007 00000009 c3a9 e282ac f09f9880"));
    EXPECT_EQ(Flattened(String(std::string_view("a\0b", 3))), Hex("00000007 00000003 610062"));
}

TEST(Flatten, WritesAnEmptyStringAsLengthZero) {
    EXPECT_EQ(Flattened(String("")), Hex("00000007 00000000"));
}

TEST(Flatten, WritesALongStringWhole) {
    const std::string text(100'000, 'x');
    EXPECT_EQ(Flattened(String(text)), Hex("00000007 000186a0") + Bytes(100'000, 'x'));
}

TEST(Flatten, NeitherAddsNorRemovesAByteOrderMark) {
    EXPECT_EQ(Flattened(String("\xEF\xBB\xBFx")), Hex("00000007 00000004 efbbbf78"));
}

TEST(Flatten, WritesAStringThatIsNoUnicodeAsAnEmptyOne) {
    const uint16_t lone[] = {'a', 0xD800, 'b'};
    EXPECT_EQ(Flattened(Adopt(ValStringCreateWithUTF16(lone, 3))), Hex("00000007 00000000"));
    EXPECT_EQ(Flattened(Adopt(ValStringCreateWithFileSystemRepresentation("a\xFFz", 3))),
              Hex("00000007 00000000"));
}

TEST(Flatten, WritesAnIntegerInItsOwnTypeBigEndian) {
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateSInt8(-2))), Hex("00000016 00000001 00000001 fe"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateSInt16(0x1234))), Hex("00000016 00000002 00000002 1234"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateSInt32(1))), Hex("00000016 00000003 00000004 00000001"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateSInt32(INT32_MIN))),
              Hex("00000016 00000003 00000004 80000000"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateSInt64(0x0102030405060708))),
              Hex("00000016 00000004 00000008 0102030405060708"));
}

TEST(Flatten, WritesARealInItsOwnTypeBigEndian) {
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateFloat32(0.5F))), Hex("00000016 00000005 00000004 3f000000"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateFloat64(-2.0))),
              Hex("00000016 00000006 00000008 c000000000000000"));
    EXPECT_EQ(Flattened(Adopt(ValNumberCreateFloat64(HUGE_VAL))),
              Hex("00000016 00000006 00000008 7ff0000000000000"));
}

TEST(Flatten, WritesABooleanInNineBytes) {
    EXPECT_EQ(Flattened(kValBooleanTrue), Hex("00000103 00000001 01"));
    EXPECT_EQ(Flattened(kValBooleanFalse), Hex("00000103 00000001 00"));
}

TEST(Flatten, WritesDataAsItIs) {
    EXPECT_EQ(Flattened(DataOf({0xFF, 0x00, 0x7F})), Hex("00000012 00000003 ff007f"));
    EXPECT_EQ(Flattened(DataOf({})), Hex("00000012 00000000"));
    const Bytes large(1'000'000, 0xA5);
    EXPECT_EQ(Flattened(DataOf(large)), Hex("00000012 000f4240") + large);
}

TEST(Flatten, WritesACharacterSetAsItsBitmap) {
    Bytes bitmap(8192);
    bitmap[0x41 / 8] = 0x06; // U+0041 and U+0042
    bitmap[8191] = 0x80;     // U+FFFF
    const auto set = Adopt(ValCharacterSetCreateMutable());
    ValCharacterSetAddRange(set.Get(), 0x41, 0x42);
    ValCharacterSetAddRange(set.Get(), 0xFFFF, 0xFFFF);
    EXPECT_EQ(Flattened(set), Hex(kHeadOfBitmap) + bitmap);
}

TEST(Flatten, WritesTheFirstPlaneOfAnEmptyCharacterSet) {
    EXPECT_EQ(Flattened(Adopt(ValCharacterSetCreateMutable())), Hex(kHeadOfBitmap) + Bytes(8192));
}

TEST(Flatten, WritesEachFurtherPlaneOfACharacterSetThatHasAMember) {
    Bytes first(8192), second(8192), last(8192);
    first[0] = 0x01;
    second[0x1F600 % 0x10000 / 8] = 0x01;
    last[8191] = 0x80;
    const auto set = Adopt(ValCharacterSetCreateMutable());
    for (uint32_t c : {0x0u, 0x1F600u, 0x10FFFFu}) ValCharacterSetAddRange(set.Get(), c, c);
    EXPECT_EQ(Flattened(set), Hex("0000001b 00006002") + first + Hex("01") + second + Hex("10") + last);
}

TEST(Flatten, WritesAFullCharacterSet) {
    Bytes expected = Hex("0000001b 00022010") + Bytes(8192, 0xFF);
    for (uint8_t plane = 1; plane <= 16; ++plane) expected = expected + Bytes{plane} + Bytes(8192, 0xFF);
    EXPECT_EQ(Flattened(Range(0, 0x10FFFF)), expected);
}

TEST(Flatten, WritesAnArrayInOrder) {
    EXPECT_EQ(Flattened(List({})), Hex("00000011 00000000"));
    EXPECT_EQ(Flattened(List({Int(2), List({Retain(kValBooleanTrue)}), String("")})),
              Hex("00000011 00000003"
                  "00000016 00000003 00000004 00000002"
                  "00000011 00000001 00000103 00000001 01"
                  "00000007 00000000"));
}

TEST(Flatten, WritesASetInItsOwnOrder) {
    EXPECT_EQ(Flattened(SetOf({})), Hex("00000100 00000000"));
    EXPECT_EQ(Flattened(SetOf({String("b"), String("a"), String("b")})),
              Hex("00000100 00000002 00000007 00000001 62 00000007 00000001 61"));
}

TEST(Flatten, WritesADictionaryInItsOwnOrder) {
    EXPECT_EQ(Flattened(Dictionary({})), Hex("00000010 00000000"));
    EXPECT_EQ(Flattened(Dictionary({{String("z"), Int(1)}, {String("a"), String("y")}})),
              Hex("00000010 00000002"
                  "00000007 00000001 7a 00000016 00000003 00000004 00000001"
                  "00000007 00000001 61 00000007 00000001 79"));
}

TEST(Flatten, WritesAUrl) {
    EXPECT_EQ(Flattened(Url("file:///a.ttf#b")),
              ByteWriter().U32(257).U32(15).Text("file:///a.ttf#b").Get());
}

TEST(Flatten, WritesARelativeUrlResolvedAgainstItsBase) {
    const auto base = Url("file:///fonts/list");
    EXPECT_EQ(Flattened(Url("../a.ttf", base.Get())),
              ByteWriter().U32(257).U32(13).Text("file:///a.ttf").Get());
}

TEST(Flatten, WritesAUuidInCanonicalOrder) {
    const auto uuid = Adopt(ValUUIDCreateWithString(String("00112233-4455-6677-8899-AABBCCDDEEFF").Get()));
    EXPECT_EQ(Flattened(uuid), Hex("00000102 00000010 00112233445566778899aabbccddeeff"));
}

TEST(Flatten, WritesTheExampleOfTheDocumentation) {
    const auto value = Dictionary({{String("Name"), String("Ä")},
                                   {String("Weights"), List({Int(1), Adopt(ValNumberCreateFloat64(0.5))})},
                                   {String("On"), Retain(kValBooleanTrue)}});
    const Bytes bytes = Hex("00000010 00000003"
                            "00000007 00000004 4e616d65 00000007 00000002 c384"
                            "00000007 00000007 57656967687473"
                            "00000011 00000002 00000016 00000003 00000004 00000001"
                            "00000016 00000006 00000008 3fe0000000000000"
                            "00000007 00000002 4f6e 00000103 00000001 01");
    EXPECT_EQ(bytes.size(), 108U);
    EXPECT_EQ(Flattened(value), bytes);
    EXPECT_TRUE(ValEqual(Resurrected(bytes).Get(), value.Get()));
}

TEST(Flatten, WritesNothingForNull) {
    EXPECT_THAT(Flattened(nullptr), IsEmpty());
}

TEST(Flatten, LeavesOutAndDoesNotCountTheNullsOfArraysAndSets) {
    EXPECT_EQ(Flattened(List({nullptr, Int(1), nullptr})),
              Hex("00000011 00000001 00000016 00000003 00000004 00000001"));
    const auto set =
        Resurrected(Hex("00000100 00000003 00000012 00000000 00000007 00000001 61 00000012 00000000"));
    ASSERT_EQ(ValSetGetCount(Cast<ValSet>(set.Get())), 2U); // one null
    EXPECT_EQ(Flattened(set), Hex("00000100 00000001 00000007 00000001 61"));
}

TEST(Flatten, WritesAMissingUuidAsLengthZero) {
    TValFlattenContext context(ValDataCreateMutable(0), true);
    context.FlattenValUUID(nullptr);
    EXPECT_EQ(Bytes(context.GetBytePtr(), context.GetBytePtr() + context.GetLength()),
              Hex("00000102 00000000"));
}

TEST(Flatten, WritesOneValueBehindTheOther) {
    const auto buffer = Adopt(ValDataCreateMutable(0));
    ValDataAppend(buffer.Get(), "ab", 2);
    {
        TValFlattenContext context(buffer.Get(), false);
        context.Flatten(kValBooleanTrue);
        context.Flatten(String("x").Get());
        EXPECT_EQ(context.GetStream(), buffer.Get());
        EXPECT_TRUE(context.IsOk());
    }
    const uint8_t *bytes = ValDataGetBytes(buffer.Get());
    EXPECT_EQ(Bytes(bytes, bytes + ValDataGetLength(buffer.Get())),
              Hex("6162 00000103 00000001 01 00000007 00000001 78"));
}

TEST(Flatten, TakesOverTheBufferWhenAskedToAdopt) {
    ValData *buffer = ValDataCreateMutable(0);
    const auto mine = Retain(buffer);
    { TValFlattenContext context(buffer, true); }
    EXPECT_EQ(buffer->references.load(), 1U);
    { TValFlattenContext context(buffer, false); }
    EXPECT_EQ(buffer->references.load(), 1U);
}

constinit const ValKind kUnknownKind{kValTypeOther, "Thing", nullptr, nullptr, nullptr, nullptr};

Ref<const void> UnknownThing() {
    return Adopt(static_cast<const void *>(AllocateObject<ValObject>(0, kUnknownKind)));
}

TEST(Flatten, EmptiesTheOutputForAnUnknownKindAndLogsIt) {
    CapturedLog log;
    EXPECT_THAT(Flattened(Dictionary(
                    {{String("a"), Int(1)}, {String("b"), UnknownThing()}, {String("c"), Int(2)}})),
                IsEmpty());
    ASSERT_EQ(log.Records().size(), 1U);
    EXPECT_EQ(log.Records()[0].level, LogLevel::kError);
    EXPECT_THAT(log.Records()[0].text,
                ::testing::StartsWith("*** don't know how to flatten type 11 (object <Thing 0x"));
}

TEST(Flatten, DoesNothingMoreAfterAFailure) {
    CapturedLog log;
    TValFlattenContext context(ValDataCreateMutable(0), true);
    context.Flatten(String("before").Get());
    context.Flatten(UnknownThing().Get());
    EXPECT_EQ(context.GetLength(), 0U);
    EXPECT_FALSE(context.IsOk());
    context.Flatten(String("after").Get());
    context.StreamOut32bitEntity(7);
    EXPECT_EQ(context.GetLength(), 0U);
    EXPECT_EQ(log.Records().size(), 1U);
}

TEST(Flatten, RefusesContainersOfWhatAreNoValues) {
    CapturedLog log;
    const auto array = Adopt(ValArrayCreateMutable(0, &kValRawCallbacks));
    ValArrayAppend(array.Get(), reinterpret_cast<const void *>(uintptr_t{42}));
    const auto set = Adopt(ValSetCreateMutable(0, &kValRawCallbacks));
    ValSetAdd(set.Get(), reinterpret_cast<const void *>(uintptr_t{42}));
    const auto keys = Adopt(ValDictionaryCreateMutable(0, &kValRawCallbacks, nullptr));
    ValDictionarySetValue(keys.Get(), reinterpret_cast<const void *>(uintptr_t{42}), kValBooleanTrue);
    const auto values = Adopt(ValDictionaryCreateMutable(0, nullptr, &kValRawCallbacks));
    ValDictionarySetValue(values.Get(), kValBooleanTrue, reinterpret_cast<const void *>(uintptr_t{42}));
    for (const void *container :
         {static_cast<const void *>(array.Get()), static_cast<const void *>(set.Get()),
          static_cast<const void *>(keys.Get()), static_cast<const void *>(values.Get())}) {
        EXPECT_THAT(Flattened(container), IsEmpty());
    }
    EXPECT_EQ(log.Records().size(), 4U);
}

TEST(Flatten, AsksCallersHashesForNoNull) {
    const ValCallbacks callbacks = {ValRetain, ValRelease, ValEqual,
                                    [](const void *item) -> uint64_t { return TypeOf(item); }, nullptr};
    const auto set = Adopt(ValSetCreateMutable(0, &callbacks));
    ValSetAdd(set.Get(), String("a").Get());
    EXPECT_EQ(Flattened(set), Hex("00000100 00000001 00000007 00000001 61"));
}

TEST(Flatten, WritesDictionariesThatFoldTheCaseOfTheirKeys) {
    const auto dictionary =
        Adopt(ValDictionaryCreateMutable(0, &kValCaseInsensitiveStringCallbacks, nullptr));
    ValDictionarySetValue(dictionary.Get(), String("A").Get(), kValBooleanTrue);
    EXPECT_EQ(Flattened(dictionary), Hex("00000010 00000001 00000007 00000001 41 00000103 00000001 01"));
}

TEST(Flatten, WritesContainersNestedAsDeepAsTheReaderGoes) {
    Bytes expected;
    for (int i = 1; i < 64; ++i) expected = expected + Hex("00000011 00000001");
    EXPECT_EQ(Flattened(Nested(64)), expected + Hex("00000011 00000000"));
}

TEST(Flatten, RefusesContainersNestedDeeper) {
    CapturedLog log;
    EXPECT_THAT(Flattened(Nested(65)), IsEmpty());
    EXPECT_THAT(Flattened(Nested(100'000)), IsEmpty());
    ASSERT_EQ(log.Records().size(), 2U);
    EXPECT_THAT(log.Records()[0].text,
                ::testing::StartsWith("*** too many containers in each other to flatten"));
}

TEST(Flatten, RefusesWhatIsLargerThanALengthCanSay) {
    const auto flatten = [](size_t length) { // nothing of it is read
        return Flattened(Adopt(ValDataCreateWithBytesNoCopy("", length, nullptr, nullptr)));
    };
    EXPECT_THAT(flatten(kMaximumFlattenedLength - 7), IsEmpty());
    EXPECT_THAT(flatten(size_t{1} << 31), IsEmpty());
    EXPECT_THAT(flatten(size_t{1} << 33), IsEmpty());
    EXPECT_THAT(flatten(PTRDIFF_MAX), IsEmpty());
}

TEST(Flatten, ConvertsStreamedElementsOfTwoFourAndEightBytes) {
    TValFlattenContext context(ValDataCreateMutable(0), true);
    const uint8_t bytes[] = {1, 2, 3};
    const uint16_t words[] = {0x0102, 0x0304};
    const uint32_t double_word = 0x01020304;
    const uint64_t quad_word = 0x0102030405060708;
    context.StreamOut(bytes, 1, 3);
    context.StreamOut(words, 2, 2);
    context.StreamOut(&double_word, 4, 1);
    context.StreamOut(&quad_word, 8, 1);
    context.StreamOut(bytes, 3, 1); // of any other size: as it is
    context.StreamOut32bitEntity(0xAABBCCDD);
    EXPECT_EQ(Bytes(context.GetBytePtr(), context.GetBytePtr() + context.GetLength()),
              Hex("010203 0102 0304 01020304 0102030405060708 010203 aabbccdd"));
}

TEST(Flatten, WithoutABufferWritesNothing) {
    TValFlattenContext context(nullptr, false);
    context.Flatten(kValBooleanTrue);
    EXPECT_EQ(context.GetLength(), 0U);
    EXPECT_EQ(context.GetBytePtr(), nullptr);
    EXPECT_FALSE(context.IsOk());
}

} // namespace
} // namespace vellum::test
