// SPDX-License-Identifier: MIT
// The exported listings, copies of properties and the summary, over both registers.
#include "query_registers.hpp"
#include "values/val_number.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

using QueryCopies = QueryRegisters;

// ---- listings ----

TEST_F(QueryCopies, ListingsHoldWhatBothRegistersHaveOnce) {
    const auto url = AddShared("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    Add("b.ttf", FontNames{"A", "Bold", "A Bold", "B"});
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeAll))), ElementsAre("A"));
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFontNames(kVLScopeAll))), ElementsAre("A", "B"));
    EXPECT_THAT(NamesIn(Adopt(VLCopyAvailableFontURLs(kVLScopeAll))), UnorderedElementsAre("A", "B"));
}

TEST_F(QueryCopies, FamiliesAreSortedLikeTextAndPostScriptNamesByTheirCharacters) {
    const char *const families[] = {"#Hidden", "Linotype Foo", "foo 10", "Foo 2", "bar", "Adobe Zed"};
    for (const char *family : families)
        Add(std::string(family) + ".ttf", FontNames{family, "R", family, family});
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeProcess))),
                ElementsAre("bar", "Foo 2", "foo 10", "Adobe Zed", "Linotype Foo", "#Hidden"));
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFontNames(kVLScopeProcess))),
                ElementsAre("#Hidden", "Adobe Zed", "Foo 2", "Linotype Foo", "bar", "foo 10"));
}

TEST_F(QueryCopies, FamiliesForALanguageAreThoseOfBothRegistersOnceAndSorted) {
    const auto latin = [](const char *family, const char *name) {
        return FontBuilder()
            .Names(PlainNames(family, "Regular", name))
            .Characters({{0x20, 0x7E}, {0xA0, 0x17F}, {0x2010, 0x203A}})
            .Build();
    };
    AddShared("b.ttf", latin("Beta", "SharedBeta"));
    AddShared("l.ttf", latin("Linotype Beta", "L"));
    Add("z.ttf", latin("zeta", "Z"));
    Add("b.ttf", latin("Beta", "Beta"));
    Add("a.ttf", latin("Alpha", "A"));
    Add("letter.ttf", FontNames{"Letter", "Regular", "Letter Regular", "Letter"});
    const auto families = [](const char *language, VLScope scope, uint32_t reserved) {
        return Texts(Adopt(VLCopyFamilyNamesForLanguage(String(language).Get(), scope, reserved)));
    };
    EXPECT_THAT(families("en", kVLScopeAll, 0), ElementsAre("Alpha", "Beta", "zeta", "Linotype Beta"));
    EXPECT_THAT(families("en", kVLScopeProcess, 7), ElementsAre("Alpha", "Beta", "zeta"));
    EXPECT_THAT(families("en", kVLScopeUser, 0xFFFFFFFF), ElementsAre("Beta", "Linotype Beta"));
    EXPECT_FALSE(VLCopyFamilyNamesForLanguage(String("en-ZZ").Get(), kVLScopeAll, 0));
    EXPECT_FALSE(VLCopyFamilyNamesForLanguage(nullptr, kVLScopeAll, 0));
}

// ---- properties ----

TEST_F(QueryCopies, ADisabledFontOfTheProcessAnswersOnlyWhenAskedWhetherItIsEnabled) {
    const auto url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    EXPECT_FALSE(VLCopyPropertiesForFont(url.Get(), Keys({kVLFontPropertyName}).Get(), kVLScopeProcess));
    const auto told = Adopt(VLCopyPropertiesForFont(
        url.Get(), Keys({kVLFontPropertyName, kVLFontPropertyEnabled}).Get(), kVLScopeProcess));
    EXPECT_EQ(TextOf(ValDictionaryGetValue(told.Get(), kVLFontPropertyName)), "A");
    EXPECT_TRUE(ValEqual(ValDictionaryGetValue(told.Get(), kVLFontPropertyEnabled), MakeNumber(0).Get()));
}

TEST_F(QueryCopies, AFontOfTheProcessSaysItsScopeAndThePriorityBeforeAllOthers) {
    const auto url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    const auto told = Adopt(VLCopyPropertiesForFont(
        url.Get(), Keys({kVLFontPropertyScope, kVLFontPropertyPriority}).Get(), kVLScopeAll));
    EXPECT_TRUE(ValEqual(ValDictionaryGetValue(told.Get(), kVLFontPropertyScope), MakeNumber(1).Get()));
    EXPECT_TRUE(
        ValEqual(ValDictionaryGetValue(told.Get(), kVLFontPropertyPriority), MakeNumber(60000).Get()));
}

