// SPDX-License-Identifier: MIT
// What a face is for: languages, scripts, blocks of Unicode.
#include "describe/entities.hpp"
#include "describe/locale_manager.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

std::vector<std::string> LanguagesOf(const TClientFontEntity &entity) {
    return All(entity.CopySupportedLanguages());
}

// The languages that are written with nothing but these characters.
std::vector<std::string> LanguagesWithin(const ValCharacterSet *characters) {
    TLocaleManager manager;
    std::vector<std::string> languages;
    for (const void *language : Elements(manager.GetSupportedLanguages())) {
        const auto exemplars = manager.CopyExamplarSetForLanguage(Cast<ValString>(language));
        if (exemplars && ValCharacterSetIsSuperset(characters, exemplars.Get()))
            languages.push_back(TextOf(language));
    }
    return languages;
}

// A face with one character, which no language is written with, and an OS/2 table.
FontBuilder Declaring(const Bytes &os2) {
    return FontBuilder().Characters({{0x2603, 0x2603}}).Table("OS/2", os2);
}

Bytes CutTo(Bytes bytes, size_t length) {
    bytes.resize(length);
    return bytes;
}

// ---- supported languages ------------------------------------------------------------------------------

TEST(EntityLanguages, OfAFaceWithAsciiLettersAreThoseWrittenInThem) {
    const auto font = FontBuilder().Characters({{'A', 'Z'}, {'a', 'z'}}).Without("OS/2");
    const auto entity = EntityOf(font);
    const auto expected = LanguagesWithin(entity.CopyCharacterSet().Get());
    ASSERT_THAT(expected, Contains("en"));
    EXPECT_EQ(LanguagesOf(entity), expected);
    EXPECT_THAT(expected, Not(Contains("de")));
}

TEST(EntityLanguages, AreFromTheCharactersThenFromOs2) {
    Os2Fields os2;
    os2.unicode_ranges[0] = 1u << 11 | 1u << 7; // Hebrew, Greek
    os2.code_page_ranges[0] = 1u << 4;          // Turkish
    const auto letters = FontBuilder().Characters({{'A', 'Z'}, {'a', 'z'}});
    auto expected = LanguagesOf(EntityOf(FontBuilder(letters).Without("OS/2")));
    for (const char *language : {"tr", "el", "he"}) {
        ASSERT_THAT(expected, Not(Contains(language)));
        expected.push_back(language);
    }
    EXPECT_EQ(LanguagesOf(EntityOf(FontBuilder(letters).Table("OS/2", Os2Table(os2)))), expected);
}

TEST(EntityLanguages, StandOnceWhateverSaysSo) {
    Os2Fields japanese;
    japanese.unicode_ranges[1] = 1u << (49 - 32) | 1u << (50 - 32);
    EXPECT_THAT(LanguagesOf(EntityOf(Declaring(Os2Table(japanese)))), ElementsAre("ja"));
    japanese.code_page_ranges[0] = 1u << 17;
    EXPECT_THAT(LanguagesOf(EntityOf(Declaring(Os2Table(japanese)))), ElementsAre("ja"));

    Os2Fields greek;
    greek.unicode_ranges[0] = 1u << 7;
    const auto covering = FontBuilder().Characters({{0x370, 0x3FF}}).Table("OS/2", Os2Table(greek));
    EXPECT_EQ(std::ranges::count(LanguagesOf(EntityOf(covering)), "el"), 1);
}

TEST(EntityLanguages, OfAFaceThatSaysNothingAreNone) {
    EXPECT_FALSE(EntityOf(Declaring(Os2Table())).CopySupportedLanguages());
    EXPECT_FALSE(EntityOf(Declaring({}).Without("OS/2")).CopySupportedLanguages());
}

TEST(EntityLanguages, OfTheMetadataAreAllThereIs) {
    const auto languages = Strings({"tlh", "de", "de", "af"});
    const auto entity =
        EntityOf(FontBuilder().Characters({{' ', 0x2FF}}), {{"Repertoire_SupportedLanguages", languages}});
    EXPECT_EQ(entity.CopySupportedLanguages().Get(), languages.Get());
    const auto none = EntityOf(FontBuilder().Characters({{' ', 0x2FF}}),
                               {{"Repertoire_SupportedLanguages", Strings({})}});
    EXPECT_EQ(ValArrayGetCount(none.CopySupportedLanguages().Get()), 0u);
    EXPECT_TRUE(none.CopySupportedLanguages());
}

