// SPDX-License-Identifier: MIT
// What a register in the process answers to a request.
#include "query_fixture.hpp"
#include "values/val_number.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

using RequestSearch = QueryTest;

Ref<const ValDictionary> SymbolicTraits(int32_t bits) {
    return Request({{kVLFontTraitSymbolic, MakeNumber(bits)}});
}

// ---- requests without an indexed key ----

TEST_F(RequestSearch, AnEmptyRequestAnswersEveryFaceInOrder) {
    Add("c.ttf", NamedFace{"Linotype C"});
    Add("b.ttf", NamedFace{"B"});
    Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(Find({}), ElementsAre("A-Regular", "B-Regular", "Linotype C-Regular"));
}

TEST_F(RequestSearch, NoRequestIsLikeAnEmptyOne) {
    Add("b.ttf", NamedFace{"B"});
    Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(NamesIn(registry.CopyFontsForRequest(nullptr, kVLScopeProcess)),
                ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(RequestSearch, AnEmptyRegisterAnswersNothing) {
    EXPECT_FALSE(registry.CopyFontsForRequest(Request({}).Get(), kVLScopeProcess));
    EXPECT_FALSE(registry.CopyFontForRequest(Request({}).Get(), kVLScopeProcess));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")}}), ElementsAre("(null)"));
}

TEST_F(RequestSearch, ADisabledFaceIsNoAnswer) {
    const auto a = Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", NamedFace{"B"});
    ASSERT_TRUE(registry.DisableFont(a.Get(), kVLScopeProcess));
    EXPECT_THAT(Find({}), ElementsAre("B-Regular"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")}}), ElementsAre("(null)"));
    ASSERT_TRUE(registry.EnableFont(a.Get(), kVLScopeProcess));
    EXPECT_THAT(Find({}), ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(RequestSearch, ARequestOfUnindexedKeysAloneLooksAtEveryFace) {
    Add("b.ttf", BoldFont("B", "B-Bold"));
    Add("a.ttf", BoldFont("A", "A-Bold"));
    Add("r.ttf", NamedFace{"A"});
    EXPECT_THAT(Find({{kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitBold)}}),
                ElementsAre("A-Bold", "B-Bold"));
    EXPECT_THAT(Find({{kVLFontPropertyTraits, SymbolicTraits(0)}}),
                ElementsAre("A-Regular", "A-Bold", "B-Bold"));
}

TEST_F(RequestSearch, EveryUnindexedKeyMustHold) {
    Add("a.ttf", BoldFont("A", "A-Bold"));
    Add("b.ttf", FontWith({"B", "Regular", "B Regular", "B"}, 'A', 'Z').Build());
    EXPECT_THAT(Find({{kVLFontPropertyTraits, SymbolicTraits(0)},
                      {kVLFontPropertyCharacterSet, Characters('A', 'Z')}}),
                ElementsAre("B"));
    EXPECT_THAT(Find({{kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitBold)},
                      {kVLFontPropertyCharacterSet, Characters('A', 'Z')}}),
                ElementsAre("(null)"));
}

TEST_F(RequestSearch, NothingIsFoundByWhatTheRegisterAloneSaysOfAFont) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    for (const ValString *key : {kVLFontPropertyEnabled, kVLFontPropertyScope, kVLFontPropertyPriority}) {
        const auto told = registry.CopyPropertyForFonts(Array({url}).Get(), key, kVLScopeProcess);
        const auto value = Ref<const void>::Retain(ValDictionaryGetValue(told.Get(), url.Get()));
        ASSERT_TRUE(value);
        EXPECT_THAT(Find({{key, value}}), ElementsAre("(null)")) << TextOf(key);
        EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")}, {key, value}}), ElementsAre("(null)"));
    }
}

TEST_F(RequestSearch, NothingIsFoundByAnUnknownKeyOrByOneThatNeverMatches) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(Find({{String("no such key").Get(), String("A")}}), ElementsAre("(null)"));
    for (const ValString *key :
         {kVLFontPropertyFormat, kVLFontPropertyFlags, kVLFontPropertyLocalizedNames,
          kVLFontPropertyDesignLanguages, kVLFontPropertyUnicodeRanges, kVLFontPropertyStringEncoding}) {
        const auto told = registry.CopyPropertyForFonts(Array({url}).Get(), key, kVLScopeProcess);
        auto value = Ref<const void>::Retain(ValDictionaryGetValue(told.Get(), url.Get()));
        if (!value) value = String("A");
        EXPECT_THAT(Find({{key, value}}), ElementsAre("(null)")) << TextOf(key);
    }
}

TEST_F(RequestSearch, ARequestOfMoreKeysThanFitOnTheStackIsAnsweredLikeAnyOther) {
    Add("a.ttf", NamedFace{"A"});
    RequestEntries entries;
    std::vector<Ref<const ValString>> keys;
    for (int i = 0; i < 100; ++i) keys.push_back(String("key " + std::to_string(i)));
    for (const auto &key : keys) entries.emplace_back(key.Get(), String("value"));
    EXPECT_THAT(Find(entries), ElementsAre("(null)"));
    entries.emplace_back(kVLFontPropertyFamilyName, String("A"));
    EXPECT_THAT(Find(entries), ElementsAre("(null)"));
}

// ---- one indexed key ----

TEST_F(RequestSearch, IndexedNamesAreFoundWhateverTheirLetterCase) {
    Add("a.ttf", FontNames{"Family", "Style", "Full Name", "PostScript"});
    Add("b.ttf", NamedFace{"Other"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("POSTSCRIPT")}}), ElementsAre("PostScript"));
    EXPECT_THAT(Find({{kVLFontPropertyFullName, String("full name")}}), ElementsAre("PostScript"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("FAMILY")}}), ElementsAre("PostScript"));
    EXPECT_THAT(Find({{kVLFontPropertySubfamilyName, String("style")}}), ElementsAre("PostScript"));
}

