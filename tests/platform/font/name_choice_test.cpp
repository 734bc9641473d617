// SPDX-License-Identifier: MIT
// Which record of a name table answers, and how its bytes become text.
#include "asking.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint16_t kGerman = 0x407;
constexpr uint16_t kJapanese = 0x411;
constexpr uint16_t kEnglishGreatBritain = 0x809;

std::string Family(const std::vector<NameRecord> &records) {
    return Name(FontWithNames(records).Get(), GxNameKey::kFamily);
}

std::string FamilyOf(uint16_t platform, uint16_t encoding, const Bytes &bytes) {
    return Family({{platform, encoding, 0, 1, bytes}});
}

TEST(NameChoice, TakesTheEnglishOfTheUnitedStatesBeforeAllOthers) {
    EXPECT_EQ(Family({UnicodeName(1, u"Unicode"), MacintoshName(1, "Macintosh"),
                      WindowsName(1, "German", kGerman), WindowsName(1, "British", kEnglishGreatBritain),
                      WindowsName(1, "American")}),
              "American");
}

TEST(NameChoice, TakesAnyOtherWindowsEnglishBeforeTheMacintoshName) {
    EXPECT_EQ(Family({MacintoshName(1, "Macintosh"), WindowsName(1, "British", kEnglishGreatBritain)}),
              "British");
}

TEST(NameChoice, TakesTheMacintoshEnglishBeforeTheUnicodeName) {
    EXPECT_EQ(Family({UnicodeName(1, u"Unicode"), MacintoshName(1, "Macintosh")}), "Macintosh");
}

TEST(NameChoice, TakesTheUnicodeNameBeforeOtherLanguages) {
    EXPECT_EQ(Family({WindowsName(1, "German", kGerman), UnicodeName(1, u"Unicode")}), "Unicode");
}

TEST(NameChoice, TakesTheFirstRecordWhenNoneIsEnglish) {
    EXPECT_EQ(Family({WindowsName(1, "Japanese", kJapanese), WindowsName(1, "German", kGerman)}),
              "Japanese");
}

TEST(NameChoice, PassesOverRecordsThatCannotBeDecoded) {
    EXPECT_EQ(
        Family({{3, 9, kEnglishUnitedStates, 1, Utf16("Unknown")}, WindowsName(1, "German", kGerman)}),
        "German");
}

TEST(NameChoice, TakesATaggedEnglishRecordForEnglish) {
    const Bytes table =
        NameTable({WindowsName(1, "German", kGerman), WindowsName(1, "Tagged", 0x8000)}, {u"en-NZ"});
    EXPECT_EQ(Name(FontOf(FontBuilder().Table("name", table)).Get(), GxNameKey::kFamily), "Tagged");
}

TEST(NameChoice, PrefersTheTypographicFamilyAsTheFamilyName) {
    const auto font = FontWithNames({WindowsName(1, "Foo Light"), WindowsName(16, "Foo")});
    EXPECT_EQ(Str(GxFontCopyFamilyName(font.Get())), "Foo");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kFamily), "Foo Light");
}

TEST(NameChoice, AnswersTheFamilyWhenThereIsNoTypographicOne) {
    EXPECT_EQ(Str(GxFontCopyFamilyName(FontWithNames({WindowsName(1, "Foo")}).Get())), "Foo");
}

TEST(NameChoice, AnswersFullAndPostScriptNamesFromTheirRecords) {
    const auto font = FontWithNames({WindowsName(4, "Foo Bold"), WindowsName(6, "Foo-Bold")});
    EXPECT_EQ(Str(GxFontCopyFullName(font.Get())), "Foo Bold");
    EXPECT_EQ(PostScriptName(font.Get()), "Foo-Bold");
}

TEST(NameChoice, AnswersEveryKeyFromItsOwnRecord) {
    const auto font =
        FontWithNames({WindowsName(0, "Copyright"), WindowsName(2, "Subfamily"), WindowsName(5, "5.0"),
                       WindowsName(8, "Maker"), WindowsName(9, "Designer"), WindowsName(17, "Style")});
    EXPECT_EQ(Name(font.Get(), GxNameKey::kCopyright), "Copyright");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kSubfamily), "Subfamily");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kVersion), "5.0");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kManufacturer), "Maker");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kDesigner), "Designer");
    EXPECT_EQ(Name(font.Get(), GxNameKey::kPreferredSubfamily), "Style");
}