// ---- OS/2 of every length -----------------------------------------------------------------------------

struct LengthRow {
    uint16_t version;
    size_t length;
    std::vector<std::string> languages;
};

TEST(EntityLanguages, OfOs2FollowItsVersionAndItsLength) {
    Os2Fields os2;
    os2.unicode_ranges[0] = 1u << 11;   // Hebrew
    os2.code_page_ranges[0] = 1u << 3;  // Greek
    os2.code_page_ranges[1] = 1u << 22; // Icelandic, bit 54
    const std::vector<std::string> nothing = {"(null)"}, ranges = {"he"}, both = {"el", "is", "he"};
    const LengthRow rows[] = {{4, 0, nothing}, {4, 77, nothing}, {0, 77, nothing}, {4, 78, ranges},
                              {1, 82, ranges}, {4, 85, ranges},  {4, 86, both},    {1, 86, both},
                              {5, 96, both},   {0, 78, ranges},  {0, 86, ranges},  {0, 96, ranges}};
    for (const LengthRow &row : rows) {
        Bytes table = CutTo(Os2Table(os2), row.length);
        if (row.length >= 2) table[1] = static_cast<uint8_t>(row.version);
        EXPECT_EQ(LanguagesOf(EntityOf(Declaring(table))), row.languages)
            << row.version << ' ' << row.length;
    }
}

// ---- traits from the tables ---------------------------------------------------------------------------

// A face whose names say nothing of weight.
float WeightOf(const Bytes &os2, const MetadataEntries &metadata = {}) {
    const auto entity =
        EntityOf(FontBuilder().Names({WindowsName(1, "Plain"), WindowsName(6, "Plain")}).Table("OS/2", os2),
                 metadata);
    return static_cast<float>(
        ReadFloat64(ValDictionaryGetValue(entity.CopyTraits().Get(), kVLFontTraitWeight)));
}

TEST(EntityTraits, FollowTheWeightClassThenThePanoseDigit) {
    EXPECT_EQ(WeightOf(Os2Table({.weight_class = 5})), 0.23F);
    EXPECT_EQ(WeightOf(Os2Table({.weight_class = 0, .panose = {0, 0, 4}})), 0.0F);
    EXPECT_EQ(WeightOf(Os2Table({.weight_class = 0, .panose = {0, 0, 9}})), 0.56F);
    for (const size_t length : {size_t{78}, size_t{85}, size_t{86}})
        EXPECT_EQ(WeightOf(CutTo(Os2Table({.weight_class = 700}), length)), 0.4F) << length;
    EXPECT_EQ(WeightOf(CutTo(Os2Table({.weight_class = 700}), 77)), 0.0F);
    EXPECT_EQ(WeightOf(Os2Table({.version = 0, .weight_class = 700})), 0.4F);
}

TEST(EntityTraits, FollowTheMetadataBeforeAllElse) {
    const auto os2 = Os2Table({.weight_class = 700});
    EXPECT_EQ(WeightOf(os2, {{"Weight_VisualDescriptor", String("thin")}}), -0.8F);
    EXPECT_EQ(WeightOf(os2, {{"Weight_VisualDescriptor", String("fat")}}), 0.4F);
    EXPECT_EQ(WeightOf(os2), 0.4F);
}

TEST(EntityTraits, AreADictionaryOfFour) {
    EXPECT_THAT(KeysOf(EntityOf(FontBuilder()).CopyTraits()),
                ::testing::UnorderedElementsAre("KSLDFontSymbolicTrait", "KSLDFontWeightTrait",
                                                "KSLDFontProportionTrait", "KSLDFontSlantTrait"));
}

// ---- what only the metadata says ----------------------------------------------------------------------

TEST(EntityLanguages, ThatAFaceWasDesignedForAreTheMetadatas) {
    const auto languages = Strings({"ja", "ja", "en"});
    EXPECT_EQ(EntityOf(FontBuilder(), {{"Repertoire_PrimaryScriptLanguages", languages}})
                  .CopyDesignLanguages()
                  .Get(),
              languages.Get());
    EXPECT_FALSE(EntityOf(FontBuilder()).CopyDesignLanguages());
    EXPECT_FALSE(EntityOf(FontBuilder(), {{"Repertoire_PrimaryScriptLanguages", MakeNumber(int32_t{1})}})
                     .CopyDesignLanguages());
}

