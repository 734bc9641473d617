// SPDX-License-Identifier: MIT
// Axes and named instances of variable faces.
#include "asking.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

Ref<const ValArray> FontsOf(const TempDir &folder, const FontBuilder &font) {
    return FontsAt(folder.Write("font.ttf", font.Build()));
}

double Variation(const GxFont *font, std::string_view axis) {
    const auto variations = GxFontCopyVariations(font);
    const void *value = ValDictionaryGetValue(variations.Get(), Val(axis).Get());
    EXPECT_TRUE(value) << axis;
    return ValNumberGetFloat64(static_cast<const ValNumber *>(value));
}

TEST(VariableFace, StandsBeforeItsInstancesWithoutTheDefaultOne) {
    const TempDir folder;
    EXPECT_THAT(PostScriptNames(FontsOf(folder, VariableFont())),
                ElementsAre("Test-Regular", "Test-BoldStated", "Test-VeryNarrow"));
}

TEST(VariableFace, StandsWithItsFileBeforeAllInstances) {
    const TempDir folder;
    const auto fonts = FontsAt(folder.Write(
        "a.ttc",
        BuildCollection({VariableFont(), FontBuilder().Names(PlainNames("Two", "Regular", "Two"))})));
    EXPECT_THAT(PostScriptNames(fonts),
                ElementsAre("Test-Regular", "Two", "Test-BoldStated", "Test-VeryNarrow"));
}

TEST(VariableFace, IsTheOnlyFaceOfABuffer) {
    const auto font = FontOf(VariableFont());
    EXPECT_EQ(PostScriptName(font.Get()), "Test-Regular");
    EXPECT_FALSE(GxFontIsInstance(font.Get()));
}

TEST(VariableFace, ListsItsAxes) {
    const auto font = FontOf(VariableFont());
    const auto axes = GxFontGetVariationAxes(font.Get());
    ASSERT_THAT(axes, SizeIs(2));
    EXPECT_EQ(axes[0].tag, MakeTag("wght"));
    EXPECT_EQ(Str(axes[0].name), "Weight");
    EXPECT_EQ(axes[0].minimum, 100);
    EXPECT_EQ(axes[0].default_value, 400);
    EXPECT_EQ(axes[0].maximum, 900);
    EXPECT_EQ(Str(axes[1].name), "Width");
}

TEST(VariableFace, NamesAnAxisByItsTagWhenItHasNoName) {
    const auto font = FontOf(FontBuilder().Table("fvar", FvarTable({{"opsz", 8, 12, 72, 300}}, {})));
    EXPECT_EQ(Str(GxFontGetVariationAxes(font.Get())[0].name), "opsz");
}

TEST(VariableFace, StandsAtTheDefaultOfEveryAxis) {
    const auto font = FontOf(VariableFont());
    EXPECT_EQ(ValDictionaryGetCount(GxFontCopyVariations(font.Get()).Get()), 2u);
    EXPECT_EQ(Variation(font.Get(), "Weight"), 400);
    EXPECT_EQ(Variation(font.Get(), "Width"), 100);
}

TEST(OrdinaryFace, HasNoAxesAndNoVariations) {
    const auto font = FontOf(FontBuilder());
    EXPECT_TRUE(GxFontGetVariationAxes(font.Get()).empty());
    EXPECT_FALSE(GxFontCopyVariations(font.Get()));
}

class Instance : public testing::Test {
protected:
    const TempDir folder_;
    const Ref<const ValArray> fonts_ = FontsOf(folder_, VariableFont());
    const GxFont *const bold_ = FaceOf(fonts_, 1);
    const GxFont *const narrow_ = FaceOf(fonts_, 2);
};

TEST_F(Instance, SaysThatItIsOne) {
    EXPECT_TRUE(GxFontIsInstance(bold_));
    EXPECT_FALSE(GxFontIsInstance(FaceOf(fonts_, 0)));
}

TEST_F(Instance, HasTheFamilyOfItsFile) {
    EXPECT_EQ(Str(GxFontCopyFamilyName(bold_)), "Test");
    EXPECT_EQ(Name(bold_, GxNameKey::kFamily), "Test");
}

TEST_F(Instance, HasASubfamilyNameOfItsOwn) {
    EXPECT_EQ(Name(bold_, GxNameKey::kSubfamily), "Bold");
    EXPECT_EQ(Name(narrow_, GxNameKey::kPreferredSubfamily), "Very Narrow");
}

TEST_F(Instance, HasAFullNameOfFamilyAndSubfamily) {
    EXPECT_EQ(Str(GxFontCopyFullName(narrow_)), "Test Very Narrow");
    EXPECT_EQ(Name(narrow_, GxNameKey::kFull), "Test Very Narrow");
}

TEST_F(Instance, HasThePostScriptNameThatTheFontStates) {
    EXPECT_EQ(PostScriptName(bold_), "Test-BoldStated");
    EXPECT_EQ(Name(bold_, GxNameKey::kPostScript), "Test-BoldStated");
}

TEST_F(Instance, GetsAPostScriptNameWhenTheFontStatesNone) {
    EXPECT_EQ(PostScriptName(narrow_), "Test-VeryNarrow");
}

TEST_F(Instance, StandsAtItsCoordinates) {
    EXPECT_EQ(Variation(bold_, "Weight"), 700);
    EXPECT_EQ(Variation(bold_, "Width"), 100);
    EXPECT_EQ(Variation(narrow_, "Width"), 75);
}

