// SPDX-License-Identifier: MIT
// What an entity over a live font answers: names, formats, axes.
#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "support/font_builder.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

TClientFontEntity Entity(const Bytes &bytes) {
    return TClientFontEntity(TGxFont(AsData(bytes).Get()).Font());
}

TClientFontEntity WithNames(const std::vector<NameRecord> &names) {
    return Entity(FontBuilder().Names(names).Build());
}

std::vector<std::string> All(const Ref<const void> &names) {
    if (ValGetType(names.Get()) != kValTypeArray) return {"(no array)"};
    return Texts(Retain(static_cast<const ValArray *>(names.Get())));
}

std::string StyleOf(const std::vector<NameRecord> &names) {
    return TextOf(WithNames(names).CopySubfamilyName(false));
}

TEST(EntityNames, ThePreferredOneIsAString) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_EQ(TextOf(entity.CopyPostScriptName(false)), "Foo-Bold");
    EXPECT_EQ(TextOf(entity.CopyFamilyName(false)), "Foo");
    EXPECT_EQ(TextOf(entity.CopyFullName(false)), "Foo Bold");
    EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), "Bold");
}

TEST(EntityNames, AllOfThemAreAnArrayWithoutRepetition) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("Foo-Bold"));
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Foo"));
}

TEST(EntityNames, ThePreferredFamilyAndStyleComeFirst) {
    const auto entity =
        WithNames({WindowsName(1, "Foo Light"), WindowsName(2, "Regular"), WindowsName(4, "Foo Light"),
                   WindowsName(6, "Foo-Light"), WindowsName(16, "Foo"), WindowsName(17, "Light")});
    EXPECT_EQ(TextOf(entity.CopyFamilyName(false)), "Foo");
    EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), "Light");
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Foo", "Foo Light"));
    EXPECT_THAT(All(entity.CopySubfamilyName(true)), ElementsAre("Light", "Regular"));
}

TEST(EntityNames, EqualNamesOfDifferentFacesAreOneObject) {
    const auto a = Entity(MakeFont({"Foo", "Bold"})), b = Entity(MakeFont({"Foo", "Light"}));
    EXPECT_EQ(a.CopyFamilyName(false).Get(), b.CopyFamilyName(false).Get());
}

TEST(EntityNames, AStyleIsWhatTheFullNameAddsToTheFamily) {
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(4, "Foo Bold"), WindowsName(6, "X")}), "Bold");
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(4, "Foo-Italic"), WindowsName(6, "X")}),
              "Italic");
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(4, "Foo"), WindowsName(6, "X")}), "Regular");
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(4, "Foo--"), WindowsName(6, "X")}), "(null)");
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(4, "Foo - Bold"), WindowsName(6, "X")}),
              "- Bold");
    EXPECT_EQ(StyleOf({WindowsName(1, "Foo"), WindowsName(6, "Foo-Bold")}), "Foo-Bold");
    EXPECT_EQ(StyleOf({WindowsName(4, "Foo Bold"), WindowsName(6, "X")}), "Foo Bold");
}

TEST(EntityNames, ThePostScriptNameOfAnySystemIsAmongThem) {
    // The parser prefers English; the first record in the file counts as well.
    const auto entity =
        WithNames({MacintoshName(6, "Mac-Name"), WindowsName(1, "Foo"), WindowsName(6, "Win-Name")});
    EXPECT_EQ(TextOf(entity.CopyPostScriptName(false)), "Win-Name");
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("Win-Name", "Mac-Name"));
}

TEST(EntityProperties, AnswerByKey) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_EQ(TextOf(entity.CopyProperty(kVLFontPropertyName, false)), "Foo-Bold");
    EXPECT_THAT(All(entity.CopyProperty(kVLFontPropertyFullName, true)), ElementsAre("Foo Bold"));
    EXPECT_EQ(ValGetType(entity.CopyProperty(kVLFontPropertyURL, false).Get()), kValTypeURL);
    const auto characters = entity.CopyCharacterSet();
    EXPECT_TRUE(ValCharacterSetContains(characters.Get(), 'A'));
    EXPECT_FALSE(ValCharacterSetContains(characters.Get(), 'B'));
}

TEST(EntityProperties, TheRegistersOwnAreNotTheFaces) {
    const auto entity = Entity(MakeFont({"Foo"}));
    for (const ValString *key :
         {kVLFontPropertyInstanceName, kVLFontPropertyEnabled, kVLFontPropertyPriority,
          kVLFontPropertyFontRef, kVLFontPropertyDirectory, kVLFontPropertyScope,
          kVLFontPropertyManufacturerName, kVLFontPropertyDesignerName, kVLFontPropertyPrimaryLanguage})
        EXPECT_FALSE(entity.CopyProperty(key, false)) << TextOf(key);
}