TEST(NameChoice, IsNullWithoutANameTable) {
    const auto font = FontOf(FontBuilder().Without("name"));
    EXPECT_EQ(PostScriptName(font.Get()), kNull);
    EXPECT_EQ(Str(GxFontCopyFamilyName(font.Get())), kNull);
    EXPECT_FALSE(GxFontCopyNameLanguages(font.Get()));
}

TEST(NameChoice, IsNullWithoutARecord) {
    EXPECT_EQ(Name(FontWithNames({WindowsName(1, "Foo")}).Get(), GxNameKey::kFull), kNull);
}

TEST(NameChoice, GivesTheSameObjectEachTime) {
    const auto font = FontWithNames({WindowsName(1, "Foo")});
    EXPECT_EQ(GxFontCopyFamilyName(font.Get()).Get(), GxFontCopyFamilyName(font.Get()).Get());
}

TEST(NameDecoding, ReadsUnicodePlatformNamesAsUtf16WhateverTheEncoding) {
    for (const uint16_t encoding : std::initializer_list<uint16_t>{0, 3, 4, 77}) {
        EXPECT_EQ(FamilyOf(0, encoding, Utf16(u"\u00C4rger")), "\u00C4rger") << encoding;
    }
}

TEST(NameDecoding, ReadsMacintoshNamesByScript) {
    EXPECT_EQ(FamilyOf(1, 0, {'A', 0x80}), "A\u00C4");
    EXPECT_EQ(FamilyOf(1, 1, {0x93, 0xFA}), "\u65E5");
}

TEST(NameDecoding, ReadsIsoNamesByEncoding) {
    EXPECT_EQ(FamilyOf(2, 0, {'A', 'B'}), "AB");
    EXPECT_EQ(FamilyOf(2, 1, Utf16(u"\u03A9")), "\u03A9");
    EXPECT_EQ(FamilyOf(2, 2, {0xE9}), "\u00E9");
    EXPECT_EQ(FamilyOf(2, 3, {'A', 'B'}), kNull);
}

TEST(NameDecoding, ReadsWindowsUnicodeAndSymbolNamesAsUtf16) {
    for (const uint16_t encoding : std::initializer_list<uint16_t>{0, 1, 10}) {
        EXPECT_EQ(FamilyOf(3, encoding, Utf16(u"\U0001F600x")), "\U0001F600x") << encoding;
    }
}

TEST(NameDecoding, ReadsWindowsCodePages) {
    EXPECT_EQ(FamilyOf(3, 2, {0x93, 0xFA}), "\u65E5");
    EXPECT_EQ(FamilyOf(3, 3, {0xC8, 0xD5}), "\u65E5");
    EXPECT_EQ(FamilyOf(3, 4, {0xA4, 0xE9}), "\u65E5");
    EXPECT_EQ(FamilyOf(3, 5, {0xC0, 0xCF}), "\uC77C");
    EXPECT_EQ(FamilyOf(3, 6, {0xB7, 0xA9}), "\uC77C");
}

TEST(NameDecoding, RefusesBytesThatDoNotFitACodePage) {
    EXPECT_EQ(FamilyOf(3, 2, {0x93}), kNull);
}

TEST(NameDecoding, TakesZerosOut) {
    EXPECT_EQ(FamilyOf(3, 1, Utf16(std::u16string_view(u"Fo\0o\0\0", 6))), "Foo");
    EXPECT_EQ(FamilyOf(1, 0, {'F', 'o', 'o', 0, 0}), "Foo");
}

TEST(NameDecoding, TakesEmptyNamesForAbsent) {
    EXPECT_EQ(FamilyOf(3, 1, {}), kNull);
    EXPECT_EQ(FamilyOf(3, 1, {0, 0}), kNull);
}

TEST(NameDecoding, IgnoresHalfAUnitAtTheEnd) {
    EXPECT_EQ(FamilyOf(3, 1, {0, 'A', 0}), "A");
}

TEST(NameDecoding, KeepsALoneSurrogate) {
    const auto name =
        GxFontCopyFamilyName(FontWithNames({WindowsName(1, std::u16string(u"A\xD800"))}).Get());
    EXPECT_TRUE(name);
    EXPECT_EQ(ValStringGetUTF8(name.Get(), nullptr), nullptr);
    EXPECT_EQ(ValStringGetUTF16Length(name.Get()), 2u);
}

TEST(NameLimits, BelieveANameOf4096Bytes) {
    EXPECT_EQ(Family({WindowsName(1, std::string(4096, 'a'))}).size(), 4096u);
}

TEST(NameLimits, TakeALongerNameForAbsent) {
    EXPECT_EQ(Family({WindowsName(1, std::string(4097, 'a'))}), kNull);
}

