// SPDX-License-Identifier: MIT
// The font of a name, of a character, of a URL, in a register in the process.
#include "query_fixture.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Lookups : public QueryTest {
protected:
    std::string Named(const char *name, VLScope scope = kVLScopeProcess) {
        return NameIn(registry.CopyFontForName(String(name).Get(), scope));
    }
    std::string Drawing(uint32_t character, uint32_t options = kVLScopeProcess, uint32_t reserved = 0) {
        return NameIn(registry.CopyFontForCharacter(character, options, reserved));
    }
    std::vector<std::string> At(const Ref<const ValURL> &url) {
        return NamesIn(registry.CopyFontsForURL(url.Get(), kVLScopeProcess));
    }
};

// ---- names ----

TEST_F(Lookups, APostScriptNameGoesBeforeAnotherFontsFamily) {
    Add("a.ttf", FontNames{"Foo", "Regular", "Foo Regular", "A"});
    Add("b.ttf", FontNames{"B", "Regular", "B Regular", "Foo"});
    EXPECT_EQ(Named("Foo"), "Foo");
}

TEST_F(Lookups, NamesAreSoughtAmongPostScriptNamesThenFullNamesThenFamilies) {
    Add("family.ttf", FontNames{"Foo", "Regular", "Foo Regular", "Family"});
    EXPECT_EQ(Named("Foo"), "Family");
    Add("full.ttf", FontNames{"Z", "Regular", "Foo", "Full"});
    EXPECT_EQ(Named("Foo"), "Full");
    Add("postscript.ttf", FontNames{"Z", "Regular", "Z Regular", "Foo"});
    EXPECT_EQ(Named("Foo"), "Foo");
}

TEST_F(Lookups, ASubfamilyNameFindsNothing) {
    Add("a.ttf", FontNames{"A", "Foo", "A Foo", "AFoo"});
    EXPECT_EQ(Named("Foo"), "(null)");
}

TEST_F(Lookups, NamesAreFoundWhateverTheirLetterCase) {
    Add("a.ttf", FontNames{"Foo", "Bold", "The Foo", "FooBold"});
    EXPECT_EQ(Named("foobold"), "FooBold");
    EXPECT_EQ(Named("THE FOO"), "FooBold");
    EXPECT_EQ(Named("fOO"), "FooBold");
}

TEST_F(Lookups, ANameThatNoFaceHasFindsNothing) {
    EXPECT_EQ(Named("Foo"), "(null)");
    Add("a.ttf", NamedFace{"A"});
    EXPECT_EQ(Named("Foo"), "(null)");
    EXPECT_EQ(Named(""), "(null)");
    EXPECT_FALSE(registry.CopyFontForName(nullptr, kVLScopeProcess));
}

TEST_F(Lookups, OfAFamilyTheBestFaceIsTheOneOfTheName) {
    Add("b.ttf", BoldFont("Foo", "FooBold"));
    Add("r.ttf", FontNames{"Foo", "Regular", "Foo Regular", "FooRegular"});
    EXPECT_EQ(Named("Foo"), "FooRegular");
}

TEST_F(Lookups, OfFacesWithOnePostScriptNameTheFirstRegisteredIsTheOneOfTheName) {
    Add("z.ttf", FontNames{"Z", "Regular", "Z Regular", "Foo"});
    Add("a.ttf", FontNames{"A", "Regular", "A Regular", "Foo"});
    EXPECT_THAT(
        TextOf(ValURLGetString(registry.CopyFontForName(String("Foo").Get(), kVLScopeProcess).Get())),
        HasSubstr("/z.ttf"));
}

TEST_F(Lookups, ADisabledFaceIsNotTheOneOfItsName) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    Add("b.ttf", FontNames{"A-Regular", "Regular", "A-Regular Regular", "B"});
    ASSERT_EQ(Named("A-Regular"), "A-Regular");
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_EQ(Named("A-Regular"), "B");
}

TEST_F(Lookups, TheScopeOfANameIsNotRead) {
    Add("a.ttf", NamedFace{"A"});
    for (const VLScope scope : {0U, 2U, 0xFFFFFFFFU}) EXPECT_EQ(Named("A", scope), "A-Regular");
}

// ---- characters ----