TEST(EntityLanguages, OfTheFaceItselfIsTheMetadatasCanonical) {
    const auto locale = [](const Ref<const void> &value) {
        return TextOf(EntityOf(FontBuilder(), {{"Repertoire_PrimaryLanguage", value}}).CopyLocale());
    };
    EXPECT_EQ(locale(String("ja")), "ja");
    EXPECT_EQ(locale(String("zh_TW")), "zh-Hant");
    EXPECT_EQ(locale(MakeNumber(int32_t{11})), "(null)");
    EXPECT_FALSE(EntityOf(FontBuilder()).CopyLocale());
}

TEST(EntityScripts, AreLeftUnanalyzedOnlyOnTheWordTrue) {
    const auto ignores = [](const Ref<const void> &value) {
        return EntityOf(FontBuilder(), {{"info_IgnoreScriptAnalysis", value}}).CopyIgnoreScriptAnalysis();
    };
    EXPECT_EQ(ignores(String("TRUE")).Get(), kValBooleanTrue);
    for (const auto &untrue :
         {Ref<const void>(String("true")), Ref<const void>(String("FALSE")),
          Ref<const void>(Retain(kValBooleanTrue)), Ref<const void>(MakeNumber(int32_t{1}))})
        EXPECT_FALSE(ignores(untrue)) << TextOf(untrue);
    EXPECT_FALSE(EntityOf(FontBuilder()).CopyIgnoreScriptAnalysis());
}

// ---- string encodings ---------------------------------------------------------------------------------

using CmapRecords = std::vector<std::pair<uint16_t, uint16_t>>; // platform, encoding

// All records share one subtable.
Bytes Cmap(const CmapRecords &records) {
    ByteWriter table;
    const auto count = static_cast<uint32_t>(records.size());
    table.U16(0).U16(count);
    for (const auto &[platform, encoding] : records) table.U16(platform).U16(encoding).U32(4 + 8 * count);
    return table.Append(CmapFormat4({{'A', 'Z', 1}}));
}

uint32_t EncodingOf(const FontBuilder &font, const MetadataEntries &metadata = {}) {
    const auto encoding = EntityOf(font, metadata).CopyStringEncoding();
    EXPECT_EQ(ValNumberGetNumberType(encoding.Get()), ValNumberType{kValNumberTypeSInt32});
    return static_cast<uint32_t>(ReadSInt32(encoding.Get()));
}

uint32_t EncodingOf(const CmapRecords &records, const MetadataEntries &metadata = {}) {
    return EncodingOf(FontBuilder().Table("cmap", Cmap(records)), metadata);
}

TEST(EntityStringEncoding, IsTheCmaps) {
    EXPECT_EQ(EncodingOf({{1, 0}, {1, 1}}), 1u);
    EXPECT_EQ(EncodingOf({{1, 0}}), 0u);
    EXPECT_EQ(EncodingOf({{0, 3}, {3, 1}}), 0x100u);
    EXPECT_EQ(EncodingOf({{0, 3}, {1, 0}, {1, 25}, {3, 1}, {3, 10}}), 25u);
}

TEST(EntityStringEncoding, IsFoundBehindAnyNumberOfRecords) {
    CmapRecords records(5000, {3, 1});
    records.emplace_back(1, 3);
    EXPECT_EQ(EncodingOf(records), 3u);
    records.resize(65534, {3, 1});
    records.emplace_back(1, 2);
    EXPECT_EQ(EncodingOf(records), 2u);
}

TEST(EntityStringEncoding, IsUnicodeWithoutACmap) {
    EXPECT_EQ(EncodingOf(FontBuilder().Without("cmap")), 0x100u);
}