TEST_F(Instance, SharesTablesAxesAndCoverageWithItsFace) {
    EXPECT_EQ(GxFontGetTableTags(bold_).data(), GxFontGetTableTags(FaceOf(fonts_, 0)).data());
    EXPECT_EQ(GxFontGetVariationAxes(bold_).data(), GxFontGetVariationAxes(FaceOf(fonts_, 0)).data());
    EXPECT_EQ(GxFontCopyCharacterSet(bold_).Get(), GxFontCopyCharacterSet(FaceOf(fonts_, 0)).Get());
    EXPECT_TRUE(TableOf(bold_, "fvar").present);
}

TEST_F(Instance, HasLocalizedNamesOfItsOwn) {
    EXPECT_EQ(LocalizedName(bold_, GxNameKey::kSubfamily, "en"), "Bold");
    EXPECT_EQ(LocalizedName(bold_, GxNameKey::kFull, "en"), "Test Bold");
    EXPECT_EQ(LocalizedName(bold_, GxNameKey::kPostScript, "en"), "Test-BoldStated");
    EXPECT_EQ(LocalizedName(bold_, GxNameKey::kFamily, "en"), "Test");
    EXPECT_EQ(LocalizedName(bold_, GxNameKey::kFull, "de"), kNull);
    EXPECT_EQ(LocalizedName(narrow_, GxNameKey::kPostScript, "en"), kNull);
}

std::string InstanceName(const std::vector<NameRecord> &more, uint16_t subfamily = 300) {
    const TempDir folder;
    std::vector<NameRecord> names = PlainNames("My Family", "Regular", "MyPostScript-Regular");
    names.insert(names.end(), more.begin(), more.end());
    const auto fonts =
        FontsOf(folder, FontBuilder().Names(names).Table(
                            "fvar", FvarTable({{"wght", 100, 400, 900, 299}}, {{subfamily, {650.5}}})));
    return PostScriptName(FaceOf(fonts, 1));
}

TEST(InstancePostScriptName, BeginsWithThePrefixThatTheFontStates) {
    EXPECT_EQ(InstanceName({WindowsName(25, "Prefix"), WindowsName(300, "Semi Bold")}), "Prefix-SemiBold");
}

TEST(InstancePostScriptName, BeginsElseWithTheTypographicFamily) {
    EXPECT_EQ(InstanceName({WindowsName(16, "Typo Family!"), WindowsName(300, "Bold")}), "TypoFamily-Bold");
}

TEST(InstancePostScriptName, BeginsElseWithTheFamily) {
    EXPECT_EQ(InstanceName({WindowsName(300, "B(o)l/d")}), "MyFamily-Bold");
}

TEST(InstancePostScriptName, TellsItsCoordinatesWhenTheInstanceHasNoName) {
    EXPECT_EQ(InstanceName({}), "MyFamily_650.5wght");
}

TEST(InstancePostScriptName, HasAtMost127Characters) {
    EXPECT_EQ(InstanceName({WindowsName(300, std::string(200, 'x'))}).size(), 127u);
}

std::vector<FvarAxis> Axes(size_t count) {
    return {count, {"wght", 0, 0, 1000, 256}};
}

TEST(VariationLimits, Believe64Axes) {
    const auto font = FontOf(FontBuilder().Table("fvar", FvarTable(Axes(64), {})));
    EXPECT_THAT(GxFontGetVariationAxes(font.Get()), SizeIs(64));
}

TEST(VariationLimits, TakeAFaceWithMoreAxesForNotVariable) {
    const TempDir folder;
    const auto fonts = FontsOf(
        folder, FontBuilder().Table("fvar", FvarTable(Axes(65), {{2, std::vector<double>(65, 1)}})));
    EXPECT_EQ(ValArrayGetCount(fonts.Get()), 1u);
    EXPECT_TRUE(GxFontGetVariationAxes(FaceOf(fonts)).empty());
}

size_t FacesOf(const std::vector<FontBuilder> &fonts) {
    const TempDir folder;
    return ValArrayGetCount(FontsAt(folder.Write("a.ttc", BuildCollection(fonts))).Get());
}

FontBuilder WithInstances(size_t count) {
    return FontBuilder().Table("fvar", FvarTable(Axes(1), std::vector<FvarInstance>(count, {2, {1}})));
}

TEST(VariationLimits, List1024InstancesOfAFile) {
    EXPECT_EQ(FacesOf({WithInstances(1024)}), 1u + 1024);
    EXPECT_EQ(FacesOf({WithInstances(1025)}), 1u + 1024);
    EXPECT_EQ(FacesOf({WithInstances(1000), WithInstances(1000)}), 2u + 1024);
}

TEST(VariationLimits, DoNotCountDefaultInstances) {
    std::vector<FvarInstance> instances(1024, {2, {0}});
    instances.push_back({2, {1}});
    EXPECT_EQ(FacesOf({FontBuilder().Table("fvar", FvarTable(Axes(1), instances))}), 2u);
}

TEST(BrokenVariations, LeaveTheFaceAlone) {
    const TempDir folder;
    Bytes fvar = FvarTable(Axes(1), {{2, {1}}});
    fvar.resize(20);
    const auto fonts = FontsOf(folder, FontBuilder().Table("fvar", fvar));
    EXPECT_EQ(ValArrayGetCount(fonts.Get()), 1u);
    EXPECT_FALSE(GxFontCopyVariations(FaceOf(fonts)));
}

} // namespace
} // namespace vellum::test
