// SPDX-License-Identifier: MIT
// Listings, languages and property copies of a register in the process, where property_copies_test.cpp
// leaves off.
#include "describe/client_font_entity.hpp"
#include "query_fixture.hpp"
#include "values/val_number.hpp"

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

class Listings : public QueryTest {
protected:
    // A font of the letters that Western European languages are written with.
    Ref<const ValURL> AddLatin(const std::string &family, const std::string &subfamily) {
        return Add(family + subfamily + ".ttf",
                   FontBuilder()
                       .Names(PlainNames(family, subfamily, family + '-' + subfamily))
                       .Characters({{0x20, 0x7E}, {0xA0, 0x17F}, {0x2010, 0x203A}})
                       .Build());
    }
    std::vector<std::string> FamiliesFor(const char *language, uint32_t options = kVLScopeProcess,
                                         uint32_t reserved = 0) {
        return NamesOrNull(registry.CopyFamilyNamesForLanguage(String(language).Get(), options, reserved));
    }
    static std::vector<std::string> NamesOrNull(const Ref<const ValArray> &names) {
        return names ? Texts(names) : std::vector<std::string>{"(null)"};
    }
    static const ValDictionary *At(const Ref<const ValArray> &array, size_t index) {
        return static_cast<const ValDictionary *>(ValArrayGetValue(array.Get(), index));
    }
    static std::string TextAt(const ValDictionary *properties, const ValString *key) {
        return TextOf(ValDictionaryGetValue(properties, key));
    }
};

// ---- listings ----

TEST_F(Listings, HoldEveryFamilyEveryNameAndEveryFacesURLOnce) {
    Add("a.ttc", MakeCollection({{"Foo", "Bold"}, {"Foo", "Light"}}));
    Add("b.ttf", FontNames{"Foo", "Bold", "Foo Bold", "Foo-Bold"});
    EXPECT_THAT(NamesOrNull(registry.CopyAvailableFontFamilyNames(kVLScopeProcess)), ElementsAre("Foo"));
    EXPECT_THAT(NamesOrNull(registry.CopyAvailableFontNames(kVLScopeProcess)),
                UnorderedElementsAre("Foo-Bold", "Foo-Light"));
    EXPECT_THAT(NamesIn(registry.CopyAvailableFontURLs(kVLScopeProcess)),
                UnorderedElementsAre("Foo-Bold", "Foo-Light", "Foo-Bold"));
}

TEST_F(Listings, OfARegisterWithoutEnabledFontsAreNull) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_FALSE(registry.CopyAvailableFontFamilyNames(kVLScopeProcess));
    EXPECT_FALSE(registry.CopyAvailableFontNames(kVLScopeProcess));
    EXPECT_FALSE(registry.CopyAvailableFontURLs(kVLScopeProcess));
    EXPECT_FALSE(registry.CopyFamilyNamesForLanguage(String("en").Get(), kVLScopeProcess, 0));
}

TEST_F(Listings, DoNotReadTheScope) {
    Add("a.ttf", NamedFace{"A"});
    for (const VLScope scope : {0U, 6U, 0xFFFFFFFFU}) {
        EXPECT_THAT(NamesOrNull(registry.CopyAvailableFontFamilyNames(scope)), ElementsAre("A"));
        EXPECT_THAT(NamesOrNull(registry.CopyAvailableFontNames(scope)), ElementsAre("A-Regular"));
        EXPECT_THAT(NamesIn(registry.CopyAvailableFontURLs(scope)), ElementsAre("A-Regular"));
    }
}

// ---- languages ----

TEST_F(Listings, AFamilyIsListedOnceForALanguageThatAnyOfItsFacesSupports) {
    AddLatin("Latin", "Regular");
    AddLatin("Latin", "Bold");
    Add("letter.ttf", NamedFace{"Letter"});
    EXPECT_THAT(FamiliesFor("en"), ElementsAre("Latin"));
    // A face of the family that does not support the language takes nothing away.
    Add("more.ttf", NamedFace{"Latin", "Letter"});
    EXPECT_THAT(FamiliesFor("en"), ElementsAre("Latin"));
}

