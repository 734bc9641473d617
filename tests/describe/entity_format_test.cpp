// SPDX-License-Identifier: MIT
// The format of a face: what its file is, and what its tables make of that.
#include "describe/entities.hpp"
#include "platform/font/type_identifier.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/packed_fonts.hpp"
#include "support/resource_fork.hpp"
#include "support/type1_font.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

constexpr int32_t kNone = kVLFontFormatUnrecognized;
constexpr int32_t kOpenTypePostScript = kVLFontFormatOpenTypePostScript;
constexpr int32_t kOpenTypeTrueType = kVLFontFormatOpenTypeTrueType;
constexpr int32_t kTrueType = kVLFontFormatTrueType;
constexpr int32_t kPostScript = kVLFontFormatPostScript;
constexpr int32_t kBitmap = kVLFontFormatBitmap;

int32_t FormatOf(const TClientFontEntity &entity) {
    const auto format = entity.CopyFormat();
    EXPECT_EQ(ValNumberGetNumberType(format.Get()), ValNumberType{kValNumberTypeSInt32});
    return ReadSInt32(format.Get());
}

// A font without any table that decides about formats.
FontBuilder Empty(uint32_t flavor = FontBuilder::kTrueType) {
    return FontBuilder().Without("glyf").Without("loca").Flavor(flavor);
}

// With these tables more, in this order. What they hold is not looked at.
FontBuilder With(FontBuilder font, const std::vector<const char *> &tags) {
    for (const char *tag : tags) font.Table(tag, {0, 0, 0, 0});
    return font;
}

class EntityFormat : public ::testing::Test {
protected:
    int32_t FormatOfFile(const Bytes &bytes, const char *name = "font") {
        const auto font = CreateFontFromURL(folder.Add(name, bytes).Get());
        EXPECT_TRUE(font);
        return FormatOf(TClientFontEntity(font));
    }
    int32_t FormatOfFile(const std::string &text, const char *name = "font") {
        return FormatOfFile(Bytes(text.begin(), text.end()), name);
    }

    FontFolder folder;
};

struct FormatRow {
    std::vector<const char *> tags;
    int32_t true_type; // of a TrueType file
    int32_t open_type; // of an OpenType file
};

// Of a face whose tables decide nothing, the format stays what the file's type makes it: TrueType, which
// asks for outlines, or OpenType.
TEST_F(EntityFormat, FollowsTheTypeOfTheFileThenItsTables) {
    const FormatRow rows[] = {
        {{}, kPostScript, kOpenTypePostScript},
        // the last of the tables with outlines
        {{"CFF "}, kPostScript, kPostScript},
        {{"TYP1"}, kPostScript, kPostScript},
        {{"glyf", "loca"}, kTrueType, kTrueType},
        {{"glyf", "loca", "CFF "}, kPostScript, kPostScript},
        {{"glyf", "loca", "TYP1"}, kPostScript, kPostScript},
        {{"CFF ", "glyf", "loca"}, kTrueType, kTrueType},
        {{"TYP1", "glyf", "loca"}, kTrueType, kTrueType},
        {{"CFF2"}, kPostScript, kOpenTypePostScript}, // says nothing
        {{"CFF2", "glyf", "loca"}, kTrueType, kTrueType},
        // layout, or a signature
        {{"DSIG"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"GPOS"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"GSUB"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"glyf", "loca", "GPOS"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"glyf", "GSUB"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"DSIG", "CFF "}, kOpenTypePostScript, kOpenTypePostScript},
        {{"GSUB", "CFF ", "glyf", "loca"}, kOpenTypePostScript, kOpenTypePostScript},
        {{"GSUB", "TYP1"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"GSUB", "CFF2"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"GSUB", "bdat", "bloc"}, kOpenTypeTrueType, kOpenTypeTrueType},
        {{"GDEF", "BASE", "JSTF"}, kPostScript, kOpenTypePostScript},
        // outlines without their places
        {{"glyf"}, kNone, kNone},
        {{"glyf", "bdat", "bloc"}, kBitmap, kBitmap},
        {{"glyf", "bdat"}, kNone, kNone},
        {{"glyf", "bloc"}, kNone, kNone},
        {{"glyf", "loca", "bdat", "bloc"}, kTrueType, kTrueType},
        // bitmaps without outlines
        {{"bdat", "bloc"}, kBitmap, kOpenTypePostScript},
        {{"bdat"}, kPostScript, kOpenTypePostScript},
        {{"bloc", "loca"}, kPostScript, kOpenTypePostScript},
        {{"CFF ", "bdat", "bloc"}, kPostScript, kPostScript},
        {{"EBDT", "EBLC"}, kPostScript, kOpenTypePostScript}, // the newer tags are not looked for
    };
    for (const FormatRow &row : rows) {
        const auto tags = ::testing::PrintToString(row.tags.size()) +
                          (row.tags.empty() ? "" : std::string(" ") + row.tags.front());
        EXPECT_EQ(FormatOfFile(With(Empty(), row.tags).Build()), row.true_type) << tags;
        EXPECT_EQ(FormatOfFile(With(Empty(FontBuilder::kOpenType), row.tags).Build()), row.open_type)
            << tags;
    }
}

