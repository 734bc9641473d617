// SPDX-License-Identifier: MIT
// Weight, width, slant, pitch and class of a face: which source is asked when, and what it says.
#include "describe/entities.hpp"
#include "describe/font_traits.hpp"
#include "describe/os2_traits.hpp"
#include "describe/style_glossaries.hpp"
#include "support/font_builder.hpp"
#include "support/named_font.hpp"
#include "support/sfnt_tables.hpp"
#include "support/values.hpp"
#include "values/val_cast.hpp"

#include <vellum/vellum.h>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

namespace vellum::test {
namespace {

constexpr float kItalic = 0.0694444F;

TFontTraits TraitsOf(const FontBuilder &font, const ValDictionary *metadata = nullptr) {
    const auto face = GxFontCreateWithData(AsData(font.Build()).Get());
    EXPECT_TRUE(face);
    return TFontTraits(face.Get(), metadata);
}

// A font whose tables say nothing: what its names do not tell stays open until the last resort.
FontBuilder Silent(const std::string &family, const std::string &subfamily,
                   const std::string &full = "Plain") {
    FontBuilder font;
    font.Names(
        {WindowsName(1, family), WindowsName(2, subfamily), WindowsName(4, full), WindowsName(6, "Face")});
    return font.Without("OS/2").Without("post");
}

// The same with an hhea table that neither leans nor is of fixed pitch.
FontBuilder Upright(const std::string &subfamily) {
    return Silent("Family", subfamily)
        .Table("hhea", HheaTable(2))
        .Table("hmtx", ByteWriter().U16(500).U16(0).U16(600).U16(0));
}

FontBuilder WithOs2(const Os2Fields &fields) {
    return Upright("Plain").Table("OS/2", Os2Table(fields));
}

TEST(FontTraits, OfAPlainFaceAreZero) {
    const TFontTraits traits = TraitsOf(Upright("Regular"));
    EXPECT_EQ(traits.Symbolic(), 0U);
    EXPECT_EQ(traits.Weight(), 0.0F);
    EXPECT_EQ(traits.Width(), 0.0F);
    EXPECT_EQ(traits.Slant(), 0.0F);
}

TEST(FontTraits, AreGivenAsADictionaryOfFour) {
    const auto traits = TraitsOf(Silent("Family", "Bold Italic")).CreateTraitsDictionary();
    ASSERT_EQ(ValDictionaryGetCount(traits.Get()), 4U);
    const auto number = [&](const ValString *key) {
        return Cast<ValNumber>(ValDictionaryGetValue(traits.Get(), key));
    };
    EXPECT_EQ(ValNumberGetNumberType(number(kVLFontTraitSymbolic)), ValNumberType{kValNumberTypeSInt32});
    EXPECT_EQ(ValNumberGetNumberType(number(kVLFontTraitWeight)), ValNumberType{kValNumberTypeFloat32});
    EXPECT_EQ(static_cast<float>(ValNumberGetFloat64(number(kVLFontTraitWeight))), 0.4F);
    EXPECT_EQ(static_cast<float>(ValNumberGetFloat64(number(kVLFontTraitWidth))), 0.0F);
    EXPECT_EQ(static_cast<float>(ValNumberGetFloat64(number(kVLFontTraitSlant))), kItalic);
}

// ---- style words ----------------------------------------------------------------------------------

TEST(FontTraits, TakeWeightAndSlantFromStyleWords) {
    const TFontTraits traits = TraitsOf(Upright("Bold Italic"));
    EXPECT_EQ(traits.Weight(), 0.4F);
    EXPECT_EQ(traits.Slant(), kItalic);
    EXPECT_EQ(traits.Symbolic(), 0x3U);
}

TEST(FontTraits, TakeTheFirstOfTheTwoValuesOfSemiCondensed) {
    const TFontTraits traits = TraitsOf(Silent("Foo", "Plain", "Foo Semi Condensed"));
    EXPECT_EQ(traits.Width(), -0.7F);
    EXPECT_EQ(traits.Symbolic() & (kVLFontTraitCondensed | kVLFontTraitExpanded),
              uint32_t{kVLFontTraitCondensed});
}

TEST(FontTraits, AskTheNamesInTheirOrderForWhatIsStillOpen) {
    FontBuilder font = Upright("Plain");
    font.Names({WindowsName(17, "Light"), WindowsName(2, "Bold Condensed"),
                WindowsName(4, "Foo Black Italic"), WindowsName(16, "Foo Wide"),
                WindowsName(1, "Foo Heavy"), WindowsName(6, "Face")});
    const TFontTraits traits = TraitsOf(font);
    EXPECT_EQ(traits.Weight(), -0.4F);  // 17
    EXPECT_EQ(traits.Width(), -0.2F);   // 2
    EXPECT_EQ(traits.Slant(), kItalic); // 4
}

TEST(FontTraits, TakeStyleWordsBeforeTables) {
    const TFontTraits traits = TraitsOf(Upright("Light").Table("OS/2", Os2Table({.weight_class = 900})));
    EXPECT_EQ(traits.Weight(), -0.4F);
}

struct GlossaryRow {
    const char *name;
    std::span<const StyleWord> glossary;
    std::optional<float> value;
};

TEST(StyleGlossaries, AreSearchedInTheirOrderAnywhereInTheNameWhateverItsCase) {
    const GlossaryRow rows[] = {
        {"Ultra Light", kWeightStyleGlossaryNameMap, -0.8F},
        {"ULTRALIGHT", kWeightStyleGlossaryNameMap, -0.8F},
        {"Extra Black", kWeightStyleGlossaryNameMap, 0.5F}, // "Extra" comes before "Black"
        {"ExtraBlack", kWeightStyleGlossaryNameMap, 0.8F},
        {"Nordic", kWeightStyleGlossaryNameMap, 0.8F},
        {"Book Bold", kWeightStyleGlossaryNameMap, -0.23F},
        {"W1", kWeightStyleGlossaryNameMap, -0.23F},
        {"W2", kWeightStyleGlossaryNameMap, -0.5F},
        {"W3", kWeightStyleGlossaryNameMap, -0.23F},
        {"w9", kWeightStyleGlossaryNameMap, 0.62F},
        {"\u017Femi", kWeightStyleGlossaryNameMap, 0.3F}, // a long s is an s
        {"Blac\u212A", kWeightStyleGlossaryNameMap, 0.62F},
        {"Regular", kWeightStyleGlossaryNameMap, std::nullopt},
        {"", kWeightStyleGlossaryNameMap, std::nullopt},
        {"Thin", kWidthStyleGlossaryNameMap, -0.7F},
        {"SemiCondensed", kWidthStyleGlossaryNameMap, -0.1F},
        {"Conde", kWidthStyleGlossaryNameMap, -0.2F},
        {"Ultra Expanded", kWidthStyleGlossaryNameMap, 0.8F},
        {"Digital", kSlantStyleGlossaryNameMap, kItalic},
        {"Back Slanted", kSlantStyleGlossaryNameMap, -kItalic},
        {"Extra Slant", kSlantStyleGlossaryNameMap, 0.138889F},
        {"Upright Italic", kSlantStyleGlossaryNameMap, 0.0F},
    };
    for (const GlossaryRow &row : rows) {
        float value = 99;
        const bool found = StyleName(row.name).DetermineTraitValueFromString(row.glossary, value);
        EXPECT_EQ(found, row.value.has_value()) << row.name;
        EXPECT_EQ(value, row.value.value_or(99)) << row.name;
    }
    EXPECT_EQ(kWeightStyleGlossaryNameMap.size(), 53U);
    EXPECT_EQ(kWidthStyleGlossaryNameMap.size(), 36U);
    EXPECT_EQ(kSlantStyleGlossaryNameMap.size(), 16U);
    EXPECT_EQ(kAbbreviatedWeightStyleGlossaryNameMap.size(), 10U);
}

TEST(FontTraits, TakeAWholeNameForAnAbbreviatedWeight) {
    EXPECT_EQ(TraitsOf(Upright("eb")).Weight(), 0.5F);
    EXPECT_EQ(TraitsOf(Upright("R")).Weight(), 0.0F);
    EXPECT_EQ(TraitsOf(Upright("EB2")).Weight(), 0.0F);
    FontBuilder font = Upright("Plain");
    font.Names({WindowsName(17, "UH"), WindowsName(2, "EL"), WindowsName(1, "F"), WindowsName(6, "Face")});
    EXPECT_EQ(TraitsOf(font).Weight(), 0.8F);
    EXPECT_EQ(TraitsOf(Upright("EL").Table("OS/2", Os2Table({.weight_class = 700}))).Weight(), 0.4F);
}

// ---- pitch ------------------------------------------------------------------------------------------

bool IsMonospace(const FontBuilder &font) {
    return TraitsOf(font).Symbolic() & kVLFontTraitMonospace;
}

FontBuilder FullyNamed(const std::string &full) {
    FontBuilder font = Upright("Plain");
    return font.Names(
        {WindowsName(1, "Family"), WindowsName(2, "Plain"), WindowsName(4, full), WindowsName(6, "Face")});
}

TEST(FontTraits, AreOfFixedPitchWhenTheFullNameSaysMono) {
    EXPECT_TRUE(IsMonospace(FullyNamed("Foo MONO")));
    EXPECT_TRUE(IsMonospace(FullyNamed("Monospaced Foo")));
    EXPECT_FALSE(IsMonospace(FullyNamed("Foo")));
}

TEST(FontTraits, AreNotOfFixedPitchForTheNameOfAFoundry) {
    EXPECT_FALSE(IsMonospace(FullyNamed("Monotype Foo")));
    EXPECT_TRUE(IsMonospace(FullyNamed("Monotype Foo Mono")));
    EXPECT_FALSE(IsMonospace(FullyNamed("Foo Mono Monotype"))); // only the last one is looked at
}

TEST(FontTraits, TakeThePitchFromOs2ThenHmtxThenPost) {
    EXPECT_TRUE(IsMonospace(WithOs2({.panose = {0, 0, 0, 9}})));
    EXPECT_FALSE(IsMonospace(WithOs2({.panose = {0, 0, 0, 3}}))); // which leaves it to the widths
    EXPECT_TRUE(IsMonospace(Upright("Plain").Table("hhea", HheaTable(1))));
    EXPECT_TRUE(IsMonospace(Upright("Plain").Table("hmtx", ByteWriter().U16(500).U16(0).U16(500).U16(0))));
    EXPECT_FALSE(
        IsMonospace(Upright("Plain").Table("post", PostTable({.fixed_pitch = true})))); // the widths say no
    EXPECT_TRUE(
        IsMonospace(Upright("Plain").Without("hhea").Table("post", PostTable({.fixed_pitch = true}))));
}

// ---- OS/2 -------------------------------------------------------------------------------------------

TEST(FontTraits, TakeTheWeightOfTheWeightClass) {
    const std::pair<uint16_t, float> rows[] = {
        {1, -0.8F},   {100, -0.8F}, {101, -0.5F}, {200, -0.5F}, {300, -0.4F}, {301, 0.0F},  {400, 0.0F},
        {500, 0.23F}, {600, 0.25F}, {700, 0.4F},  {800, 0.5F},  {900, 0.62F}, {901, 0.75F}, {950, 0.75F},
        {951, 0.8F},  {999, 0.8F},  {5, 0.23F},   {7, 0.4F},    {9, 0.62F},   {10, -0.8F}};
    for (const auto &[weight_class, weight] : rows) {
        EXPECT_EQ(TraitsOf(WithOs2({.weight_class = weight_class})).Weight(), weight) << weight_class;
    }
}

TEST(FontTraits, TakeThePanoseWeightWhereThereIsNoWeightClass) {
    const std::optional<float> weights[] = {std::nullopt, std::nullopt, -0.5F,       -0.4F, std::nullopt,
                                            -0.23F,       0.23F,        0.25F,       0.4F,  0.56F,
                                            0.62F,        0.8F,         std::nullopt};
    for (uint8_t digit = 0; digit < std::size(weights); ++digit) {
        for (uint16_t weight_class : {uint16_t{0}, uint16_t{1000}, uint16_t{65535}}) {
            const Os2Fields fields{.weight_class = weight_class, .panose = {0, 0, digit}};
            EXPECT_EQ(TraitsOf(WithOs2(fields)).Weight(), weights[digit].value_or(0.0F)) << int{digit};
        }
    }
}

TEST(FontTraits, LeaveTheWeightOpenAtPanoseFour) {
    const Os2Fields fields{.weight_class = 0, .panose = {0, 0, 4}};
    float weight = 99;
    EXPECT_FALSE(DetermineWeight(OS2Table(AsData(Os2Table(fields))), weight));
    EXPECT_EQ(weight, -0.3F); // which nobody takes
    EXPECT_EQ(TraitsOf(WithOs2(fields)).Weight(), 0.0F);
    EXPECT_EQ(TraitsOf(WithOs2(fields).Table("head", HeadTable({.mac_style = 1}))).Weight(), 0.4F);
}

TEST(FontTraits, TakeTheWidthOfTheWidthClass) {
    const float widths[] = {-0.7F, -0.5F, -0.2F, -0.1F, 0.0F, 0.1F, 0.4F, 0.6F, 0.8F};
    for (uint16_t i = 0; i < 9; ++i) {
        const TFontTraits traits = TraitsOf(WithOs2({.width_class = static_cast<uint16_t>(i + 1)}));
        EXPECT_EQ(traits.Width(), widths[i]);
        EXPECT_EQ(traits.Symbolic() & kVLFontTraitCondensed,
                  widths[i] < -0.15F ? uint32_t{kVLFontTraitCondensed} : 0U);
        EXPECT_EQ(traits.Symbolic() & kVLFontTraitExpanded,
                  widths[i] > 0.15F ? uint32_t{kVLFontTraitExpanded} : 0U);
    }
}

TEST(FontTraits, TakeThePanoseProportionWhereThereIsNoWidthClass) {
    const float widths[] = {0, 0, 0, 0, 0, 0.2F, -0.2F, 0.4F, -0.4F};
    for (uint8_t digit = 0; digit < std::size(widths); ++digit) {
        for (uint16_t width_class : {uint16_t{0}, uint16_t{10}}) {
            const Os2Fields fields{.width_class = width_class, .panose = {0, 0, 0, digit}};
            EXPECT_EQ(TraitsOf(WithOs2(fields)).Width(), widths[digit]) << int{digit};
        }
    }
}

TEST(FontTraits, DoNotBelieveAShortOs2) {
    Bytes table =
        Os2Table({.weight_class = 900, .width_class = 1, .family_class = 0x0800, .panose = {0, 0, 0, 9}});
    table.resize(77);
    const TFontTraits traits = TraitsOf(Upright("Plain").Table("OS/2", table));
    EXPECT_EQ(traits.Weight(), 0.0F);
    EXPECT_EQ(traits.Width(), 0.0F);
    EXPECT_EQ(traits.Symbolic(), 0U);
}

TEST(FontTraits, HaveTheClassInTheirHighestBits) {
    EXPECT_EQ(TraitsOf(WithOs2({.family_class = 0x0102})).Symbolic(), 0x10000000U);
    EXPECT_EQ(TraitsOf(WithOs2({.family_class = 0x0800})).Symbolic(), 0x80000000U);
    EXPECT_EQ(TraitsOf(WithOs2({.family_class = 0x0C00})).Symbolic(), 0xC0000000U);
    EXPECT_EQ(TraitsOf(WithOs2({.family_class = 0x1800})).Symbolic(),
              0x80000000U); // what does not fit is cut
}

// ---- hhea, post, head, the font itself ----------------------------------------------------------------

TEST(FontTraits, TakeTheSlantFromTheCaretThenFromPost) {
    Bytes hhea = HheaTable(2);
    hhea[18] = 0, hhea[19] = 5, hhea[20] = 0, hhea[21] = 1; // rise 5, run 1
    const auto expected = static_cast<float>(std::atan(5.0) / 180);
    EXPECT_FLOAT_EQ(TraitsOf(Upright("Plain").Table("hhea", hhea)).Slant(), expected);
    EXPECT_EQ(TraitsOf(Upright("Plain").Table("hhea", hhea)).Symbolic() & kVLFontTraitItalic,
              uint32_t{kVLFontTraitItalic});
    const FontBuilder post = Upright("Plain").Without("hhea").Table("post", PostTable({.italic_angle = 9}));
    EXPECT_FLOAT_EQ(TraitsOf(post).Slant(), 9.0F / 180);
    EXPECT_EQ(TraitsOf(Upright("Plain").Table("post", PostTable({.italic_angle = 9}))).Slant(),
              0.0F); // hhea said so
}

TEST(FontTraits, ReadTheAngleOfPostWithoutItsSign) {
    const FontBuilder post =
        Upright("Plain").Without("hhea").Table("post", PostTable({.italic_angle = -12}));
    EXPECT_NEAR(TraitsOf(post).Slant(), 364.02F, 0.01F);
}

TEST(FontTraits, TakeTheStyleOfHeadLast) {
    EXPECT_EQ(TraitsOf(Upright("Plain").Table("head", HeadTable({.mac_style = 1}))).Weight(), 0.4F);
    EXPECT_EQ(TraitsOf(Upright("Plain").Table("head", HeadTable({.mac_style = 1 << 5}))).Width(), -0.2F);
    const FontBuilder italic =
        Upright("Plain").Without("hhea").Table("head", HeadTable({.mac_style = 1 << 1}));
    EXPECT_EQ(TraitsOf(italic).Slant(), kItalic);
}

TEST(FontTraits, AreNarrowWhenHeadSaysExtended) {
    const TFontTraits traits = TraitsOf(Upright("Plain").Table("head", HeadTable({.mac_style = 1 << 6})));
    EXPECT_EQ(traits.Width(), -0.2F);
    EXPECT_EQ(traits.Symbolic(), uint32_t{kVLFontTraitCondensed});
}

// ---- named faces ------------------------------------------------------------------------------------

FontBuilder PostScriptNamed(const std::string &name, const std::string &subfamily = "Bold") {
    FontBuilder font = Upright("Plain");
    return font.Names(
        {WindowsName(1, "Family"), WindowsName(2, subfamily), WindowsName(4, "F"), WindowsName(6, name)});
}

TEST(FontTraits, OfNamedFacesOfTheSystemAreSettledByTheirNames) {
    EXPECT_EQ(TraitsOf(PostScriptNamed(".Keyboard")).Weight(), 0.0F);
    EXPECT_EQ(TraitsOf(PostScriptNamed("URWBookman-Light", "Light")).Weight(), 0.0F);
    EXPECT_EQ(TraitsOf(PostScriptNamed("URWBookman-LightItalic", "Light Italic")).Weight(), 0.0F);
    EXPECT_EQ(TraitsOf(PostScriptNamed("URWGothic-Demi", "Demi")).Weight(), 0.24F);
    EXPECT_EQ(TraitsOf(PostScriptNamed("URWGothic-Demi", "Demi")).Symbolic() & kVLFontTraitBold,
              uint32_t{kVLFontTraitBold});
    EXPECT_EQ(TraitsOf(PostScriptNamed("URWGothic-Book", "Book")).Weight(), -0.1F);
    EXPECT_EQ(TraitsOf(PostScriptNamed("C059-Roman", "Roman")).Symbolic(), 0x10000000U);
    EXPECT_EQ(TraitsOf(PostScriptNamed("urwgothic-demi", "Demi")).Weight(), 0.25F); // exactly
}

// ---- metadata ---------------------------------------------------------------------------------------

TEST(FontTraits, TakeWhatAccompaniesTheFaceBeforeAllElse) {
    const auto metadata = Metadata({{"Metrics_IsMonoDesign", String("TRUE")},
                                    {"Style_ItalicAngle", Adopt(ValNumberCreateFloat64(9))},
                                    {"Width_VisualDescriptor", String("ext")},
                                    {"Weight_VisualDescriptor", String("black")},
                                    {"Style_Fount_Class", String("sans-serif")}});
    const TFontTraits traits = TraitsOf(Upright("Light Condensed Italic"), metadata.Get());
    EXPECT_EQ(traits.Weight(), 0.62F);
    EXPECT_EQ(traits.Width(), 0.2F);
    EXPECT_FLOAT_EQ(traits.Slant(), 0.05F);
    EXPECT_EQ(traits.Symbolic(), 0x80000000U | kVLFontTraitItalic | kVLFontTraitBold |
                                     kVLFontTraitExpanded | kVLFontTraitMonospace);
}

TEST(FontTraits, TakeEachDescriptorOfTheMetadata) {
    const auto weight = [](const char *text) {
        return TraitsOf(Upright("Heavy"), Metadata({{"Weight_VisualDescriptor", String(text)}}).Get())
            .Weight();
    };
    const std::pair<const char *, float> weights[] = {{"reg", 0.0F},    {"semi", 0.3F}, {"bold", 0.4F},
                                                      {"light", -0.4F}, {"med", 0.23F}, {"black", 0.62F},
                                                      {"thin", -0.8F},  {"Bold", 0.56F}};
    for (const auto &[text, value] : weights) EXPECT_EQ(weight(text), value) << text;
    const auto width = [](const char *text) {
        return TraitsOf(Upright("Wide"), Metadata({{"Width_VisualDescriptor", String(text)}}).Get())
            .Width();
    };
    const std::pair<const char *, float> widths[] = {
        {"med", 0.0F}, {"cond", -0.2F}, {"ext", 0.2F}, {"other", 0.6F}};
    for (const auto &[text, value] : widths) EXPECT_EQ(width(text), value) << text;
    const std::pair<const char *, uint32_t> classes[] = {
        {"old-style-serifs", 1}, {"transitional-serifs", 2}, {"modern-serifs", 3}, {"clarendon-serifs", 4},
        {"slab-serifs", 5},      {"freeform-serifs", 7},     {"sans-serif", 8},    {"ornamentals", 9},
        {"scripts", 10},         {"symbolic", 12},           {"serif", 1},         {"other", 0}};
    for (const auto &[text, number] : classes) {
        const FontBuilder font =
            WithOs2({.family_class = 0x0900}); // which a class of any other name is not open for
        const auto metadata = Metadata({{"Style_Fount_Class", String(text)}});
        EXPECT_EQ(TraitsOf(font, metadata.Get()).Symbolic() >> 28, number) << text;
    }
}

TEST(FontTraits, TakeThePitchFromTheFirstFlagThatIsAString) {
    const auto pitch = [](const MetadataEntries &entries) {
        return (TraitsOf(FullyNamed("Foo Mono"), Metadata(entries).Get()).Symbolic() &
                kVLFontTraitMonospace) != 0;
    };
    const auto yes = Ref<const void>(String("TRUE"));
    const auto no = Ref<const void>(String("true")); // is not "TRUE"
    EXPECT_FALSE(pitch({{"Metrics_IsMonoDesign", no}, {"Metrics_IsFixedPitchFlag", yes}}));
    EXPECT_TRUE(pitch({{"Metrics_IsMonoDesign", yes}, {"Metrics_IsFixedPitchFlag", no}}));
    EXPECT_FALSE(
        pitch({{"Metrics_IsMonoDesign", Retain(kValBooleanTrue)}, {"Metrics_IsFixedPitchFlag", no}}));
    EXPECT_TRUE(pitch({{"Metrics_IsMonoDesign", Retain(kValBooleanFalse)}})); // left open
}

TEST(FontTraits, LeaveOpenWhatTheMetadataHasInAnotherType) {
    const auto metadata = Metadata({{"Style_ItalicAngle", String("12")},
                                    {"Weight_VisualDescriptor", Retain(kValBooleanTrue)},
                                    {"Style_Fount_Class", Adopt(ValNumberCreateSInt32(8))}});
    const TFontTraits traits =
        TraitsOf(WithOs2({.weight_class = 700, .family_class = 0x0300}), metadata.Get());
    EXPECT_EQ(traits.Weight(), 0.4F);
    EXPECT_EQ(traits.Slant(), 0.0F);
    EXPECT_EQ(traits.Symbolic() >> 28, 3U);
}

// ---- instances --------------------------------------------------------------------------------------

TEST(FontTraits, OfAnInstanceFollowItsPlaceOnTheAxes) {
    FontFolder folder;
    const auto url =
        folder.Add("v.ttf", VariableFont().Table("OS/2", Os2Table({.weight_class = 400})).Build());
    const auto fonts = GxFontCreateFontsWithURL(url.Get());
    ASSERT_EQ(ValArrayGetCount(fonts.Get()), 3U);
    const auto traits = [&](size_t i) {
        return TFontTraits(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), i)), nullptr);
    };
    EXPECT_EQ(traits(0).Weight(), 0.0F);
    EXPECT_EQ(traits(1).Weight(), 0.4F); // 700, and its name says Bold
    EXPECT_EQ(traits(2).Width(), -0.4F); // its name says Narrow, which wins over 75 percent
}