TEST_F(Lookups, ARegisterWithoutFontsDrawsNothing) {
    EXPECT_EQ(Drawing('A'), "(null)");
    const auto url = Add("a.ttf", NamedFace{"A"});
    ASSERT_EQ(Drawing('A'), "A-Regular");
    registry.UnregisterFont(url.Get(), kVLScopeProcess);
    EXPECT_EQ(Drawing('A'), "(null)");
}

TEST_F(Lookups, TheBestOfTheFontsWithACharacterDrawsIt) {
    Add("b.ttf", FontWith({"B", "Regular", "B Regular", "B"}, 'A', 'Z').Build());
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 'M', 'Z').Build());
    Add("l.ttf", FontWith({"Linotype A", "Regular", "Linotype A", "L"}, 'a', 'z').Build());
    EXPECT_EQ(Drawing('A'), "B");
    EXPECT_EQ(Drawing('Z'), "A");
    EXPECT_EQ(Drawing('z'), "L");
    EXPECT_EQ(Drawing('0'), "(null)");
}

TEST_F(Lookups, ARegularFaceDrawsBeforeABoldOne) {
    Add("b.ttf", BoldFont("A", "A-Bold"));
    Add("r.ttf", NamedFace{"A"});
    EXPECT_EQ(Drawing('A'), "A-Regular");
}

TEST_F(Lookups, TheFontEndstopDrawsNothing) {
    Add("e.ttf", FontWith({"A", "Regular", "A Regular", "Endstop"}).Build());
    EXPECT_EQ(Drawing('A'), "(null)");
    Add("z.ttf", FontWith({"Z", "Regular", "Z Regular", "Z"}).Build());
    EXPECT_EQ(Drawing('A'), "Z");
    EXPECT_EQ(Named("Endstop"), "Endstop");
}

TEST_F(Lookups, CharactersOfHigherPlanesAreDrawn) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 0x1F600, 0x1F64F).Build());
    Add("b.ttf", FontWith({"B", "Regular", "B Regular", "B"}, 0x10FFFD, 0x10FFFD).Build());
    EXPECT_EQ(Drawing(0x1F600), "A");
    EXPECT_EQ(Drawing(0x1F64F), "A");
    EXPECT_EQ(Drawing(0x1F650), "(null)");
    EXPECT_EQ(Drawing(0xF600), "(null)");
    EXPECT_EQ(Drawing(0x10FFFD), "B");
}

TEST_F(Lookups, WhatIsNoCharacterIsNotDrawn) {
    Add("a.ttf", FontWith({"A", "Regular", "A Regular", "A"}, 0, 0x2FF).Build());
    EXPECT_EQ(Drawing(0x110000), "(null)");
    EXPECT_EQ(Drawing(0x110041), "(null)");
    EXPECT_EQ(Drawing(0xFFFFFFFF), "(null)");
}

TEST_F(Lookups, OptionsAndTheThirdWordOfACharacterAreNotRead) {
    Add("a.ttf", NamedFace{"A"});
    for (const uint32_t word : {0U, 6U, 0xFFFFFFFFU}) EXPECT_EQ(Drawing('A', word, word), "A-Regular");
}

TEST_F(Lookups, ADisabledFontDrawsNothingUntilItComesBack) {
    const auto url = Add("a.ttf", NamedFace{"A"});
    ASSERT_EQ(Drawing('A'), "A-Regular");
    registry.DisableFont(url.Get(), kVLScopeProcess);
    EXPECT_EQ(Drawing('A'), "(null)");
    registry.EnableFont(url.Get(), kVLScopeProcess);
    EXPECT_EQ(Drawing('A'), "A-Regular");
}

// ---- URLs ----

TEST_F(Lookups, AFilesURLAnswersEveryFaceInOrder) {
    const auto url = Add("ab.ttc", MakeCollection({{"C"}, {"A"}, {"B"}}));
    EXPECT_THAT(At(url), ElementsAre("A-Regular", "B-Regular", "C-Regular"));
}

TEST_F(Lookups, AFragmentAnswersItsFaceAlone) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_THAT(At(Face(url, "postscript-name=B-Regular")), ElementsAre("B-Regular"));
    EXPECT_THAT(At(Face(url, "postscript-name=b-REGULAR")), ElementsAre("B-Regular"));
    EXPECT_THAT(At(Face(url, "family-name=a")), ElementsAre("A-Regular"));
    EXPECT_THAT(At(Face(url, "subfamily-name=regular")), ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(At(Face(url, "postscript-name=Nobody")), ElementsAre("(null)"));
}

