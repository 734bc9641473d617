// SPDX-License-Identifier: MIT
// Fonts that are not sfnt, or not plainly: Type 1, PCF, BDF, compressed ones, WOFF.
#include "asking.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/packed_fonts.hpp"
#include "support/type1_font.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Bytes BytesOf(const std::string &text) {
    return Bytes(text.begin(), text.end());
}

void ExpectType1Answers(const GxFont *font) {
    EXPECT_EQ(PostScriptName(font), "TestType-Oblique");
    EXPECT_EQ(Str(GxFontCopyFamilyName(font)), "Test Type");
    EXPECT_EQ(Str(GxFontCopyFullName(font)), "Test Type Oblique");
    EXPECT_EQ(Name(font, GxNameKey::kSubfamily), "Oblique");
    EXPECT_EQ(Name(font, GxNameKey::kVersion), "001.002");
    EXPECT_EQ(Name(font, GxNameKey::kCopyright), "Made for a test");
    EXPECT_EQ(Name(font, GxNameKey::kPreferredFamily), kNull);
    EXPECT_EQ(Coverage(font), "41-42");
    EXPECT_EQ(GxFontGetItalicAngle(font), -12);
    EXPECT_TRUE(GxFontIsFixedPitch(font));
    EXPECT_FALSE(GxFontIsBitmapOnly(font));
}

TEST(Type1, InTextAnswersFromItsDictionary) {
    ExpectType1Answers(FontOf(BytesOf(BuildPfa())).Get());
}

TEST(Type1, InBinaryAnswersFromItsDictionary) {
    ExpectType1Answers(FontOf(BuildPfb()).Get());
}

TEST(Type1, InAFileAnswersTheSame) {
    const TempDir folder;
    ExpectType1Answers(FaceOf(FontsAt(folder.Write("a.pfb", BuildPfb()))));
}

TEST(Type1, HasNoTablesAndNoNameTable) {
    const auto font = FontOf(BuildPfb());
    EXPECT_THAT(Tags(font.Get()), IsEmpty());
    EXPECT_FALSE(TableOf(font.Get(), "head").present);
    EXPECT_FALSE(GxFontCopyNameLanguages(font.Get()));
    EXPECT_FALSE(GxFontCopyVariations(font.Get()));
}

TEST(Type1, ReadsNamesThatAreNoUtf8AsLatin1) {
    Type1Font font;
    font.family = "Caf\xE9";
    EXPECT_EQ(Str(GxFontCopyFamilyName(FontOf(BuildPfb(font)).Get())), "Caf\u00E9");
}

TEST(Type1, DerivesAFullNameWhenItStatesNone) {
    Type1Font font;
    font.full_name = "";
    EXPECT_EQ(Str(GxFontCopyFullName(FontOf(BuildPfb(font)).Get())), "Test Type");
}

TEST(Type1, WithoutTheWordsThatBeginAFontIsNone) {
    Type1Font font;
    font.header = "%!PS-Adobe-3.0";
    EXPECT_FALSE(FontOf(BytesOf(BuildPfa(font))));
}

