// SPDX-License-Identifier: MIT
// Listings and copies of properties from a register in the process.
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

class PropertyCopies : public ::testing::Test {
protected:
    Ref<const ValURL> AddFile(const char *name, const Bytes &bytes) {
        auto url = folder.Add(name, bytes);
        EXPECT_TRUE(registry.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
        return url;
    }
    Ref<const ValDictionary> Copy(const Ref<const ValURL> &url,
                                  const std::vector<const ValString *> &keys) {
        return registry.CopyPropertiesForFont(url.Get(), Keys(keys).Get(), kVLScopeProcess);
    }
    std::string NameOf(const Ref<const ValURL> &url) {
        return TextOf(ValDictionaryGetValue(Copy(url, {kVLFontPropertyName}).Get(), kVLFontPropertyName));
    }
    static Ref<const ValURL> Face(const Ref<const ValURL> &url, const char *fragment) {
        return Adopt(ValURLCopyWithFragment(url.Get(), String(fragment).Get()));
    }
    static int64_t NumberIn(const Ref<const ValDictionary> &properties, const ValString *key) {
        const void *number = ValDictionaryGetValue(properties.Get(), key);
        return number ? ValNumberGetSInt64(static_cast<const ValNumber *>(number)) : -1;
    }

    FontFolder folder;
    TLocalGlypharyImp registry;
};

TEST_F(PropertyCopies, OfAURLAreOfItsFirstFaceOrOfTheFaceThatTheFragmentNames) {
    const auto url = AddFile("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_EQ(NameOf(url), "A-Regular");
    EXPECT_EQ(NameOf(Face(url, "postscript-name=B-REGULAR")), "B-Regular");
    EXPECT_EQ(NameOf(Face(url, "postscript-name=B%2DRegular")), "B-Regular");
    EXPECT_EQ(NameOf(Face(url, "postscript-name=C")), "(null)");
}

TEST_F(PropertyCopies, OfARelativeURLAreOfWhatItResolvesTo) {
    AddFile("a.ttf", MakeFont({"A"}));
    const auto base = FileURL(folder.Path() + "/x");
    EXPECT_EQ(NameOf(Adopt(ValURLCreateWithString(String("a.ttf").Get(), base.Get()))), "A-Regular");
}

TEST_F(PropertyCopies, EveryFontOfTheProcessSaysScopeOnePriorityAndEnabled) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    const auto properties =
        Copy(url, {kVLFontPropertyScope, kVLFontPropertyPriority, kVLFontPropertyEnabled});
    EXPECT_EQ(NumberIn(properties, kVLFontPropertyScope), 1);
    EXPECT_EQ(NumberIn(properties, kVLFontPropertyPriority), 60000);
    EXPECT_EQ(NumberIn(properties, kVLFontPropertyEnabled), 1);
}

TEST_F(PropertyCopies, ADisabledFontAnswersOnlyWhenAskedWhetherItIsEnabled) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_FALSE(Copy(url, {kVLFontPropertyName}));
    const auto properties = Copy(url, {kVLFontPropertyName, kVLFontPropertyEnabled});
    EXPECT_EQ(NumberIn(properties, kVLFontPropertyEnabled), 0);
    EXPECT_EQ(TextOf(ValDictionaryGetValue(properties.Get(), kVLFontPropertyName)), "A-Regular");
}

TEST_F(PropertyCopies, WithoutAnyValueAreNull) {
    const auto url = AddFile("a.ttf", MakeFont({"A"}));
    EXPECT_FALSE(Copy(url, {kVLFontPropertyFontRef}));
    EXPECT_FALSE(Copy(url, {}));
}

TEST_F(PropertyCopies, OfSeveralURLsAreThoseThatHaveOne) {
    const auto a = AddFile("a.ttf", MakeFont({"A"}));
    const auto none = folder.URLOf("none.ttf");
    const auto all = registry.CopyPropertiesForFonts(Array({none, a}).Get(),
                                                     Keys({kVLFontPropertyName}).Get(), kVLScopeProcess);
    EXPECT_EQ(ValDictionaryGetCount(all.Get()), 1u);
    EXPECT_TRUE(ValDictionaryContainsKey(all.Get(), a.Get()));
    const auto names =
        registry.CopyPropertyForFonts(Array({none, a}).Get(), kVLFontPropertyName, kVLScopeProcess);
    EXPECT_EQ(TextOf(ValDictionaryGetValue(names.Get(), a.Get())), "A-Regular");
    EXPECT_FALSE(registry.CopyPropertyForFonts(Array({none}).Get(), kVLFontPropertyName, kVLScopeProcess));
}

TEST_F(PropertyCopies, OneAskedWhetherEnabledFindsDisabledFontsToo) {
    const auto a = AddFile("a.ttf", MakeFont({"A"}));
    registry.DisableFont(a.Get(), kVLScopeProcess);
    const auto enabled =
        registry.CopyPropertyForFonts(Array({a}).Get(), kVLFontPropertyEnabled, kVLScopeProcess);
    EXPECT_TRUE(ValDictionaryContainsKey(enabled.Get(), a.Get()));
    EXPECT_FALSE(registry.CopyPropertyForFonts(Array({a}).Get(), kVLFontPropertyName, kVLScopeProcess));
}

TEST_F(PropertyCopies, OfAllFontsAreOneAFaceInTheOrderOfRegistration) {
    AddFile("b.ttf", MakeFont({"B"}));
    AddFile("a.ttc", MakeCollection({{"A"}, {"C"}}));
    const auto all =
        registry.CopyPropertiesForAllFonts(Keys({kVLFontPropertyName, kVLFontPropertyScope}).Get(), 1);
    std::vector<std::string> names;
    for (size_t i = 0; i < ValArrayGetCount(all.Get()); ++i) {
        const auto *properties = static_cast<const ValDictionary *>(ValArrayGetValue(all.Get(), i));
        names.push_back(TextOf(ValDictionaryGetValue(properties, kVLFontPropertyName)));
        // The register's own values are for copies by URL.
        EXPECT_FALSE(ValDictionaryContainsKey(properties, kVLFontPropertyScope));
    }
    EXPECT_THAT(names, ElementsAre("B-Regular", "A-Regular", "C-Regular"));
}

TEST_F(PropertyCopies, ListingsHoldEachItemOnceAndLeaveDisabledFontsOut) {
    AddFile("a.ttf", MakeFont({"Foo", "Bold"}));
    AddFile("b.ttf", MakeFont({"Foo", "Light"}));
    const auto c = AddFile("c.ttf", MakeFont({"Bar"}));
    registry.DisableFont(c.Get(), kVLScopeProcess);
    EXPECT_THAT(Texts(registry.CopyAvailableFontFamilyNames(1)), ElementsAre("Foo"));
    EXPECT_THAT(Texts(registry.CopyAvailableFontNames(1)), ElementsAre("Foo-Bold", "Foo-Light"));
    EXPECT_EQ(Texts(registry.CopyAvailableFontURLs(1)).size(), 2u);
}

TEST_F(PropertyCopies, OfAnEmptyRegisterAreNull) {
    EXPECT_FALSE(registry.CopyAvailableFontNames(1));
    EXPECT_FALSE(registry.CopyPropertiesForAllFonts(Keys({kVLFontPropertyName}).Get(), 1));
}

} // namespace
} // namespace vellum::test
