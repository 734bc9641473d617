// SPDX-License-Identifier: MIT
// The search through the indexes, step by step.
#include "query_fixture.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class SearchIndexes : public QueryTest {
protected:
    // What the search has come to.
    bool Key(const ValString *key) {
        return registry.SearchIndexForRequest(key, request, candidates, indexed);
    }
    bool All() { return registry.SearchIndexedFontsForRequest(request, candidates, indexed); }
    void Ask(const ValString *key, const char *name) { request.Set(key, String(name).Get()); }

    std::vector<FontReference> Candidates() const {
        return References(Retain(static_cast<const ValSet *>(candidates.Get())));
    }
    FontReference Of(const Ref<const ValURL> &url) const { return registry.GetFontReference(url.Get()); }

    Ref<const ValURL> a = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "PA"});
    Ref<const ValURL> b = Add("b.ttf", FontNames{"B", "Regular", "B Regular", "PB"});
    Ref<const ValURL> c = Add("c.ttf", FontNames{"A", "Bold", "A Bold", "PC"});

    TValMutableDict request;
    TValMutableSet candidates{kValRawCallbacks};
    bool indexed = false;
};

// ---- one key ----

TEST_F(SearchIndexes, AKeyThatIsNotRequestedChangesNothing) {
    Ask(kVLFontPropertyFullName, "A Regular");
    EXPECT_FALSE(Key(kVLFontPropertyFamilyName));
    EXPECT_FALSE(indexed);
    EXPECT_EQ(request.Count(), 1U);
    EXPECT_THAT(Candidates(), IsEmpty());
}

TEST_F(SearchIndexes, AKeyWithoutAnIndexStaysInTheRequest) {
    Ask(kVLFontPropertyVersionName, "1");
    EXPECT_FALSE(Key(kVLFontPropertyVersionName));
    EXPECT_FALSE(indexed);
    EXPECT_EQ(request.Count(), 1U);
}

TEST_F(SearchIndexes, AKeyThatIsFoundGivesCandidatesAndLeavesTheRequest) {
    Ask(kVLFontPropertyFamilyName, "a");
    EXPECT_TRUE(Key(kVLFontPropertyFamilyName));
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), UnorderedElementsAre(Of(a), Of(c)));
}

TEST_F(SearchIndexes, AKeyThatIsNotFoundLeavesTheRequestAndTheCandidatesStay) {
    Ask(kVLFontPropertyFamilyName, "Nobody");
    candidates.Add(AsItem(Of(b)));
    EXPECT_FALSE(Key(kVLFontPropertyFamilyName));
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), ElementsAre(Of(b)));
}

TEST_F(SearchIndexes, CandidatesAreNarrowedToWhatTheIndexHas) {
    Ask(kVLFontPropertySubfamilyName, "Regular");
    candidates.Add(AsItem(Of(a)));
    candidates.Add(AsItem(Of(c)));
    EXPECT_TRUE(Key(kVLFontPropertySubfamilyName));
    EXPECT_THAT(Candidates(), ElementsAre(Of(a)));
}

TEST_F(SearchIndexes, AKeyIsFoundThoughItLeavesNoCandidate) {
    Ask(kVLFontPropertySubfamilyName, "Bold");
    candidates.Add(AsItem(Of(a)));
    EXPECT_TRUE(Key(kVLFontPropertySubfamilyName));
    EXPECT_TRUE(indexed);
    EXPECT_THAT(Candidates(), IsEmpty());
}

TEST_F(SearchIndexes, CandidatesLeftEmptyAreFilledAgain) {
    Ask(kVLFontPropertySubfamilyName, "Bold");
    Ask(kVLFontPropertyFullName, "B Regular");
    candidates.Add(AsItem(Of(a)));
    EXPECT_TRUE(Key(kVLFontPropertySubfamilyName));
    ASSERT_THAT(Candidates(), IsEmpty());
    EXPECT_TRUE(Key(kVLFontPropertyFullName));
    EXPECT_THAT(Candidates(), ElementsAre(Of(b)));
}

