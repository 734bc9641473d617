// SPDX-License-Identifier: MIT
// Contexts, and comparisons of faces by their URLs and by what is told of them.
#include "describe/basic_font_entity.hpp"
#include "describe/client_font_entity.hpp"
#include "query_fixture.hpp"
#include "values/val_number.hpp"

namespace vellum::test {
namespace {

// ---- contexts ----

TEST(ComparisonContext, OfNothingSaysNothing) {
    const TFontEntityComparisonContext none;
    EXPECT_FALSE(none.NamesPostScriptName());
    EXPECT_EQ(none.PreferredSubfamily(), nullptr);
    const TFontEntityComparisonContext null(nullptr);
    EXPECT_FALSE(null.NamesPostScriptName());
    EXPECT_EQ(null.PreferredSubfamily(), nullptr);
}

TEST(ComparisonContext, OfARequestKeepsItsVerySubfamilyObject) {
    const auto bold = String("Bold");
    const auto request = Request({{kVLFontPropertySubfamilyName, bold}});
    const TFontEntityComparisonContext context(request.Get());
    EXPECT_FALSE(context.NamesPostScriptName());
    EXPECT_EQ(context.PreferredSubfamily(), bold.Get());
}

TEST(ComparisonContext, OfARequestForAPostScriptNamePrefersNoSubfamily) {
    const auto request =
        Request({{kVLFontPropertySubfamilyName, String("Bold")}, {kVLFontPropertyName, String("Foo")}});
    const TFontEntityComparisonContext context(request.Get());
    EXPECT_TRUE(context.NamesPostScriptName());
    EXPECT_EQ(context.PreferredSubfamily(), nullptr);
}

TEST(ComparisonContext, OfASetOfKeysNamesAPostScriptNameAtMost) {
    const auto both = Keys({kVLFontPropertySubfamilyName, kVLFontPropertyName});
    const TFontEntityComparisonContext with(both.Get());
    EXPECT_TRUE(with.NamesPostScriptName());
    EXPECT_EQ(with.PreferredSubfamily(), nullptr);
    const auto one = Keys({kVLFontPropertySubfamilyName});
    const TFontEntityComparisonContext without(one.Get());
    EXPECT_FALSE(without.NamesPostScriptName());
    EXPECT_EQ(without.PreferredSubfamily(), nullptr);
}

TEST(ComparisonContext, OfAnyOtherValueSaysNothing) {
    const auto name = Retain(kVLFontPropertyName);
    const auto array = Adopt(ValArrayCreateMutable(1, nullptr));
    ValArrayAppend(array.Get(), kVLFontPropertyName);
    const auto number = MakeNumber(1);
    for (const void *value : {static_cast<const void *>(name.Get()), static_cast<const void *>(array.Get()),
                              static_cast<const void *>(number.Get())}) {
        const TFontEntityComparisonContext context(value);
        EXPECT_FALSE(context.NamesPostScriptName());
        EXPECT_EQ(context.PreferredSubfamily(), nullptr);
    }
}

// ---- told faces ----

TEST(CompareBasicFontInfo, TakesNullForAFaceWithoutAnyProperty) {
    const auto named = Request({{kVLFontPropertyFamilyName, String("A")}});
    const auto empty = Request({});
    EXPECT_EQ(TBasicFontEntity::CompareBasicFontInfo(nullptr, named.Get(), nullptr), -1);
    EXPECT_EQ(TBasicFontEntity::CompareBasicFontInfo(named.Get(), nullptr, nullptr), 1);
    EXPECT_EQ(TBasicFontEntity::CompareBasicFontInfo(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TBasicFontEntity::CompareBasicFontInfo(nullptr, empty.Get(), nullptr), 0);
}

// ---- faces behind URLs ----

class CompareFontURLs : public ::testing::Test {
protected:
    static int Compare(const Ref<const ValURL> &a, const Ref<const ValURL> &b,
                       const TFontEntityComparisonContext *context = nullptr) {
        return TClientFontEntity::CompareFontURLs(a.Get(), b.Get(), context);
    }

    FontFolder folder;
};

TEST_F(CompareFontURLs, OpensTheFiles) {
    const auto a = folder.Add("z.ttf", NamedFace{"A"}), b = folder.Add("a.ttf", NamedFace{"B"});
    EXPECT_EQ(Compare(a, b), -1);
    EXPECT_EQ(Compare(b, a), 1);
    EXPECT_EQ(Compare(a, a), 0);
}

TEST_F(CompareFontURLs, ComparesTheFaceThatAFragmentNamesOrElseTheFirst) {
    const auto url = folder.Add("cab.ttc", MakeCollection({{"C"}, {"A"}, {"B"}}));
    EXPECT_EQ(Compare(Face(url, "postscript-name=A-Regular"), Face(url, "postscript-name=B-Regular")), -1);
    EXPECT_EQ(Compare(url, Face(url, "postscript-name=B-Regular")), 1);
    EXPECT_EQ(Compare(url, Face(url, "postscript-name=C-Regular")), 0);
}

TEST_F(CompareFontURLs, PutsARegularFaceBeforeABoldOne) {
    const auto regular = folder.Add("r.ttf", NamedFace{"A"});
    const auto bold = folder.Add("b.ttf", BoldFont("A", "A-Bold"));
    EXPECT_EQ(Compare(regular, bold), -1);
    EXPECT_EQ(Compare(bold, regular), 1);
}

TEST_F(CompareFontURLs, PutsAURLThatNamesNoFaceFirst) {
    const auto a = folder.Add("a.ttf", NamedFace{"A"});
    const auto none = folder.URLOf("none.ttf");
    EXPECT_EQ(Compare(none, a), -1);
    EXPECT_EQ(Compare(a, none), 1);
    EXPECT_EQ(Compare(none, none), 0);
    EXPECT_EQ(Compare(nullptr, a), -1);
    EXPECT_EQ(Compare(nullptr, nullptr), 0);
    EXPECT_EQ(Compare(Face(a, "postscript-name=Nobody"), a), -1);
}

TEST_F(CompareFontURLs, TiesFacesOfOnePostScriptNameUnderARequestForOne) {
    const auto a = folder.Add("a.ttf", NamedFace{"A", "Regular", "Foo"});
    const auto b = folder.Add("b.ttf", NamedFace{"B", "Regular", "Foo"});
    const auto keys = Keys({kVLFontPropertyName});
    const TFontEntityComparisonContext context(keys.Get());
    EXPECT_EQ(Compare(a, b, &context), 0);
    EXPECT_EQ(Compare(b, a, &context), 0);
    EXPECT_EQ(Compare(a, b), -1);
}

} // namespace
} // namespace vellum::test