TEST(NameLimits, BelieveThe1024thRecord) {
    std::vector<NameRecord> records(1023, WindowsName(300, ""));
    records.push_back(WindowsName(1, "Last"));
    EXPECT_EQ(Family(records), "Last");
}

TEST(NameLimits, DoNotReadThe1025thRecord) {
    std::vector<NameRecord> records(1024, WindowsName(300, ""));
    records.push_back(WindowsName(1, "Beyond"));
    EXPECT_EQ(Family(records), kNull);
}

TEST(NameTable, ReadsWhatTextThereIsOfARecordThatRunsPastTheEnd) {
    Bytes table = NameTable({WindowsName(1, "Foo")});
    table[6 + 8] = 0x01; // the length becomes 256 and more
    EXPECT_EQ(Name(FontOf(FontBuilder().Table("name", table)).Get(), GxNameKey::kFamily), "Foo");
}

TEST(NameTable, ReadsTheRecordsThatThereAre) {
    Bytes table = NameTable({WindowsName(1, "Foo")});
    table[2] = 0xFF; // it claims 65,281 records
    EXPECT_EQ(Name(FontOf(FontBuilder().Table("name", table)).Get(), GxNameKey::kFamily), "Foo");
}

TEST(NameTable, OfAFewBytesHasNoNames) {
    for (size_t size = 0; size < 18; ++size) {
        EXPECT_EQ(PostScriptName(FontOf(FontBuilder().Table("name", Bytes(size, 1))).Get()), kNull) << size;
    }
}

TEST(NameLanguages, AreListedOnceInTheOrderOfTheRecords) {
    const auto font =
        FontWithNames({WindowsName(1, "a", kJapanese), WindowsName(300, "b"), MacintoshName(1, "c"),
                       WindowsName(2, "d", kJapanese), MacintoshName(1, "e", 2)});
    EXPECT_THAT(Languages(font.Get()), ElementsAre("ja", "en", "de"));
}

TEST(NameLanguages, OfUnicodeRecordsIsEmpty) {
    EXPECT_THAT(Languages(FontWithNames({UnicodeName(1, u"a")}).Get()), ElementsAre(""));
}

TEST(NameLanguages, LeaveOutNumbersThatNameNone) {
    EXPECT_THAT(Languages(FontWithNames({WindowsName(1, "a", 0x1234), MacintoshName(1, "b", 120)}).Get()),
                IsEmpty());
}

TEST(NameLanguages, KnowRegionsAndScripts) {
    const auto font =
        FontWithNames({WindowsName(1, "a", 0x804), WindowsName(1, "a", 0x404), WindowsName(1, "a", 0xC04),
                       WindowsName(1, "a", 0x809), MacintoshName(1, "a", 19), MacintoshName(1, "a", 33),
                       WindowsName(1, "a", 0xC0C)});
    EXPECT_THAT(Languages(font.Get()), ElementsAre("zh-Hans", "zh-Hant", "zh-Hant-HK", "en-GB", "fr-CA"));
}

TEST(NameLanguages, ComeCanonicalFromTheTablesOwnTags) {
    const Bytes table =
        NameTable({WindowsName(1, "a", 0x8001), WindowsName(1, "b", 0x8000), {0, 4, 0x8001, 2, Utf16("c")}},
                  {u"ZH_hant", u"gsw-fr"});
    const auto font = FontOf(FontBuilder().Table("name", table));
    EXPECT_THAT(Languages(font.Get()), ElementsAre("gsw-FR", "zh-Hant"));
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "zh-Hant"), "b");
}

TEST(LocalizedNames, AreThoseOfExactlyThatLanguage) {
    const auto font =
        FontWithNames({WindowsName(1, "English"), WindowsName(1, "British", kEnglishGreatBritain),
                       WindowsName(1, "Deutsch", kGerman)});
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "de"), "Deutsch");
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "en-GB"), "British");
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "en"), "English");
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "en-US"), kNull);
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFull, "de"), kNull);
}

TEST(LocalizedNames, OfTheEmptyLanguageAreTheUnicodeRecords) {
    const auto font = FontWithNames({WindowsName(1, "English"), UnicodeName(1, u"Plain")});
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, ""), "Plain");
}

TEST(LocalizedNames, TakeTheFirstRecordThatCanBeDecoded) {
    const auto font =
        FontWithNames({{3, 9, kGerman, 1, Utf16("Unknown")}, MacintoshName(1, "Macintosh", 2)});
    EXPECT_EQ(LocalizedName(font.Get(), GxNameKey::kFamily, "de"), "Macintosh");
}

} // namespace
} // namespace vellum::test