TEST_F(RequestSearch, NamesWithoutAnIndexAreFoundToTheLetter) {
    const auto with_version = [](const char *family) {
        auto names = PlainNames(family, "Regular", family);
        names.push_back(WindowsName(5, "Version 2"));
        return FontBuilder().Names(names).Build();
    };
    Add("a.ttf", with_version("A"));
    Add("b.ttf", NamedFace{"B"});
    EXPECT_THAT(Find({{kVLFontPropertyVersionName, String("Version 2")}}), ElementsAre("A"));
    EXPECT_THAT(Find({{kVLFontPropertyVersionName, String("version 2")}}), ElementsAre("(null)"));
}

TEST_F(RequestSearch, AKeyIsKnownByItsText) {
    Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", NamedFace{"B"});
    const auto key = String(TextOf(kVLFontPropertyFamilyName));
    EXPECT_THAT(Find({{key.Get(), String("a")}}), ElementsAre("A-Regular"));
}

TEST_F(RequestSearch, AFileAnswersAllItsFacesAndAFolderAllThatLiesBeneath) {
    const auto url = Add("x/ab.ttc", MakeCollection({{"B"}, {"A"}}));
    Add("x/y/c.ttf", NamedFace{"C"});
    Add("z/d.ttf", NamedFace{"D"});
    EXPECT_THAT(Find({{kVLFontPropertyURL, url}}), ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(Find({{kVLFontPropertyURL, folder.URLOf("x")}}),
                ElementsAre("A-Regular", "B-Regular", "C-Regular"));
}

TEST_F(RequestSearch, TheFragmentOfARequestedURLIsIgnored) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_THAT(Find({{kVLFontPropertyURL, Face(url, "postscript-name=B-Regular")}}),
                ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(Find({{kVLFontPropertyURL, Face(url, "postscript-name=Nobody")}}),
                ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(RequestSearch, AValueOfAnotherKindThanItsIndexHoldsFindsNothing) {
    Add("a.ttf", NamedFace{"A"});
    for (const ValString *key : {kVLFontPropertyName, kVLFontPropertyFullName, kVLFontPropertyFamilyName,
                                 kVLFontPropertySubfamilyName, kVLFontPropertyURL}) {
        EXPECT_THAT(Find({{key, MakeNumber(1)}}), ElementsAre("(null)")) << TextOf(key);
        EXPECT_THAT(Find({{key, Retain(kValBooleanTrue)}}), ElementsAre("(null)")) << TextOf(key);
        EXPECT_THAT(Find({{key, Request({})}}), ElementsAre("(null)")) << TextOf(key);
    }
    EXPECT_THAT(Find({{kVLFontPropertyURL, String("file:///")}}), ElementsAre("(null)"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, folder.URLOf("a.ttf")}}), ElementsAre("(null)"));
}

// ---- a PostScript name that no face has ----

TEST_F(RequestSearch, AnUnknownPostScriptNameMayBeAFamily) {
    Add("b.ttf", BoldFont("Foo", "FooB"));
    Add("a.ttf", FontNames{"Foo", "Regular", "Foo Regular", "FooR"});
    Add("o.ttf", NamedFace{"Other"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("foo")}}), ElementsAre("FooR", "FooB"));
}