TEST_F(Listings, AFamilyWhoseFirstFaceDoesNotSupportALanguageIsListedForTheSecond) {
    Add("letter.ttf", NamedFace{"Latin", "Letter"});
    AddLatin("Latin", "Regular");
    EXPECT_THAT(FamiliesFor("en"), ElementsAre("Latin"));
}

TEST_F(Listings, ALanguageIsComparedToTheLetterAndWithItsRegion) {
    const auto url = AddLatin("Latin", "Regular");
    const auto languages = registry.CopyPropertyForFonts(
        Array({url}).Get(), kVLFontPropertySupportedLanguages, kVLScopeProcess);
    const auto told =
        Texts(Retain(static_cast<const ValArray *>(ValDictionaryGetValue(languages.Get(), url.Get()))));
    ASSERT_THAT(told, Contains("en"));
    ASSERT_THAT(told, Not(Contains("en-ZZ")));
    EXPECT_THAT(FamiliesFor("en"), ElementsAre("Latin"));
    EXPECT_THAT(FamiliesFor("EN"), ElementsAre("(null)"));
    EXPECT_THAT(FamiliesFor("en-ZZ"), ElementsAre("(null)"));
    EXPECT_THAT(FamiliesFor("e"), ElementsAre("(null)"));
    EXPECT_THAT(FamiliesFor(""), ElementsAre("(null)"));
    EXPECT_FALSE(registry.CopyFamilyNamesForLanguage(nullptr, kVLScopeProcess, 0));
}

TEST_F(Listings, OptionsAndTheThirdWordOfALanguageAreNotRead) {
    AddLatin("Latin", "Regular");
    for (const uint32_t word : {0U, 6U, 0xFFFFFFFFU})
        EXPECT_THAT(FamiliesFor("en", word, word), ElementsAre("Latin"));
}

TEST_F(Listings, ADisabledFontIsListedForNoLanguage) {
    const auto url = AddLatin("Latin", "Regular");
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_THAT(FamiliesFor("en"), ElementsAre("(null)"));
}

// ---- copies by URL ----

TEST_F(Listings, AFragmentFindsADisabledFaceBesideAnEnabledOne) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto b = Face(url, "postscript-name=b-regular");
    registry.DisableFont(b.Get(), kVLScopeProcess);
    const auto enabled = Keys({kVLFontPropertyEnabled, kVLFontPropertyName});
    const auto copy = [&](const Ref<const ValURL> &which, const Ref<const ValSet> &keys) {
        return registry.CopyPropertiesForFont(which.Get(), keys.Get(), kVLScopeProcess);
    };
    EXPECT_FALSE(copy(b, Keys({kVLFontPropertyName})));
    EXPECT_EQ(TextAt(copy(url, Keys({kVLFontPropertyName})).Get(), kVLFontPropertyName), "A-Regular");
    const auto of_b = copy(b, enabled);
    EXPECT_EQ(TextAt(of_b.Get(), kVLFontPropertyName), "B-Regular");
    EXPECT_EQ(ReadSInt64(ValDictionaryGetValue(of_b.Get(), kVLFontPropertyEnabled)), 0);
    const auto of_a = copy(Face(url, "postscript-name=a-regular"), enabled);
    EXPECT_EQ(ReadSInt64(ValDictionaryGetValue(of_a.Get(), kVLFontPropertyEnabled)), 1);
}

TEST_F(Listings, WhatTheRegisterSaysHasItsTypes) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    const auto told = registry.CopyPropertiesForFont(
        url.Get(), Keys({kVLFontPropertyEnabled, kVLFontPropertyScope, kVLFontPropertyPriority}).Get(),
        kVLScopeProcess);
    const auto type = [&](const ValString *key) {
        return ValNumberGetNumberType(Cast<ValNumber>(ValDictionaryGetValue(told.Get(), key)));
    };
    EXPECT_EQ(type(kVLFontPropertyEnabled), kValNumberTypeSInt32);
    EXPECT_EQ(type(kVLFontPropertyScope), kValNumberTypeSInt64);
    EXPECT_EQ(type(kVLFontPropertyPriority), kValNumberTypeSInt64);
}