TEST_F(EntityFormat, OfEachFaceOfACollectionFollowsItsTables) {
    const auto url = folder.Add(
        "a.ttc", BuildCollection({With(Empty(), {"glyf", "loca"}), With(Empty(), {"GSUB", "CFF "}),
                                  With(Empty(), {"bdat", "bloc"})}));
    const auto fonts = CreateFontsFromURL(url.Get());
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 3u);
    EXPECT_EQ(FormatOf(FaceOf(fonts, 0)), kTrueType);
    EXPECT_EQ(FormatOf(FaceOf(fonts, 1)), kOpenTypePostScript);
    EXPECT_EQ(FormatOf(FaceOf(fonts, 2)), kBitmap);
}

TEST_F(EntityFormat, OfAPostScriptProgramIsPostScript) {
    EXPECT_EQ(FormatOfFile(BuildPfb(), "a.pfb"), kPostScript);
    EXPECT_EQ(FormatOfFile(BuildPfa(), "a.pfa"), kPostScript);
}

TEST_F(EntityFormat, OfABitmapFileIsNotRecognized) {
    // Deliberate: no step of the decision knows these files.
    EXPECT_EQ(FormatOfFile(BuildPcf({}), "a.pcf"), kNone);
    EXPECT_EQ(FormatOfFile(BuildBdf({}), "a.bdf"), kNone);
    EXPECT_EQ(FormatOfFile(Gzip(BuildPcf({})), "a.pcf.gz"), kNone);
}

TEST_F(EntityFormat, OfAPackedFontIsNotRecognized) {
    EXPECT_EQ(FormatOfFile(BuildWoff(FontBuilder().Build()), "a.woff"), kNone);
}

TEST_F(EntityFormat, OfAFontInMemoryIsNotRecognized) {
    EXPECT_EQ(FormatOf(EntityOf(FontBuilder())), kNone);
    EXPECT_EQ(FormatOf(EntityOf(With(Empty(), {"GSUB", "CFF "}))), kNone);
}

TEST_F(EntityFormat, OfAFileThatIsGoneIsNotRecognized) {
    const auto font = CreateFontFromURL(folder.Add("a.ttf", FontBuilder().Build()).Get());
    std::filesystem::remove(folder.File("a.ttf"));
    EXPECT_EQ(FormatOf(TClientFontEntity(font)), kNone);
}

// ---- suitcases --------------------------------------------------------------------------------------

// A suitcase is an empty file with a second fork, out of which nothing here reads a face. The face is that
// of a font which lay there before, and whether it has bitmaps alone was asked then.
class EntityFormatOfASuitcase : public EntityFormat {
protected:
    int32_t FormatAfterwards(const FontBuilder &builder) {
        const auto url = folder.Add("Suitcase", builder.Build());
        const auto font = CreateFontFromURL(url.Get());
        EXPECT_TRUE(font);
        is_bitmap_only = GxFontIsBitmapOnly(font.Get());
        folder.Write("Suitcase", Bytes());
        folder.Write(".rsrc/Suitcase", ResourceFork({"FOND", "sfnt"}));
        EXPECT_TRUE(ConformsToTypeTag(url.Get(), "com.orrery.font-suitcase"));
        const int32_t format = FormatOf(TClientFontEntity(font));
        std::filesystem::remove(folder.File(".rsrc/Suitcase"));
        return format;
    }

    bool is_bitmap_only = false;
};

TEST_F(EntityFormatOfASuitcase, IsTrueTypeWithOutlines) {
    EXPECT_EQ(FormatAfterwards(With(Empty(), {"glyf", "loca"})), kTrueType);
    EXPECT_EQ(FormatAfterwards(With(Empty(), {"glyf"})), kNone);
    EXPECT_EQ(FormatAfterwards(With(Empty(), {"glyf", "loca", "GSUB"})), kOpenTypeTrueType);
}

// One strike of eight pixels, without any glyph.
Bytes BitmapLocations() {
    ByteWriter table;
    table.U32(0x00020000).U32(1).Zeros(16).Zeros(24);
    return table.U16(1).U16(1).U8(8).U8(8).U8(1).U8(1);
}

TEST_F(EntityFormatOfASuitcase, IsBitmapWhereTheFontHasBitmapsAlone) {
    const auto bitmaps = FontBuilder(Empty()).Table("EBDT", {0, 2, 0, 0}).Table("EBLC", BitmapLocations());
    EXPECT_EQ(FormatAfterwards(bitmaps), kBitmap);
    EXPECT_TRUE(is_bitmap_only);
}

TEST_F(EntityFormatOfASuitcase, IsPostScriptWithoutOutlinesAndBitmaps) {
    EXPECT_EQ(FormatAfterwards(Empty()), kPostScript);
    EXPECT_EQ(FormatAfterwards(With(Empty(), {"CFF "})), kPostScript);
    EXPECT_EQ(FormatAfterwards(With(Empty(), {"bdat", "bloc"})), kPostScript); // which hold nothing
    EXPECT_FALSE(is_bitmap_only);
}

} // namespace
} // namespace vellum::test