TEST_F(Lookups, AFragmentThatSelectsNothingAnswersEveryFace) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_THAT(At(Face(url, "")), ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(At(Face(url, "page=2")), ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(Lookups, AFragmentsEscapesAreDecoded) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_THAT(At(Face(url, "postscript%2Dname%3DB%2DRegular")), ElementsAre("B-Regular"));
    EXPECT_THAT(At(Face(url, "family-name=A%3Bfamily-name=B")), ElementsAre("(null)"));
}

TEST_F(Lookups, AFragmentAnswersAnInstanceByItsPlace) {
    const auto url = Add("v.ttf", MakeVariableFont({"V"}, {300, 700}));
    const auto all = registry.CopyFontsForURL(url.Get(), kVLScopeProcess);
    EXPECT_EQ(ValArrayGetCount(all.Get()), 3U);
    const auto bold = Texts(registry.CopyFontsForURL(Face(url, "var:wght=700").Get(), kVLScopeProcess));
    EXPECT_THAT(bold, ElementsAre(HasSubstr("var:wght=700")));
    EXPECT_EQ(Texts(registry.CopyFontsForURL(Face(url, "var:wght=699.995").Get(), kVLScopeProcess)), bold);
    EXPECT_THAT(At(Face(url, "var:wght=699.9")), ElementsAre("(null)"));
    EXPECT_THAT(At(Face(url, "var:wdth=100")), ElementsAre("(null)"));
}

TEST_F(Lookups, TheURLOfAnAnswerAnswersItself) {
    Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    Add("v.ttf", MakeVariableFont({"V"}, {300, 700}));
    const auto all = registry.CopyFontsForRequest(nullptr, kVLScopeProcess);
    ASSERT_EQ(ValArrayGetCount(all.Get()), 5U);
    for (size_t i = 0; i < 5; ++i) {
        const auto *url = static_cast<const ValURL *>(ValArrayGetValue(all.Get(), i));
        EXPECT_THAT(Texts(registry.CopyFontsForURL(url, kVLScopeProcess)),
                    ElementsAre(TextOf(ValURLGetString(url))));
    }
}

TEST_F(Lookups, ARelativeURLIsResolved) {
    Add("a.ttf", NamedFace{"A"});
    const auto base = FileURL(folder.Path() + "/x");
    EXPECT_THAT(At(Adopt(ValURLCreateWithString(String("a.ttf").Get(), base.Get()))),
                ElementsAre("A-Regular"));
    EXPECT_THAT(At(Adopt(ValURLCreateWithString(String("a.ttf#postscript-name=Nobody").Get(), base.Get()))),
                ElementsAre("(null)"));
}

TEST_F(Lookups, AURLWithoutAPathAnswersNothing) {
    Add("a.ttf", NamedFace{"A"});
    EXPECT_THAT(At(MakeURL("http://example.org/a.ttf")), ElementsAre("(null)"));
    EXPECT_FALSE(registry.CopyFontsForURL(nullptr, kVLScopeProcess));
    const auto data = AsData(MakeFont({"Memory"}));
    ASSERT_TRUE(registry.RegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto memory = registry.CopyURLForDataFont(data.Get(), 0);
    ASSERT_TRUE(memory);
    EXPECT_THAT(At(memory), ElementsAre("(null)"));
}

TEST_F(Lookups, AFolderAnswersWhatLiesBeneathItAndAFragmentPicksFromThat) {
    Add("x/b.ttf", NamedFace{"B"});
    Add("x/y/a.ttf", NamedFace{"A"});
    Add("c.ttf", NamedFace{"C"});
    EXPECT_THAT(At(folder.URLOf("x")), ElementsAre("A-Regular", "B-Regular"));
    EXPECT_THAT(At(Face(folder.URLOf("x"), "family-name=b")), ElementsAre("B-Regular"));
}

TEST_F(Lookups, FontsThatAreNotThereOrDisabledAreNotAtTheirURL) {
    const auto url = Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    EXPECT_THAT(At(folder.URLOf("none.ttf")), ElementsAre("(null)"));
    registry.DisableFont(Face(url, "postscript-name=A-Regular").Get(), kVLScopeProcess);
    EXPECT_THAT(At(url), ElementsAre("B-Regular"));
    EXPECT_THAT(At(Face(url, "postscript-name=A-Regular")), ElementsAre("(null)"));
}

} // namespace
} // namespace vellum::test
