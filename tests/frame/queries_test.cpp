// SPDX-License-Identifier: MIT
// The exported queries for fonts: which registers they ask, how they put two answers together.
#include "query_registers.hpp"
#include "values/val_number.hpp"
#include "values/val_str.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

using Queries = QueryRegisters;

// ---- all fonts for a request ----

TEST_F(Queries, NoRequestAnswersNothingAndMakesNoRegister) {
    for (const VLScope scope : {0U, 1U, 2U, 4U, 7U})
        EXPECT_FALSE(VLCopyFontsWithProperties(nullptr, scope, kNoActivation)) << scope;
    ExpectNoRegister();
}

TEST_F(Queries, AskingNoRegisterAnswersNothingAndMakesNone) {
    EXPECT_FALSE(VLCopyFontsWithProperties(Request({}).Get(), 0, 0));
    EXPECT_FALSE(VLCopyFontWithProperties(Request({}).Get(), 0, 0));
    EXPECT_FALSE(VLCopyFontWithName(String("A").Get(), 0, 0));
    EXPECT_FALSE(VLCopyFontForCharacter('A', 0, 0));
    EXPECT_FALSE(VLCopyAvailableFamilyNames(0));
    EXPECT_FALSE(VLCopyAvailableFontNames(0));
    EXPECT_FALSE(VLCopyAvailableFontURLs(0));
    EXPECT_FALSE(VLCopyFamilyNamesForLanguage(String("en").Get(), 0, 0));
    EXPECT_FALSE(VLCopyPropertiesForAllFonts(Keys({kVLFontPropertyName}).Get(), 0));
    ExpectNoRegister();
}

TEST_F(Queries, AnEmptyRequestAnswersEveryFaceInOrder) {
    AddShared("d.ttf", FontNames{"D", "Regular", "D Regular", "D"});
    AddShared("b.ttf", FontNames{"B", "Regular", "B Regular", "B"});
    Add("c.ttf", FontNames{"C", "Regular", "C Regular", "C"});
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    EXPECT_THAT(FindAll({}), ElementsAre("A", "B", "C", "D"));
    EXPECT_THAT(FindAll({}, kVLScopeProcess), ElementsAre("A", "C"));
    EXPECT_THAT(FindAll({}, kVLScopeUser), ElementsAre("B", "D"));
    EXPECT_THAT(FindAll({}, kVLScopeSession), ElementsAre("B", "D"));
}

TEST_F(Queries, AnswersOfOneRegisterAreAllThereIs) {
    AddShared("b.ttf", FontNames{"B", "Regular", "B Regular", "B"});
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    EXPECT_THAT(FindAll({{kVLFontPropertyFamilyName, String("A")}}), ElementsAre("A"));
    EXPECT_THAT(FindAll({{kVLFontPropertyFamilyName, String("B")}}), ElementsAre("B"));
    EXPECT_THAT(FindAll({{kVLFontPropertyFamilyName, String("C")}}), ElementsAre("(null)"));
}