TEST(FontTraits, KnowTheWidthNearestToAPercentage) {
    EXPECT_EQ(WidthOfPercentage(100), 0.0F);
    EXPECT_EQ(WidthOfPercentage(76), -0.2F);
    EXPECT_EQ(WidthOfPercentage(10), -0.7F);
    EXPECT_EQ(WidthOfPercentage(119), 0.4F);
    EXPECT_EQ(WidthOfPercentage(1000), 0.8F);
}

// ---- the small tables -------------------------------------------------------------------------------

TEST(FontTraits, RankFacesByTheirClass) {
    EXPECT_EQ(ClassifyReduceTraitsClass(0), 999U);
    for (uint32_t i = 1; i <= 8; ++i) EXPECT_EQ(ClassifyReduceTraitsClass(i), 1U);
    for (uint32_t i = 9; i <= 11; ++i) EXPECT_EQ(ClassifyReduceTraitsClass(i), 2U);
    EXPECT_EQ(ClassifyReduceTraitsClass(12), 3U);
    for (uint32_t i : {13u, 15u, 0xFFFFFFFFu}) EXPECT_EQ(ClassifyReduceTraitsClass(i), 999U);
}

TEST(FontTraits, KnowThePlaceOfALegacyStyle) {
    const std::pair<uint8_t, uint8_t> rows[] = {
        {0, 0},       {0x01, 1},    {0x02, 2},    {0x03, 3}, {0x04, 0},    {0x08, 4}, {0x10, 8},
        {0x20, 0x10}, {0x40, 0x20}, {0x47, 0x23}, {0x60, 0}, {0x7F, 0x0F}, {0x6B, 7}, {0x3B, 0x1F}};
    for (const auto &[style, index] : rows) EXPECT_EQ(StyleIndexOfLegacyStyle(style), index) << int{style};
}

} // namespace
} // namespace vellum::test
