// SPDX-License-Identifier: MIT
// What makes a face of an sfnt font, and what its table directory says.
#include "asking.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Where in a font's bytes the directory entry of a table stands.
size_t EntryAt(size_t index) {
    return 12 + 16 * index;
}

void PutWord(Bytes &bytes, size_t at, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) bytes.at(at + i) = static_cast<uint8_t>(value >> (24 - 8 * i));
}

FontBuilder SmallFont() {
    FontBuilder font;
    for (const char *tag : {"OS/2", "post", "hhea", "hmtx", "loca", "glyf", "cmap"}) font.Without(tag);
    return font; // head, name, maxp
}

TEST(SfntFace, NeedsHeadGlyphsAndNothingElse) {
    EXPECT_TRUE(FontOf(SmallFont()));
    EXPECT_FALSE(FontOf(SmallFont().Without("head")));
    EXPECT_FALSE(FontOf(SmallFont().Without("maxp")));
}

TEST(SfntFace, MayHaveABitmapHeadInsteadOfAHead) {
    EXPECT_TRUE(FontOf(SmallFont().Without("head").Table("bhed", HeadTable())));
}

TEST(SfntFace, NeedsAtLeastOneGlyph) {
    EXPECT_TRUE(FontOf(SmallFont().Table("maxp", MaxpTable(1))));
    EXPECT_FALSE(FontOf(SmallFont().Table("maxp", MaxpTable(0))));
}

TEST(SfntFace, NeedsAKnownVersionOfMaxp) {
    Bytes maxp = MaxpTable(5);
    maxp[1] = 9;
    EXPECT_FALSE(FontOf(SmallFont().Table("maxp", maxp)));
}

TEST(SfntFace, NeedsAWholeHead) {
    Bytes head = HeadTable();
    EXPECT_EQ(head.size(), 54u);
    head.pop_back();
    EXPECT_FALSE(FontOf(SmallFont().Table("head", head)));
}

TEST(SfntFace, NeedsItsHeadInsideTheFile) {
    Bytes font = SmallFont().Build();
    PutWord(font, EntryAt(0) + 8, static_cast<uint32_t>(font.size()));
    EXPECT_FALSE(FontOf(font));
}

TEST(SfntFace, ComesFromEveryMagicOfSfnt) {
    for (const uint32_t magic : {0x00010000u, 0x4F54544Fu, 0x74727565u, 0x00020000u}) {
        EXPECT_TRUE(FontOf(FontBuilder().Flavor(magic))) << magic;
    }
    EXPECT_FALSE(FontOf(FontBuilder().Flavor(0x12345678)));
}

TEST(SfntFace, LivesWithATableOutsideOfTheFile) {
    Bytes font = SmallFont().Build(); // the second table is name
    PutWord(font, EntryAt(1) + 8, 0x7FFFFFFF);
    const auto face = FontOf(font);
    EXPECT_TRUE(face);
    EXPECT_THAT(Tags(face.Get()), ElementsAre("head", "maxp"));
    EXPECT_FALSE(TableOf(face.Get(), "name").present);
}

TEST(SfntTables, AreListedInTheOrderOfTheDirectory) {
    EXPECT_THAT(Tags(FontOf(SmallFont().Table("zzzz", {1}).Table("AAAA", {2})).Get()),
                ElementsAre("head", "name", "maxp", "zzzz", "AAAA"));
}

TEST(SfntTables, AreListedAlsoWhenEmpty) {
    const auto font = FontOf(SmallFont().Table("none", {}));
    EXPECT_THAT(Tags(font.Get()), ElementsAre("head", "name", "maxp", "none"));
    EXPECT_TRUE(TableOf(font.Get(), "none").present);
    EXPECT_THAT(TableOf(font.Get(), "none").bytes, IsEmpty());
}

TEST(SfntTables, CountOnceAndTheFirstEntryWins) {
    const auto font = FontOf(SmallFont().AlsoTable("twin", {1}).AlsoTable("twin", {2}));
    EXPECT_THAT(Tags(font.Get()), ElementsAre("head", "name", "maxp", "twin"));
    EXPECT_THAT(TableOf(font.Get(), "twin").bytes, ElementsAre(1));
}

TEST(SfntTables, AnswerTheirBytes) {
    EXPECT_THAT(TableOf(FontOf(SmallFont().Table("test", {1, 2, 3})).Get(), "test").bytes,
                ElementsAre(1, 2, 3));
}

TEST(SfntTables, AreAbsentWhenTheDirectoryDoesNotListThem) {
    EXPECT_FALSE(TableOf(FontOf(SmallFont()).Get(), "test").present);
}

TEST(SfntTables, AreCutWhereTheFileEnds) {
    Bytes font = SmallFont().Table("last", {1, 2, 3, 4}).Build();
    PutWord(font, EntryAt(3) + 12, 0xFFFFFFFF);
    EXPECT_THAT(TableOf(FontOf(font).Get(), "last").bytes, ElementsAre(1, 2, 3, 4));
}

TEST(SfntTables, ComeSeveralAtOnce) {
    const auto font = FontOf(SmallFont().Table("aaaa", {1}).Table("bbbb", {2}));
    const GxTag tags[] = {MakeTag("bbbb"), MakeTag("none"), MakeTag("aaaa")};
    Ref<const ValData> tables[3];
    GxFontCopyTables(font.Get(), tags, tables);
    EXPECT_EQ(ValDataGetBytes(tables[0].Get())[0], 2);
    EXPECT_FALSE(tables[1]);
    EXPECT_EQ(ValDataGetBytes(tables[2].Get())[0], 1);
}

TEST(SfntTables, StayWhereTheyAreForTheLifeOfTheFont) {
    const auto font = FontOf(SmallFont());
    const auto tags = GxFontGetTableTags(font.Get());
    AskEverything(font.Get());
    EXPECT_EQ(GxFontGetTableTags(font.Get()).data(), tags.data());
}