TEST(Type1, CutAtAnyLengthIsHarmless) {
    const Bytes whole = BuildPfb();
    for (size_t size = 0; size < whole.size(); size += 61) {
        const auto font = FontOf(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        if (font) AskEverything(font.Get());
    }
}

void ExpectBitmapAnswers(const GxFont *font) {
    EXPECT_EQ(PostScriptName(font), kNull);
    EXPECT_EQ(Str(GxFontCopyFamilyName(font)), "Test Bits");
    EXPECT_EQ(Name(font, GxNameKey::kFamily), "Test Bits");
    EXPECT_EQ(Coverage(font), "41-43");
    EXPECT_TRUE(GxFontIsFixedPitch(font));
    EXPECT_TRUE(GxFontIsBitmapOnly(font));
    EXPECT_THAT(Tags(font), IsEmpty());
}

TEST(BitmapFont, OfPcfAnswersFromItsProperties) {
    ExpectBitmapAnswers(FontOf(BuildPcf({})).Get());
}

TEST(BitmapFont, OfBdfAnswersFromItsProperties) {
    ExpectBitmapAnswers(FontOf(BytesOf(BuildBdf({}))).Get());
}

TEST(BitmapFont, MayBeCompressed) {
    const TempDir folder;
    ExpectBitmapAnswers(FontOf(Gzip(BuildPcf({}))).Get());
    ExpectBitmapAnswers(FaceOf(FontsAt(folder.Write("a.pcf.gz", Gzip(BuildPcf({}))))));
    ExpectBitmapAnswers(FontOf(Gzip(BytesOf(BuildBdf({})))).Get());
}

TEST(BitmapFont, HasAFullNameOfFamilyAndStyle) {
    BitmapFont font;
    EXPECT_EQ(Str(GxFontCopyFullName(FontOf(BuildPcf(font)).Get())), "Test Bits");
    font.weight = "Bold";
    font.slant = "I";
    const auto face = FontOf(BuildPcf(font));
    EXPECT_EQ(Name(face.Get(), GxNameKey::kSubfamily), "Bold Italic");
    EXPECT_EQ(Str(GxFontCopyFullName(face.Get())), "Test Bits Bold Italic");
}

TEST(BitmapFont, CountsItsItalicAngleFromTheVertical) {
    BitmapFont font;
    font.numbers = {{"ITALIC_ANGLE", 80 * 64}};
    EXPECT_EQ(GxFontGetItalicAngle(FontOf(BuildPcf(font)).Get()), -10);
    EXPECT_EQ(GxFontGetItalicAngle(FontOf(BuildPcf({})).Get()), 0);
}

TEST(BitmapFont, WithoutAFamilyHasNoFamilyName) {
    BitmapFont font;
    font.family = "";
    const auto face = FontOf(BuildPcf(font));
    EXPECT_TRUE(face);
    EXPECT_EQ(Str(GxFontCopyFamilyName(face.Get())), kNull);
    EXPECT_EQ(Str(GxFontCopyFullName(face.Get())), kNull);
}

TEST(BitmapFont, OfAnotherCharacterSetCoversNothing) {
    BitmapFont font;
    font.registry = "KOI8";
    font.encoding = "R";
    EXPECT_EQ(Coverage(FontOf(BuildPcf(font)).Get()), "");
}

TEST(BitmapFont, CutAtAnyLengthIsHarmless) {
    const Bytes whole = BuildPcf({});
    for (size_t size = 0; size < whole.size(); size += 7) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        for (const Bytes &bytes : {cut, Gzip(cut)}) {
            const auto font = FontOf(bytes);
            if (font) AskEverything(font.Get());
        }
    }
}

TEST(CompressedFile, OfAnythingButABitmapFontIsRefused) {
    EXPECT_FALSE(FontOf(Gzip(FontBuilder().Build())));
    EXPECT_FALSE(FontOf(Gzip(BuildPfb())));
    EXPECT_FALSE(FontOf(Gzip(Gzip(BuildPcf({})))));
    EXPECT_FALSE(FontOf(Gzip(BytesOf("plain text"))));
    EXPECT_FALSE(FontOf(Bytes{0x1F, 0x8B}));
    EXPECT_FALSE(FontOf(Bytes{0x1F, 0x9D, 0x90, 1, 2, 3}));
    EXPECT_FALSE(FontOf(BytesOf("BZh91AY&SY")));
}

TEST(CompressedFile, MayGrowTo32MiB) {
    const Bytes pcf = BuildPcf({});
    EXPECT_TRUE(FontOf(GzipOfZeros(pcf, (32u << 20) - 100000)));
    EXPECT_FALSE(FontOf(GzipOfZeros(pcf, 32u << 20)));
}

TEST(CompressedFile, IsNotUnpackedBeyondThat) {
    EXPECT_FALSE(FontOf(GzipOfZeros(BuildPcf({}), 1u << 28)));
}

TEST(Woff, AnswersAsTheFontInside) {
    const auto font = FontOf(BuildWoff(FontBuilder().Table("test", {1, 2, 3}).Build()));
    EXPECT_EQ(PostScriptName(font.Get()), "Test-Regular");
    EXPECT_EQ(Coverage(font.Get()), "41-5A");
    EXPECT_THAT(TableOf(font.Get(), "test").bytes, ElementsAre(1, 2, 3));
    EXPECT_FALSE(GxFontIsBitmapOnly(font.Get()));
}