TEST_F(Listings, OnePropertyOfAFontIsAlsoWhatTheRegisterSaysOfIt) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    const auto value = [&](const ValString *key) {
        const auto told = registry.CopyPropertyForFonts(Array({url}).Get(), key, kVLScopeProcess);
        return ReadSInt64(ValDictionaryGetValue(told.Get(), url.Get()));
    };
    EXPECT_EQ(value(kVLFontPropertyScope), 1);
    EXPECT_EQ(value(kVLFontPropertyPriority), 60000);
    EXPECT_EQ(value(kVLFontPropertyEnabled), 1);
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_EQ(value(kVLFontPropertyEnabled), 0);
}

TEST_F(Listings, FontRefAndDirectoryAreNotGiven) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    for (const ValString *key : {kVLFontPropertyFontRef, kVLFontPropertyDirectory}) {
        EXPECT_FALSE(registry.CopyPropertiesForFont(url.Get(), Keys({key}).Get(), kVLScopeProcess));
        EXPECT_FALSE(registry.CopyPropertyForFonts(Array({url}).Get(), key, kVLScopeProcess));
    }
}

TEST_F(Listings, CopiesOfSeveralFontsKeepTheirURLsAsTheyWereAsked) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto a = Face(url, "postscript-name=A-Regular"), b = Face(url, "postscript-name=B-Regular");
    const auto none = Face(url, "postscript-name=Nobody");
    const auto all = registry.CopyPropertiesForFonts(Array({b, none, a, url, a}).Get(),
                                                     Keys({kVLFontPropertyName}).Get(), kVLScopeProcess);
    EXPECT_EQ(ValDictionaryGetCount(all.Get()), 3U);
    const auto name = [&](const Ref<const ValURL> &which) {
        return TextAt(static_cast<const ValDictionary *>(ValDictionaryGetValue(all.Get(), which.Get())),
                      kVLFontPropertyName);
    };
    EXPECT_EQ(name(a), "A-Regular");
    EXPECT_EQ(name(b), "B-Regular");
    EXPECT_EQ(name(url), "A-Regular");
}

TEST_F(Listings, CopiesOfNoFontsAreNull) {
    Add("a.ttf", NamedFace{"A"});
    const auto keys = Keys({kVLFontPropertyName});
    EXPECT_FALSE(registry.CopyPropertiesForFonts(Array({}).Get(), keys.Get(), kVLScopeProcess));
    EXPECT_FALSE(registry.CopyPropertiesForFonts(nullptr, keys.Get(), kVLScopeProcess));
    EXPECT_FALSE(registry.CopyPropertyForFonts(Array({}).Get(), kVLFontPropertyName, kVLScopeProcess));
    EXPECT_FALSE(registry.CopyPropertiesForFont(nullptr, keys.Get(), kVLScopeProcess));
}

// ---- copies of all fonts, and of those that match ----

TEST_F(Listings, CopiesOfAllFontsHoldAnEmptyDictionaryForAFaceWithoutAnyValue) {
    Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto all = registry.CopyPropertiesForAllFonts(Keys({kVLFontPropertyUUID}).Get(), kVLScopeProcess);
    ASSERT_EQ(ValArrayGetCount(all.Get()), 2U);
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(ValGetType(At(all, i)), kValTypeDictionary);
        EXPECT_EQ(ValDictionaryGetCount(At(all, i)), 0U);
    }
}

TEST_F(Listings, CopiesOfAllFontsLackWhatTheRegisterSays) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    const auto keys =
        Keys({kVLFontPropertyName, kVLFontPropertyEnabled, kVLFontPropertyScope, kVLFontPropertyPriority});
    const auto all = registry.CopyPropertiesForAllFonts(keys.Get(), kVLScopeProcess);
    ASSERT_EQ(ValArrayGetCount(all.Get()), 1U);
    EXPECT_EQ(ValDictionaryGetCount(At(all, 0)), 1U);
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_FALSE(registry.CopyPropertiesForAllFonts(keys.Get(), kVLScopeProcess));
}