TEST_F(QueryCopies, CopiesWithoutKeysOrFontsAreNull) {
    const auto url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    const auto urls = Array({url});
    const auto keys = Keys({kVLFontPropertyName});
    EXPECT_FALSE(VLCopyPropertiesForFont(url.Get(), nullptr, kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFont(url.Get(), Keys({}).Get(), kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFont(nullptr, keys.Get(), kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFonts(urls.Get(), nullptr, kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFonts(nullptr, keys.Get(), kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFonts(Array({}).Get(), keys.Get(), kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForAllFonts(nullptr, kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertyForFonts(urls.Get(), nullptr, kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertyForFonts(nullptr, kVLFontPropertyName, kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertyForFonts(Array({}).Get(), kVLFontPropertyName, kVLScopeAll));
}

TEST_F(QueryCopies, AFontThatIsDisabledInTheProcessIsCopiedFromTheShared) {
    const auto url = AddShared("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    const auto name = Keys({kVLFontPropertyName});
    EXPECT_FALSE(VLCopyPropertiesForFont(url.Get(), name.Get(), kVLScopeProcess));
    EXPECT_TRUE(Adopt(VLCopyPropertiesForFont(url.Get(), name.Get(), kVLScopeAll)));
    // The process has an answer to this one, and gives it.
    const auto told =
        Adopt(VLCopyPropertiesForFont(url.Get(), Keys({kVLFontPropertyEnabled}).Get(), kVLScopeAll));
    EXPECT_EQ(ReadSInt64(ValDictionaryGetValue(told.Get(), kVLFontPropertyEnabled)), 0);
}

TEST_F(QueryCopies, CopiesOfAllFontsHoldOneDictionaryAFaceThoughItBeEmpty) {
    AddShared("s.ttf", FontNames{"S", "Regular", "S Regular", "S"});
    Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto all = Adopt(VLCopyPropertiesForAllFonts(
        Keys({kVLFontPropertyScope, kVLFontPropertyEnabled, kVLFontPropertyPriority}).Get(), kVLScopeAll));
    ASSERT_EQ(ValArrayGetCount(all.Get()), 3U);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(ValDictionaryGetCount(As<ValDictionary>(ValArrayGetValue(all.Get(), i))), 0U);
}

// ---- diagnosis ----

TEST_F(QueryCopies, TheSummaryIsADictionaryWhateverIsAsked) {
    for (const VLScope scope : {0U, 1U, 2U, 4U, 7U}) {
        const auto without = Adopt(VLExperimentalDataFunnel(nullptr, scope));
        ASSERT_EQ(ValGetType(without.Get()), kValTypeDictionary) << scope;
        EXPECT_EQ(ValDictionaryGetCount(without.Get()), 0U) << scope;
        const auto with = Adopt(VLExperimentalDataFunnel(Request({}).Get(), scope));
        ASSERT_EQ(ValGetType(with.Get()), kValTypeDictionary) << scope;
    }
}

TEST_F(QueryCopies, TheSummaryHasTheFontsOfTheProcessUnderTheNumberOne) {
    Add("b.ttf", FontNames{"B", "Bold", "B Bold", "PB"});
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "PA"});
    for (const auto &query : {Ref<const ValDictionary>(), Request({})}) {
        const auto summary = Adopt(VLExperimentalDataFunnel(query.Get(), kVLScopeProcess));
        ASSERT_EQ(ValDictionaryGetCount(summary.Get()), 1U);
        const auto *fonts =
            As<ValArray>(ValDictionaryGetValue(summary.Get(), MakeNumber(int32_t{1}).Get()));
        ASSERT_EQ(ValArrayGetCount(fonts), 2U);
        const auto *first = As<ValDictionary>(ValArrayGetValue(fonts, 0));
        EXPECT_EQ(TextOf(ValDictionaryGetValue(first, kVLFontPropertyName)), "PB");
        EXPECT_EQ(TextOf(ValDictionaryGetValue(first, kVLFontPropertyFamilyName)), "B");
        EXPECT_EQ(TextOf(ValDictionaryGetValue(first, kVLFontPropertySubfamilyName)), "Bold");
        for (const ValString *key :
             {kVLFontPropertyURL, kVLFontPropertyTraits, kVLFontPropertyLocalizedNames})
            EXPECT_TRUE(ValDictionaryContainsKey(first, key)) << TextOf(key);
        for (const ValString *key :
             {kVLFontPropertyFullName, kVLFontPropertyCharacterSet, kVLFontPropertyEnabled})
            EXPECT_FALSE(ValDictionaryContainsKey(first, key)) << TextOf(key);
    }
    EXPECT_EQ(ValDictionaryGetCount(Adopt(VLExperimentalDataFunnel(nullptr, 0)).Get()), 0U);
}

TEST_F(QueryCopies, TheSummaryOfTheProcessLeavesDisabledFontsOut) {
    const auto url = Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    EXPECT_EQ(ValDictionaryGetCount(Adopt(VLExperimentalDataFunnel(nullptr, kVLScopeProcess)).Get()), 0U);
}

} // namespace
} // namespace vellum::test