TEST(Woff, HasInstances) {
    const TempDir folder;
    EXPECT_THAT(PostScriptNames(FontsAt(folder.Write("a.woff", BuildWoff(VariableFont().Build())))),
                ElementsAre("Test-Regular", "Test-BoldStated", "Test-VeryNarrow"));
}

TEST(Woff, ThatChangedIsReadNoMore) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write("a.woff", BuildWoff(FontBuilder().Build())));
    folder.Write("a.woff", BuildWoff(VariableFont().Build()));
    EXPECT_EQ(PostScriptName(FaceOf(fonts)), kNull);
}

TEST(Woff, IsUnpackedAgainAfterAnotherOne) {
    const auto one = FontOf(BuildWoff(FontBuilder().Names(PlainNames("A", "Regular", "One")).Build()));
    const auto two = FontOf(BuildWoff(FontBuilder().Names(PlainNames("A", "Regular", "Two")).Build()));
    EXPECT_EQ(PostScriptName(one.Get()), "One");
    EXPECT_EQ(PostScriptName(two.Get()), "Two");
    FacetFontPurgeCaches(nullptr);
    EXPECT_EQ(Coverage(one.Get()), "41-5A");
}

Bytes WoffWithWord(size_t at, uint32_t value) {
    Bytes woff = BuildWoff(FontBuilder().Build());
    for (size_t i = 0; i < 4; ++i) woff.at(at + i) = static_cast<uint8_t>(value >> (24 - 8 * i));
    return woff;
}

TEST(Woff, ThatPromisesTooMuchIsRefused) {
    EXPECT_FALSE(FontOf(WoffWithWord(16, 0xFFFFFFFF)));      // the whole font
    EXPECT_FALSE(FontOf(WoffWithWord(44 + 12, 0xFFFFFFFF))); // its first table
    EXPECT_FALSE(FontOf(WoffWithWord(12, 0xFFFF0000)));      // the number of tables
}

TEST(Woff, OfABrokenFontIsRefusedWithoutATrace) {
    const TempDir folder;
    const Bytes woff = BuildWoff(FontBuilder().Table("cmap", {1}).Table("head", {1, 2, 3}).Build());
    EXPECT_FALSE(FontOf(woff));
    EXPECT_FALSE(FontsAt(folder.Write("a.woff", woff)));
}

TEST(Woff, CutAtAnyLengthIsHarmless) {
    const Bytes whole = BuildWoff(FontBuilder().Build());
    for (size_t size = 0; size < whole.size(); size += 17) {
        const auto font = FontOf(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        if (font) AskEverything(font.Get());
    }
}

// A strike of no glyphs.
Bytes StrikeLocations() {
    ByteWriter table;
    return table.U32(0x00020000)
        .U32(1)
        .U32(56)
        .U32(0)
        .U32(0)
        .U32(0)
        .Zeros(24)
        .U16(0)
        .U16(0)
        .U8(8)
        .U8(8)
        .U8(1)
        .U8(1);
}

FontBuilder WithStrikes() {
    return FontBuilder().Table("EBLC", StrikeLocations()).Table("EBDT", Bytes{0, 2, 0, 0});
}

TEST(BitmapOnly, IsAFaceWithStrikesAndWithoutOutlines) {
    EXPECT_TRUE(GxFontIsBitmapOnly(FontOf(WithStrikes().Without("glyf").Without("loca")).Get()));
}

TEST(BitmapOnly, IsNoFaceWithOutlines) {
    EXPECT_FALSE(GxFontIsBitmapOnly(FontOf(WithStrikes()).Get()));
}

TEST(BitmapOnly, IsNoFaceWithNeither) {
    EXPECT_FALSE(GxFontIsBitmapOnly(FontOf(FontBuilder().Without("glyf").Without("loca")).Get()));
}

TEST(BitmapOnly, IsAskedOfTheRightFaceOfACollection) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write(
        "a.ttc", BuildCollection({FontBuilder(), WithStrikes().Without("glyf").Without("loca")})));
    EXPECT_FALSE(GxFontIsBitmapOnly(FaceOf(fonts, 0)));
    EXPECT_TRUE(GxFontIsBitmapOnly(FaceOf(fonts, 1)));
}

} // namespace
} // namespace vellum::test