TEST_F(SearchIndexes, TheFlagThatIsUpStaysUp) {
    indexed = true;
    EXPECT_FALSE(Key(kVLFontPropertyFamilyName));
    EXPECT_TRUE(indexed);
}

TEST_F(SearchIndexes, WhatTheIndexHoldsIsNotChangedByTheSearch) {
    Ask(kVLFontPropertyFamilyName, "A");
    ASSERT_TRUE(Key(kVLFontPropertyFamilyName));
    Ask(kVLFontPropertyFullName, "A Bold");
    ASSERT_TRUE(Key(kVLFontPropertyFullName));
    ASSERT_THAT(Candidates(), ElementsAre(Of(c)));
    EXPECT_EQ(References(registry.GetIndex(kFamilyNameIndex)->CopyFontsForKey(String("A").Get())).size(),
              2U);
}

// ---- all keys ----

TEST_F(SearchIndexes, AnEmptyRequestLowersTheFlagAndFindsNothing) {
    indexed = true;
    EXPECT_FALSE(All());
    EXPECT_FALSE(indexed);
}

TEST_F(SearchIndexes, ARequestWithoutIndexedKeysLowersTheFlagAndStaysWhole) {
    indexed = true;
    Ask(kVLFontPropertyVersionName, "1");
    Ask(kVLFontPropertyCopyrightName, "2");
    EXPECT_FALSE(All());
    EXPECT_FALSE(indexed);
    EXPECT_EQ(request.Count(), 2U);
}

TEST_F(SearchIndexes, AKnownPostScriptNameIsFound) {
    Ask(kVLFontPropertyName, "pb");
    EXPECT_TRUE(All());
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), ElementsAre(Of(b)));
}

TEST_F(SearchIndexes, AFamilyIsFoundUnderAPostScriptName) {
    Ask(kVLFontPropertyName, "a");
    EXPECT_TRUE(All());
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), UnorderedElementsAre(Of(a), Of(c)));
}

TEST_F(SearchIndexes, AnUnknownPostScriptNameLeavesTheOtherKeysUnresolved) {
    Ask(kVLFontPropertyName, "Nobody");
    Ask(kVLFontPropertyFamilyName, "A");
    EXPECT_FALSE(All());
    EXPECT_TRUE(indexed);
    EXPECT_EQ(request.Count(), 1U);
    EXPECT_TRUE(ValDictionaryContainsKey(request.Get(), kVLFontPropertyFamilyName));
}

TEST_F(SearchIndexes, AnUnknownNameOfAnotherKindRaisesTheFlagAndFindsNothing) {
    for (const ValString *key :
         {kVLFontPropertyFamilyName, kVLFontPropertyFullName, kVLFontPropertySubfamilyName}) {
        Ask(key, "Nobody");
        EXPECT_FALSE(All()) << TextOf(key);
        EXPECT_TRUE(indexed) << TextOf(key);
        EXPECT_TRUE(request.IsEmpty()) << TextOf(key);
        EXPECT_THAT(Candidates(), IsEmpty()) << TextOf(key);
    }
}

TEST_F(SearchIndexes, AMissAmongTheNamesDoesNotEndTheSearch) {
    Ask(kVLFontPropertyFamilyName, "Nobody");
    Ask(kVLFontPropertyFullName, "Nobody");
    Ask(kVLFontPropertySubfamilyName, "Bold");
    EXPECT_TRUE(All());
    EXPECT_TRUE(indexed);
    EXPECT_THAT(Candidates(), ElementsAre(Of(c)));
}

TEST_F(SearchIndexes, NamesThatShareNoFaceLeaveNothing) {
    Ask(kVLFontPropertyFamilyName, "A");
    Ask(kVLFontPropertyFullName, "B Regular");
    EXPECT_FALSE(All());
    EXPECT_TRUE(indexed);
    EXPECT_THAT(Candidates(), IsEmpty());
}

TEST_F(SearchIndexes, AURLNarrowsWhatTheNamesHaveFound) {
    Ask(kVLFontPropertyFamilyName, "A");
    request.Set(kVLFontPropertyURL, c.Get());
    EXPECT_TRUE(All());
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), ElementsAre(Of(c)));
}