TEST_F(RequestSearch, AnUnknownPostScriptNameIsSoughtAmongFamiliesThenFullNamesThenSubfamilies) {
    const auto subfamily = Add("s.ttf", FontNames{"S", "Foo", "S Foo", "S"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Foo")}}), ElementsAre("S"));
    const auto full = Add("f.ttf", FontNames{"F", "Regular", "Foo", "F"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Foo")}}), ElementsAre("F"));
    const auto family = Add("m.ttf", FontNames{"Foo", "Regular", "Foo Regular", "M"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Foo")}}), ElementsAre("M"));
    Add("p.ttf", FontNames{"P", "Regular", "P Regular", "Foo"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Foo")}}), ElementsAre("Foo"));
}

TEST_F(RequestSearch, AFamilyFoundByAPostScriptNameIsStillNarrowedByOtherKeys) {
    Add("b.ttf", BoldFont("Foo", "FooB"));
    Add("a.ttf", FontNames{"Foo", "Regular", "Foo Regular", "FooR"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Foo")},
                      {kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitBold)}}),
                ElementsAre("FooB"));
    EXPECT_THAT(
        Find({{kVLFontPropertyName, String("Foo")}, {kVLFontPropertySubfamilyName, String("Regular")}}),
        ElementsAre("FooR"));
}

TEST_F(RequestSearch, APostScriptNameUnknownEverywhereEndsTheSearch) {
    Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(Find({{kVLFontPropertyName, String("Nobody")}, {kVLFontPropertyFamilyName, String("A")}}),
                ElementsAre("(null)"));
    EXPECT_THAT(
        Find({{kVLFontPropertyName, String("Nobody")}, {kVLFontPropertyURL, folder.URLOf("a.ttf")}}),
        ElementsAre("(null)"));
}

// ---- several indexed keys ----

TEST_F(RequestSearch, IndexedKeysNarrowEachOther) {
    Add("a.ttf", NamedFace{"A", "Regular"});
    Add("b.ttf", NamedFace{"A", "Bold"});
    Add("c.ttf", NamedFace{"B", "Bold"});
    EXPECT_THAT(
        Find({{kVLFontPropertyFamilyName, String("A")}, {kVLFontPropertySubfamilyName, String("Bold")}}),
        ElementsAre("A-Bold"));
    EXPECT_THAT(
        Find({{kVLFontPropertyURL, folder.URLOf("c.ttf")}, {kVLFontPropertySubfamilyName, String("Bold")}}),
        ElementsAre("B-Bold"));
}

TEST_F(RequestSearch, AnUnknownFamilyAnswersNothingThoughOtherKeysWouldMatch) {
    Add("a.ttf", BoldFont("A", "A-Bold"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("Nobody")},
                      {kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitBold)}}),
                ElementsAre("(null)"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("Nobody")}}), ElementsAre("(null)"));
}

TEST_F(RequestSearch, AnUnknownFamilyIsForgivenWhenTheFullNameIsKnown) {
    Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", NamedFace{"B"});
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("Nobody")},
                      {kVLFontPropertyFullName, String("A Regular")}}),
                ElementsAre("A-Regular"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")},
                      {kVLFontPropertyFullName, String("Nobody Regular")}}),
                ElementsAre("A-Regular"));
}

TEST_F(RequestSearch, NamesOfDifferentFacesHaveNoCommonAnswer) {
    Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", NamedFace{"B"});
    EXPECT_THAT(
        Find({{kVLFontPropertyFamilyName, String("A")}, {kVLFontPropertyFullName, String("B Regular")}}),
        ElementsAre("(null)"));
}

TEST_F(RequestSearch, CandidatesThatAnEarlierKeyHasEmptiedAreFilledByTheNext) {
    Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", NamedFace{"B"});
    Add("c.ttf", NamedFace{"C", "Bold"});
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")},
                      {kVLFontPropertyFullName, String("B Regular")},
                      {kVLFontPropertySubfamilyName, String("Bold")}}),
                ElementsAre("C-Bold"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, String("A")},
                      {kVLFontPropertyFullName, String("B Regular")},
                      {kVLFontPropertyURL, folder.URLOf("b.ttf")}}),
                ElementsAre("B-Regular"));
}

TEST_F(RequestSearch, AnUnknownURLEmptiesWhatNamesHaveFound) {
    Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(
        Find({{kVLFontPropertyFamilyName, String("A")}, {kVLFontPropertyURL, folder.URLOf("none.ttf")}}),
        ElementsAre("(null)"));
    EXPECT_THAT(
        Find({{kVLFontPropertyURL, folder.URLOf("none.ttf")}, {kVLFontPropertyFamilyName, String("A")}}),
        ElementsAre("(null)"));
}

TEST_F(RequestSearch, KeysThatAnIndexHasAnsweredAreNotComparedAgain) {
    Add("a.ttf", NamedFace{"A"});
    // Exact comparison would fail for the first, and the rule of the second never matches.
    EXPECT_THAT(
        Find({{kVLFontPropertyFamilyName, String("a")}, {kVLFontPropertySubfamilyName, String("REGULAR")}}),
        ElementsAre("A-Regular"));
}

TEST_F(RequestSearch, CandidatesThatDoNotMatchTheRemainingKeysGoAndAllGoneIsNull) {
    Add("a.ttf", NamedFace{"A", "Regular"});
    Add("b.ttf", BoldFont("A", "A-Bold"));
    const auto family = String("A");
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, family},
                      {kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitBold)}}),
                ElementsAre("A-Bold"));
    EXPECT_THAT(Find({{kVLFontPropertyFamilyName, family},
                      {kVLFontPropertyTraits, SymbolicTraits(kVLFontTraitItalic)}}),
                ElementsAre("(null)"));
}

} // namespace
} // namespace vellum::test