TEST(EntityProperties, ASetOfKeysGivesThoseThatHaveValues) {
    const auto entity = Entity(MakeFont({"Foo"}));
    const auto some = entity.CopyProperties(Keys({kVLFontPropertyName, kVLFontPropertyScope}).Get(), false);
    EXPECT_EQ(ValDictionaryGetCount(some.Get()), 1u);
    const auto none = entity.CopyProperties(Keys({kVLFontPropertyScope}).Get(), false);
    ASSERT_TRUE(none);
    EXPECT_EQ(ValDictionaryGetCount(none.Get()), 0u);
}

TEST(EntityAxes, AreDictionariesInTheFontsOrder) {
    const auto axes = Entity(VariableFont().Build()).CopyVariationAxes();
    ASSERT_EQ(ValArrayGetCount(axes.Get()), 2u);
    const auto *weight = static_cast<const ValDictionary *>(ValArrayGetValue(axes.Get(), 0));
    const auto number = [&](const ValString *key) {
        return ValNumberGetFloat64(static_cast<const ValNumber *>(ValDictionaryGetValue(weight, key)));
    };
    EXPECT_EQ(number(kVLVariationAxisIdentifier), 0x77676874); // wght
    EXPECT_EQ(number(kVLVariationAxisMinValue), 100);
    EXPECT_EQ(number(kVLVariationAxisDefaultValue), 400);
    EXPECT_EQ(number(kVLVariationAxisMaxValue), 900);
    EXPECT_EQ(ValGetType(ValDictionaryGetValue(weight, kVLVariationAxisName)), kValTypeString);
}

TEST(EntityAxes, AFontWithoutAxesHasNone) {
    const auto entity = Entity(MakeFont({"Foo"}));
    EXPECT_FALSE(entity.CopyVariationAxes());
    EXPECT_FALSE(entity.CopyVariations());
}

// ---- formats ----

class Format : public ::testing::Test {
protected:
    int32_t FormatOf(const char *name, const FontBuilder &font) {
        const auto url = folder.Add(name, font.Build());
        const TClientFontEntity entity(CreateFontFromURL(url.Get()));
        return ValNumberGetSInt32(entity.CopyFormat().Get());
    }
    static FontBuilder Plain() { return FontBuilder().Without("GSUB"); }

    FontFolder folder;
};

TEST_F(Format, OutlinesAndLayoutTablesDecide) {
    EXPECT_EQ(FormatOf("plain.ttf", Plain()), kVLFontFormatTrueType);
    EXPECT_EQ(FormatOf("layout.ttf", Plain().Table("GSUB", {0})), kVLFontFormatOpenTypeTrueType);
    EXPECT_EQ(FormatOf("signed.ttf", Plain().Table("DSIG", {0})), kVLFontFormatOpenTypeTrueType);
    const auto cff =
        Plain().Without("glyf").Without("loca").Table("CFF ", {0}).Flavor(FontBuilder::kOpenType);
    EXPECT_EQ(FormatOf("plain.otf", cff), kVLFontFormatPostScript);
    EXPECT_EQ(FormatOf("layout.otf", FontBuilder(cff).Table("GPOS", {0})), kVLFontFormatOpenTypePostScript);
}

TEST_F(Format, OutlinesWithoutTheirLocationsAreNotRecognized) {
    EXPECT_EQ(FormatOf("a.ttf", Plain().Without("loca")), kVLFontFormatUnrecognized);
    EXPECT_EQ(FormatOf("b.ttf", Plain().Without("loca").Table("bdat", {0}).Table("bloc", {0})),
              kVLFontFormatBitmap);
}

TEST_F(Format, ATrueTypeFileWithoutOutlinesIsBitmapOrPostScript) {
    const auto empty = Plain().Without("glyf").Without("loca");
    EXPECT_EQ(FormatOf("bitmap.ttf", FontBuilder(empty).Table("bdat", {0}).Table("bloc", {0})),
              kVLFontFormatBitmap);
    // Deliberate: bitmaps under the newer tags are not looked for.
    EXPECT_EQ(FormatOf("newer.ttf", FontBuilder(empty).Table("EBDT", {0}).Table("EBLC", {0})),
              kVLFontFormatPostScript);
}

TEST_F(Format, AFontInMemoryHasNoFileAndSoNoFormat) {
    EXPECT_EQ(ValNumberGetSInt32(Entity(MakeFont({"Foo"})).CopyFormat().Get()), kVLFontFormatUnrecognized);
}

} // namespace
} // namespace vellum::test