TEST(EntityStringEncoding, IsThatOfTheMetadatasScriptIfItIsKnown) {
    const CmapRecords korean = {{1, 3}};
    const auto with = [&](const Ref<const void> &script) {
        return EncodingOf(korean, {{"Repertoire_PrimaryScript", script}});
    };
    EXPECT_EQ(with(String("Japanese")), 1u);
    EXPECT_EQ(with(String("Latin")), 0u);
    EXPECT_EQ(with(String("Sindhi")), 4u);
    EXPECT_EQ(with(String("japanese")), 3u);
    EXPECT_EQ(with(String("")), 3u);
    EXPECT_EQ(with(MakeNumber(int32_t{1})), 3u);
    EXPECT_EQ(EncodingOf(FontBuilder().Without("cmap"), {{"Repertoire_PrimaryScript", String("Thai")}}),
              21u);
}

// ---- Unicode ranges -----------------------------------------------------------------------------------

std::array<uint32_t, 4> RangesOf(const FontBuilder &font) {
    const auto ranges = EntityOf(font).CopyUnicodeRanges();
    std::array<uint32_t, 4> words = {};
    EXPECT_EQ(ValArrayGetCount(ranges.Get()), 4u);
    for (size_t i = 0; i < 4; ++i)
        words[i] = static_cast<uint32_t>(ReadSInt32(ValArrayGetValue(ranges.Get(), i)));
    return words;
}

TEST(EntityUnicodeRanges, AreFourWordsTheLowestFirst) {
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{'A', 'A'}})), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{0x3042, 0x3042}})), ElementsAre(0, 1u << 17, 0, 0));
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{0xA000, 0xA000}})), ElementsAre(0, 0, 1u << 19, 0));
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{0x1A00, 0x1A00}})), ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{0x1F030, 0x1F030}})),
                ElementsAre(0, 1u << (57 - 32), 0, 1u << (122 - 96)));
    EXPECT_THAT(RangesOf(FontBuilder().Characters({{0x2014, 0x2014}})), ElementsAre(1u << 31, 0, 0, 0));
}

TEST(EntityUnicodeRanges, AreSignedNumbersOfTheSameBits) {
    const auto ranges = EntityOf(FontBuilder().Characters({{0x2014, 0x2014}})).CopyUnicodeRanges();
    const auto *first = Cast<ValNumber>(ValArrayGetValue(ranges.Get(), 0));
    EXPECT_EQ(ValNumberGetNumberType(first), ValNumberType{kValNumberTypeSInt32});
    EXPECT_EQ(ValNumberGetSInt64(first), INT32_MIN);
}

TEST(EntityUnicodeRanges, AreThoseOfTheCharactersAndNotWhatOs2Says) {
    Os2Fields os2;
    os2.unicode_ranges[0] = 0xFFFFFFFF;
    EXPECT_THAT(RangesOf(FontBuilder().Table("OS/2", Os2Table(os2))), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(RangesOf(FontBuilder().Without("cmap")), ElementsAre(0, 0, 0, 0));
}

Ref<const ValArray> Numbers(std::initializer_list<int32_t> numbers) {
    TValMutableArray array;
    for (const int32_t number : numbers) array.Append(MakeNumber(number).Get());
    return array.Publish();
}

TEST(EntityUnicodeRanges, OfTheMetadataGoBefore) {
    const auto words = Numbers({8, 0, 0, -1});
    const auto entity = EntityOf(FontBuilder(), {{"UnicodeRanges", words}});
    EXPECT_EQ(entity.CopyUnicodeRanges().Get(), words.Get());
}

TEST(EntityUnicodeRanges, OfTheMetadataAreFourNumbersOrNone) {
    for (const auto &words :
         {Strings({"1", "0", "0", "0"}), Numbers({8, 0, 0}), Numbers({8, 0, 0, 0, 0})}) {
        const auto ranges = EntityOf(FontBuilder(), {{"UnicodeRanges", words}}).CopyUnicodeRanges();
        EXPECT_EQ(ReadSInt32(ValArrayGetValue(ranges.Get(), 0)), 1) << TextOf(words);
    }
}

TEST(EntityLanguages, OfTheMetadataAreStringsOrNone) {
    const auto entity = EntityOf(FontBuilder(), {{"Repertoire_SupportedLanguages", Numbers({1})},
                                                 {"Repertoire_PrimaryScriptLanguages", Numbers({1})}});
    const auto computed = EntityOf(FontBuilder(), {}).CopySupportedLanguages();
    EXPECT_TRUE(ValEqual(entity.CopySupportedLanguages().Get(), computed.Get()));
    EXPECT_FALSE(entity.CopyDesignLanguages());
}

} // namespace
} // namespace vellum::test