TEST(SfntLimits, BelieveThe512thTable) {
    FontBuilder font = SmallFont();
    for (int i = 3; i < 511; ++i) font.AlsoTable("same", {});
    EXPECT_THAT(TableOf(FontOf(font.AlsoTable("last", {7})).Get(), "last").bytes, ElementsAre(7));
}

TEST(SfntLimits, DoNotReadThe513thTable) {
    FontBuilder font = SmallFont();
    for (int i = 3; i < 512; ++i) font.AlsoTable("same", {});
    EXPECT_FALSE(TableOf(FontOf(font.AlsoTable("last", {7})).Get(), "last").present);
}

TEST(Collection, HasTheFacesInTheirOrder) {
    const TempDir folder;
    const auto fonts = FontsAt(
        folder.Write("a.ttc", BuildCollection({FontBuilder().Names(PlainNames("One", "Regular", "One")),
                                               FontBuilder().Names(PlainNames("Two", "Regular", "Two"))})));
    EXPECT_THAT(PostScriptNames(fonts), ElementsAre("One", "Two"));
}

TEST(Collection, LeavesOutFacesThatAreNone) {
    const TempDir folder;
    const auto fonts = FontsAt(
        folder.Write("a.ttc", BuildCollection({FontBuilder().Without("head"),
                                               FontBuilder().Names(PlainNames("Two", "Regular", "Two"))})));
    EXPECT_THAT(PostScriptNames(fonts), ElementsAre("Two"));
}

TEST(Collection, WithoutAnyFaceIsNoFont) {
    EXPECT_FALSE(FontOf(BuildCollection({})));
    EXPECT_FALSE(FontOf(BuildCollection({FontBuilder().Without("head")})));
}

TEST(Collection, SharesANameTableThatItsFacesPointAt) {
    const TempDir folder;
    const Bytes one = FontBuilder().Build(16);
    ByteWriter file;
    file.Text("ttcf").U32(0x10000).U32(1).U32(16).Append(one);
    Bytes bytes = file;
    PutWord(bytes, 8, 2); // two faces, both of the one font
    bytes.insert(bytes.begin() + 16, {0, 0, 0, 20});
    PutWord(bytes, 12, 20);
    for (size_t at = 20 + 12; at < 20 + 12 + 16 * 10; at += 16) {
        bytes[at + 11] = static_cast<uint8_t>(bytes[at + 11] + 4); // offsets are multiples of 4
    }
    const auto fonts = FontsAt(folder.Write("a.ttc", bytes));
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 2u);
    const auto first = GxFontCopyPostScriptName(FaceOf(fonts, 0));
    EXPECT_TRUE(first);
    EXPECT_EQ(first.Get(), GxFontCopyPostScriptName(FaceOf(fonts, 1)).Get());
}

Bytes CollectionOf(uint32_t faces) {
    ByteWriter file;
    const uint32_t offset = 12 + 4 * faces;
    file.Text("ttcf").U32(0x10000).U32(faces);
    for (uint32_t i = 0; i < faces; ++i) file.U32(offset);
    return file.Append(SmallFont().Build(offset));
}

TEST(SfntLimits, BelieveACollectionOf1024Faces) {
    const TempDir folder;
    EXPECT_EQ(ValArrayGetCount(FontsAt(folder.Write("a.ttc", CollectionOf(1024))).Get()), 1024u);
}

TEST(SfntLimits, RefuseACollectionThatClaimsMore) {
    const TempDir folder;
    EXPECT_FALSE(FontsAt(folder.Write("a.ttc", CollectionOf(1025))));
}

TEST(PostTable, GivesTheItalicAngleAndThePitch) {
    const auto font =
        FontOf(FontBuilder().Table("post", PostTable({.italic_angle = -12.5, .fixed_pitch = true})));
    EXPECT_EQ(GxFontGetItalicAngle(font.Get()), -12.5);
    EXPECT_TRUE(GxFontIsFixedPitch(font.Get()));
}

TEST(PostTable, LeavesAFaceWithoutItUprightAndProportional) {
    const auto font = FontOf(FontBuilder().Without("post"));
    EXPECT_EQ(GxFontGetItalicAngle(font.Get()), 0);
    EXPECT_FALSE(GxFontIsFixedPitch(font.Get()));
}

TEST(NoFont, AnswersEmptyToEverything) {
    EXPECT_EQ(AskEverything(nullptr), AskEverything(nullptr));
    EXPECT_FALSE(GxFontCopyURL(nullptr));
    EXPECT_FALSE(GxFontCopyPostScriptName(nullptr));
    EXPECT_TRUE(GxFontGetTableTags(nullptr).empty());
    EXPECT_TRUE(GxFontCopyCharacterSet(nullptr));
    EXPECT_FALSE(GxFontCopyVariations(nullptr));
    EXPECT_FALSE(GxFontIsBitmapOnly(nullptr));
}

TEST(BrokenFont, CutAtAnyLengthIsReadAsFarAsItGoes) {
    const Bytes whole = BuildCollection({VariableFont(), FontBuilder()});
    for (size_t size = 0; size < whole.size(); size += 13) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const auto font = FontOf(cut);
        if (font) AskEverything(font.Get());
    }
}

TEST(BrokenFont, WithAnyByteChangedIsStillBounded) {
    const Bytes whole = VariableFont().Build();
    for (size_t at = 0; at < whole.size(); ++at) {
        Bytes changed = whole;
        changed[at] = static_cast<uint8_t>(~changed[at]);
        const auto font = FontOf(changed);
        if (font) AskEverything(font.Get());
    }
}

} // namespace
} // namespace vellum::test