TEST_F(Queries, AFontOfBothRegistersIsAnsweredTwice) {
    const auto url = AddShared("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(FindAll({{kVLFontPropertyFamilyName, String("A")}}), ElementsAre("A", "A"));
    EXPECT_THAT(FindAll({}), ElementsAre("A", "A"));
}

TEST_F(Queries, OfTwoFontsThatTieTheProcesssComesFirst) {
    AddShared("shared.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    Add("own.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    EXPECT_THAT(Texts(Adopt(VLCopyFontsWithProperties(Request({}).Get(), kVLScopeAll, kNoActivation))),
                ElementsAre(HasSubstr("/own.ttf"), HasSubstr("/shared.ttf")));
}

TEST_F(Queries, UnderARequestForAPostScriptNameTheProcesssFontOfThatNameComesFirst) {
    AddShared("shared.ttf", FontNames{"A", "Regular", "A Regular", "Foo"});
    Add("own.ttf", FontNames{"Z", "Regular", "Z Regular", "Foo"});
    const auto texts = [](const RequestEntries &entries) {
        return Texts(Adopt(VLCopyFontsWithProperties(Request(entries).Get(), kVLScopeAll, kNoActivation)));
    };
    EXPECT_THAT(texts({{kVLFontPropertyName, String("Foo")}}),
                ElementsAre(HasSubstr("/own.ttf"), HasSubstr("/shared.ttf")));
    EXPECT_THAT(texts({}), ElementsAre(HasSubstr("/shared.ttf"), HasSubstr("/own.ttf")));
}

TEST_F(Queries, ThePreferredSubfamilyCountsAcrossTheRegisters) {
    AddShared("shared.ttf", FontNames{"Z", "HEAVY", "Z Heavy", "Z"});
    Add("own.ttf", FontNames{"A", "Heavy", "A Heavy", "A"});
    const auto own = TValStr("HEAVY").Unique().Ref(); // what the library hands out
    EXPECT_THAT(FindAll({{kVLFontPropertySubfamilyName, own}}), ElementsAre("Z", "A"));
    EXPECT_THAT(FindAll({{kVLFontPropertySubfamilyName, String("HEAVY")}}), ElementsAre("A", "Z"));
}

TEST_F(Queries, TheAnswersOfBothRegistersAreMergedInOrder) {
    AddShared("sharedBold.ttf", BoldFont("A", "SharedBold"));
    AddShared("shared.ttf", FontNames{"A", "Regular", "A Regular", "Shared"});
    Add("bold.ttf", BoldFont("A", "OwnBold"));
    Add("own.ttf", FontNames{"A", "Regular", "A Regular", "Own"});
    EXPECT_THAT(FindAll({{kVLFontPropertyFamilyName, String("A")}}),
                ElementsAre("Own", "Shared", "OwnBold", "SharedBold"));
}

TEST_F(Queries, EachRegisterFallsBackToOtherNamesForItself) {
    AddShared("a.ttf", FontNames{"Foo", "Regular", "Foo Regular", "Shared"});
    Add("b.ttf", FontNames{"B", "Regular", "B Regular", "Foo"});
    EXPECT_THAT(FindAll({{kVLFontPropertyName, String("Foo")}}), UnorderedElementsAre("Foo", "Shared"));
}

TEST_F(Queries, WhatIsFoundDoesNotDependOnTheActivationOptions) {
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    const auto request = Request({{kVLFontPropertyFamilyName, String("A")}});
    for (const VLActivationOptions options : {0U, 0x10000U, 0x20000U, 0x30000U, 0xFFFFFFFFU}) {
        EXPECT_THAT(NamesIn(Adopt(VLCopyFontsWithProperties(request.Get(), kVLScopeProcess, options))),
                    ElementsAre("A"));
        EXPECT_EQ(NameIn(Adopt(VLCopyFontWithProperties(request.Get(), kVLScopeProcess, options))), "A");
        EXPECT_EQ(NameIn(Adopt(VLCopyFontWithName(String("A").Get(), kVLScopeProcess, options))), "A");
    }
}

// ---- one font ----

TEST_F(Queries, OneFontIsOfTheProcessWhenItHasAnyHoweverGoodTheShared) {
    AddShared("a.ttf", FontNames{"Foo", "Regular", "Foo Regular", "Shared"});
    AddShared("b.ttf", FontNames{"Bar", "Regular", "Bar Regular", "SharedBar"});
    Add("b.ttf", BoldFont("Foo", "Own"));
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Foo")}}), "Own");
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Bar")}}), "SharedBar");
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Foo")}}, kVLScopeUser), "Shared");
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Bar")}}, kVLScopeProcess), "(null)");
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Nobody")}}), "(null)");
}

TEST_F(Queries, OneFontIsTheFirstOfAllOfItsRegister) {
    Add("b.ttf", BoldFont("A", "Bold"));
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "Regular"});
    EXPECT_EQ(Find({}, kVLScopeProcess), "Regular");
    EXPECT_EQ(Find({}, kVLScopeProcess), FindAll({}, kVLScopeProcess).front());
}

TEST_F(Queries, ARegisterThatIsNotNeededIsNotMade) {
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "A"});
    EXPECT_EQ(Find({}), "A");
    EXPECT_EQ(Named("A"), "A");
    EXPECT_EQ(Drawing('A', kVLScopeAll), "A");
    EXPECT_FALSE(TGlobalGlyphary::IsCreated());
}

// ---- names ----

TEST_F(Queries, NoNameAnswersNothingAndMakesNoRegister) {
    EXPECT_FALSE(VLCopyFontWithName(nullptr, kVLScopeAll, kNoActivation));
    ExpectNoRegister();
}

TEST_F(Queries, AFamilyOfTheProcessGoesBeforeASharedPostScriptName) {
    AddShared("a.ttf", FontNames{"A", "Regular", "A Regular", "Foo"});
    AddShared("b.ttf", FontNames{"B", "Regular", "B Regular", "Bar"});
    Add("o.ttf", FontNames{"Foo", "Regular", "Foo Regular", "Own"});
    EXPECT_EQ(Named("Foo"), "Own");
    EXPECT_EQ(Named("Foo", kVLScopeSession), "Foo");
    EXPECT_EQ(Named("bar"), "Bar");
    EXPECT_EQ(Named("Bar", kVLScopeProcess), "(null)");
    EXPECT_EQ(Named("Regular"), "(null)"); // a subfamily
}

} // namespace
} // namespace vellum::test
