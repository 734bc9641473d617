// SPDX-License-Identifier: MIT
// The order in which a register in the process answers a request.
#include "query_fixture.hpp"
#include "values/val_number.hpp"

#include <cstdio>

namespace vellum::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

using RequestOrder = QueryTest;

Ref<const ValDictionary> SymbolicTraits(int32_t bits) {
    return Request({{kVLFontTraitSymbolic, MakeNumber(bits)}});
}

TEST_F(RequestOrder, TheBestAnswerIsTheFirstOfAll) {
    Add("b.ttf", BoldFont("A", "A-Bold"));
    Add("r.ttf", NamedFace{"A"});
    EXPECT_EQ(NameIn(registry.CopyFontForRequest(Request({{kVLFontPropertyFamilyName, String("A")}}).Get(),
                                                 kVLScopeProcess)),
              "A-Regular");
    EXPECT_FALSE(registry.CopyFontForRequest(Request({{kVLFontPropertyFamilyName, String("Nobody")}}).Get(),
                                             kVLScopeProcess));
}

TEST_F(RequestOrder, FacesOfOneRequestedPostScriptNameStandInTheOrderOfRegistration) {
    Add("z.ttf", FontNames{"Z", "Regular", "Z Regular", "Foo"});
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "Foo"});
    const auto found = registry.CopyFontsForRequest(Request({{kVLFontPropertyName, String("Foo")}}).Get(),
                                                    kVLScopeProcess);
    EXPECT_THAT(Texts(found), ElementsAre(::testing::HasSubstr("/z.ttf"), ::testing::HasSubstr("/a.ttf")));
}

TEST_F(RequestOrder, TheSubfamilyObjectThatTheLibraryHandedOutIsPreferred) {
    Add("a.ttf", FontNames{"A", "Heavy", "A Heavy", "A"});
    const auto z = Add("z.ttf", FontNames{"Z", "HEAVY", "Z Heavy", "Z"});
    const auto told =
        registry.CopyPropertyForFonts(Array({z}).Get(), kVLFontPropertySubfamilyName, kVLScopeProcess);
    const auto own = Ref<const void>::Retain(ValDictionaryGetValue(told.Get(), z.Get()));
    ASSERT_EQ(TextOf(own), "HEAVY");
    EXPECT_THAT(Find({{kVLFontPropertySubfamilyName, own}}), ElementsAre("Z", "A"));
    EXPECT_THAT(Find({{kVLFontPropertySubfamilyName, String("HEAVY")}}), ElementsAre("A", "Z"));
}

TEST_F(RequestOrder, ManyAnswersAreSortedLikeFew) {
    constexpr int kCount = 67;
    for (int i = 0; i < kCount; ++i) {
        const int number = i * 13 % kCount; // each once, in no order
        const std::string text = std::to_string(number);
        Add("f" + text + ".ttf", FontNames{"Foo", "Cut " + text, "Foo Cut " + text, "Foo" + text});
    }
    std::vector<std::string> expected;
    for (int i = 0; i < kCount; ++i) expected.push_back("Foo" + std::to_string(i));
    EXPECT_EQ(Find({{kVLFontPropertyFamilyName, String("Foo")}}), expected);
}

TEST_F(RequestOrder, TwoRegistersWithTheSameFontsInTheSameOrderAnswerAlike) {
    TLocalGlypharyImp other;
    for (int i = 0; i < 60; ++i) {
        Os2Fields os2;
        os2.weight_class = static_cast<uint16_t>(100 + i * 37 % 9 * 100);
        os2.width_class = static_cast<uint16_t>(1 + i * 5 % 9);
        const std::string text = std::to_string(i);
        const auto url = Add(
            "f" + text + ".ttf",
            FontWith({"Foo", "Regular", "Foo Regular", "Foo" + text}).Table("OS/2", Os2Table(os2)).Build());
        ASSERT_TRUE(other.RegisterFont(url.Get(), nullptr, 0, kVLScopeProcess));
    }
    for (const auto &request : {Request({}), Request({{kVLFontPropertyFamilyName, String("Foo")}}),
                                Request({{kVLFontPropertyTraits, SymbolicTraits(0)}}),
                                Request({{kVLFontPropertyURL, FileURL(folder.Path())}})}) {
        const auto names = NamesIn(registry.CopyFontsForRequest(request.Get(), kVLScopeProcess));
        EXPECT_EQ(names.size(), 60U);
        EXPECT_EQ(NamesIn(other.CopyFontsForRequest(request.Get(), kVLScopeProcess)), names);
        EXPECT_EQ(NamesIn(registry.CopyFontsForRequest(request.Get(), kVLScopeProcess)), names);
    }
}

TEST_F(RequestOrder, TheScopeIsNotRead) {
    Add("a.ttf", NamedFace{"A"});
    for (const VLScope scope : {0U, 1U, 6U, 0xFFFFFFFFU}) {
        EXPECT_THAT(NamesIn(registry.CopyFontsForRequest(Request({}).Get(), scope)), Each("A-Regular"));
        EXPECT_EQ(NameIn(registry.CopyFontForRequest(Request({}).Get(), scope)), "A-Regular");
    }
}

TEST_F(RequestOrder, ARequestIsLeftAsItWas) {
    Add("a.ttf", NamedFace{"A"});
    const auto request =
        Request({{kVLFontPropertyFamilyName, String("A")}, {kVLFontPropertyTraits, SymbolicTraits(0)}});
    EXPECT_TRUE(registry.CopyFontsForRequest(request.Get(), kVLScopeProcess));
    EXPECT_EQ(ValDictionaryGetCount(request.Get()), 2U);
}

TEST_F(RequestOrder, AFontIsAnsweredThoughItsFileIsGone) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    ASSERT_EQ(std::remove(folder.File("a.ttf").c_str()), 0);
    EXPECT_THAT(
        Texts(registry.CopyFontsForRequest(Request({{kVLFontPropertyURL, url}}).Get(), kVLScopeProcess)),
        ElementsAre(TextOf(ValURLGetString(url.Get()))));
}

} // namespace
} // namespace vellum::test