TEST_F(Listings, CopiesOfMatchingFontsAreOneAFaceInTheOrderOfTheAnswers) {
    Add("v.ttf", MakeVariableFont({"V"}, {300, 700}));
    Add("ba.ttc", MakeCollection({{"B"}, {"A"}}));
    const auto urls = registry.CopyFontsForRequest(Request({}).Get(), kVLScopeProcess);
    const auto all = registry.CopyPropertiesForFontsMatchingRequest(
        Request({}).Get(), Keys({kVLFontPropertyURL, kVLFontPropertyScope}).Get(), kVLScopeProcess);
    ASSERT_EQ(ValArrayGetCount(all.Get()), 5U);
    ASSERT_EQ(ValArrayGetCount(urls.Get()), 5U);
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_TRUE(ValEqual(ValDictionaryGetValue(At(all, i), kVLFontPropertyURL),
                             ValArrayGetValue(urls.Get(), i)));
        EXPECT_EQ(ValDictionaryGetCount(At(all, i)), 1U);
    }
}

TEST_F(Listings, CopiesOfMatchingFontsAreTheSameWhenTheFileIsGone) {
    Add("a.ttf", NamedFace{"A"});
    const auto keys = Keys({kVLFontPropertyName, kVLFontPropertyURL, kVLFontPropertyTraits});
    const auto copy = [&] {
        return registry.CopyPropertiesForFontsMatchingRequest(Request({}).Get(), keys.Get(),
                                                              kVLScopeProcess);
    };
    const auto before = copy();
    ASSERT_EQ(ValArrayGetCount(before.Get()), 1U);
    ASSERT_EQ(TextAt(At(before, 0), kVLFontPropertyName), "A-Regular");
    ASSERT_EQ(std::remove(folder.File("a.ttf").c_str()), 0);
    EXPECT_TRUE(ValEqual(copy().Get(), before.Get()));
}

TEST_F(Listings, CopiesOfMatchingFontsHoldAnEmptyDictionaryForAFaceWithoutAnyValue) {
    Add("a.ttf", NamedFace{"A"});
    const auto keys = Keys({kVLFontPropertyUUID});
    const auto all =
        registry.CopyPropertiesForFontsMatchingRequest(Request({}).Get(), keys.Get(), kVLScopeProcess);
    ASSERT_EQ(ValArrayGetCount(all.Get()), 1U);
    EXPECT_EQ(ValDictionaryGetCount(At(all, 0)), 0U);
    const auto one =
        registry.CopyPropertiesForFontMatchingRequest(Request({}).Get(), keys.Get(), kVLScopeProcess);
    ASSERT_TRUE(one);
    EXPECT_EQ(ValDictionaryGetCount(one.Get()), 0U);
}

TEST_F(Listings, CopiesOfWhatMatchesNothingAreNull) {
    Add("a.ttf", NamedFace{"A"});
    const auto nobody = Request({{kVLFontPropertyFamilyName, String("Nobody")}});
    const auto keys = Keys({kVLFontPropertyName});
    EXPECT_FALSE(registry.CopyPropertiesForFontsMatchingRequest(nobody.Get(), keys.Get(), kVLScopeProcess));
    EXPECT_FALSE(registry.CopyPropertiesForFontMatchingRequest(nobody.Get(), keys.Get(), kVLScopeProcess));
}

TEST_F(Listings, TheCopyOfTheOneMatchingFontIsOfTheBest) {
    Add("b.ttf", BoldFont("A", "A-Bold"));
    Add("r.ttf", NamedFace{"A"});
    const auto request = Request({{kVLFontPropertyFamilyName, String("A")}});
    const auto keys = Keys({kVLFontPropertyName, kVLFontPropertyScope, kVLFontPropertyEnabled});
    const auto one =
        registry.CopyPropertiesForFontMatchingRequest(request.Get(), keys.Get(), kVLScopeProcess);
    EXPECT_EQ(TextAt(one.Get(), kVLFontPropertyName), "A-Regular");
    EXPECT_EQ(ValDictionaryGetCount(one.Get()), 1U);
}

TEST_F(Listings, TheDiagnosticSummaryOfARegisterInAProcessIsEmpty) {
    Add("a.ttf", NamedFace{"A"});
    EXPECT_EQ(
        ValDictionaryGetCount(registry.ExperimentalDataFunnel(Request({}).Get(), kVLScopeProcess).Get()),
        0U);
}

} // namespace
} // namespace vellum::test