TEST_F(SearchIndexes, AURLAloneIsFound) {
    request.Set(kVLFontPropertyURL, c.Get());
    EXPECT_TRUE(All());
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    EXPECT_THAT(Candidates(), ElementsAre(Of(c)));
}

TEST_F(SearchIndexes, AnUnknownURLEmptiesTheCandidatesAndRaisesTheFlag) {
    request.Set(kVLFontPropertyURL, folder.URLOf("none.ttf").Get());
    EXPECT_FALSE(All());
    EXPECT_TRUE(indexed);
    EXPECT_TRUE(request.IsEmpty());
    Ask(kVLFontPropertyFamilyName, "A");
    request.Set(kVLFontPropertyURL, folder.URLOf("none.ttf").Get());
    EXPECT_FALSE(All());
    EXPECT_TRUE(indexed);
    EXPECT_THAT(Candidates(), IsEmpty());
}

TEST_F(SearchIndexes, KeysWithoutAnIndexStayBesideThoseThatAreResolved) {
    Ask(kVLFontPropertyVersionName, "1");
    Ask(kVLFontPropertyFamilyName, "B");
    request.Set(kVLFontPropertyURL, b.Get());
    EXPECT_TRUE(All());
    EXPECT_EQ(request.Count(), 1U);
    EXPECT_TRUE(ValDictionaryContainsKey(request.Get(), kVLFontPropertyVersionName));
}

// ---- names in several indexes ----

TEST_F(SearchIndexes, OfSeveralIndexesTheFirstThatHasANameAnswers) {
    Add("d.ttf", FontNames{"PB", "A", "B Regular", "B"});
    const auto first = [&](uint16_t from, uint16_t to, const char *name) {
        return References(registry.SearchNameIndicesForFonts(from, to, String(name).Get()));
    };
    const FontReference d = Of(folder.URLOf("d.ttf"));
    EXPECT_THAT(first(1, 4, "PB"), ElementsAre(Of(b)));
    EXPECT_THAT(first(2, 4, "PB"), ElementsAre(d));
    EXPECT_THAT(first(2, 2, "PB"), IsEmpty());
    EXPECT_THAT(first(1, 4, "b regular"), UnorderedElementsAre(Of(b), d));
    EXPECT_THAT(first(1, 3, "A"), UnorderedElementsAre(Of(a), Of(c)));
    EXPECT_THAT(first(4, 4, "A"), ElementsAre(d));
    EXPECT_FALSE(registry.SearchNameIndicesForFonts(1, 4, String("Nobody").Get()));
    EXPECT_FALSE(registry.SearchNameIndicesForFonts(4, 1, String("A").Get()));
    EXPECT_FALSE(registry.SearchNameIndicesForFonts(1, 4, nullptr));
}

TEST_F(SearchIndexes, APostScriptNameIsSoughtAmongFullNamesThenFamiliesThenSubfamilies) {
    const auto search = [&](uint16_t kind, const char *name) {
        return References(registry.SearchIndexedFontsForName(kind, String(name).Get()));
    };
    EXPECT_THAT(search(1, "PA"), IsEmpty()); // it is not asked for itself
    EXPECT_THAT(search(1, "bold"), ElementsAre(Of(c)));
    const auto family = Add("f.ttf", FontNames{"Bold", "X", "Bold X", "F"});
    EXPECT_THAT(search(1, "bold"), ElementsAre(Of(family)));
    const auto full = Add("g.ttf", FontNames{"G", "X", "Bold", "G"});
    EXPECT_THAT(search(1, "bold"), ElementsAre(Of(full)));
}

TEST_F(SearchIndexes, NamesOfOtherKindsAreSoughtNowhereElse) {
    for (const uint16_t kind : std::initializer_list<uint16_t>{0, 2, 3, 4, 5, 6, 0xFFFF})
        EXPECT_FALSE(registry.SearchIndexedFontsForName(kind, String("A").Get())) << kind;
    EXPECT_FALSE(registry.SearchIndexedFontsForName(1, String("Nobody").Get()));
    EXPECT_FALSE(registry.SearchIndexedFontsForName(1, nullptr));
}

} // namespace
} // namespace vellum::test
