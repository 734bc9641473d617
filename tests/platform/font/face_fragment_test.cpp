// SPDX-License-Identifier: MIT
// URLs of faces, and their way back to the faces.
#include "asking.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

FontBuilder Named(std::string_view postscript_name) {
    return FontBuilder().Names(PlainNames("Family", "Regular", postscript_name));
}

class FaceFragment : public testing::Test {
protected:
    std::vector<std::string> NamesAt(const std::string &fragment) const {
        return PostScriptNames(FontsAt(MakeURL(Str(FileURL(path_)) + '#' + fragment)));
    }
    std::string URLOf(size_t index) const { return Str(GxFontCopyURL(FaceOf(FontsAt(path_), index))); }

    const TempDir folder_;
    std::string path_;
};

class CollectionFragment : public FaceFragment {
protected:
    CollectionFragment() {
        path_ =
            folder_.Write("a.ttc", BuildCollection({Named("One"), Named("Two#%;=x y"), Named("Three")}));
    }
};

class VariableFragment : public FaceFragment {
protected:
    VariableFragment() { path_ = folder_.Write("v.ttf", VariableFont().Build()); }
};

TEST_F(FaceFragment, IsAbsentFromTheURLOfAnOnlyFace) {
    path_ = folder_.Write("a b.ttf", FontBuilder().Build());
    EXPECT_EQ(URLOf(0), Str(FileURL(path_)));
}

TEST_F(FaceFragment, IsTakenOffTheURLThatWasGiven) {
    path_ = folder_.Write("a.ttf", FontBuilder().Build());
    const auto fonts = FontsAt(MakeURL(Str(FileURL(path_)) + "#size=12"));
    EXPECT_EQ(Str(GxFontCopyURL(FaceOf(fonts))), Str(FileURL(path_)));
}

TEST_F(FaceFragment, IsMadeFromTheAbsoluteURL) {
    folder_.Write("a.ttf", FontBuilder().Build());
    const auto base = MakeURL("file://" + folder_.Path() + "/");
    const auto url = Adopt(ValURLCreateWithString(Val("a.ttf").Get(), base.Get()));
    const auto own = GxFontCopyURL(FaceOf(FontsAt(url)));
    EXPECT_EQ(Str(own), "file://" + folder_.File("a.ttf"));
    EXPECT_EQ(ValURLGetBase(own.Get()), nullptr);
}

TEST_F(CollectionFragment, NamesTheFace) {
    EXPECT_THAT(URLOf(0), EndsWith("a.ttc#postscript-name=One"));
}

TEST_F(CollectionFragment, EscapesWhatSeparates) {
    EXPECT_THAT(URLOf(1), EndsWith("#postscript-name=Two%23%25%3B%3Dx%20y"));
}

TEST_F(CollectionFragment, LeadsBackToTheFace) {
    const auto all = FontsAt(path_);
    for (size_t i = 0; i < 3; ++i) {
        const auto found = FontsAt(GxFontCopyURL(FaceOf(all, i)));
        ASSERT_EQ(ValArrayGetCount(found.Get()), 1u);
        EXPECT_EQ(FaceOf(found), FaceOf(all, i));
    }
}

TEST_F(CollectionFragment, SelectsWithoutRegardToLetterCase) {
    EXPECT_THAT(NamesAt("postscript-name=tHREE"), ElementsAre("Three"));
}

TEST_F(CollectionFragment, OfAnUnknownNameGivesNull) {
    EXPECT_FALSE(FontsAt(MakeURL(Str(FileURL(path_)) + "#postscript-name=Four")));
}

TEST_F(CollectionFragment, OfOtherParametersSelectsNothing) {
    EXPECT_THAT(NamesAt("size=12;full-name=Nobody"), testing::SizeIs(3));
    EXPECT_THAT(NamesAt(""), testing::SizeIs(3));
}

TEST_F(CollectionFragment, SkipsParametersThatAreNotTwoPieces) {
    EXPECT_THAT(NamesAt("postscript-name=Four=x;postscript-name;postscript-name=Three"),
                ElementsAre("Three"));
}

TEST_F(CollectionFragment, DecodesAfterSplitting) {
    EXPECT_THAT(NamesAt("postscript%2Dname=%54hree;x=y"), ElementsAre("Three"));
    EXPECT_THAT(NamesAt("postscript-name=One%3Bx"), testing::IsEmpty());
}

TEST_F(CollectionFragment, WithAnAxisFitsNoOrdinaryFace) {
    EXPECT_THAT(NamesAt("var:wght=400"), testing::IsEmpty());
    EXPECT_THAT(NamesAt("postscript-name=One;var:wght=400"), testing::IsEmpty());
}

TEST_F(VariableFragment, OfTheDefaultFaceIsItsName) {
    EXPECT_THAT(URLOf(0), EndsWith("#postscript-name=Test-Regular"));
}

TEST_F(VariableFragment, OfAnInstanceTellsEveryAxis) {
    EXPECT_THAT(URLOf(1), EndsWith("#postscript-name=Test-BoldStated;var:wght=700;var:wdth=100"));
}

TEST_F(VariableFragment, LeadsBackToTheInstance) {
    const auto all = FontsAt(path_);
    EXPECT_EQ(FaceOf(FontsAt(GxFontCopyURL(FaceOf(all, 2)))), FaceOf(all, 2));
}

TEST_F(VariableFragment, SelectsByAxisTag) {
    EXPECT_THAT(NamesAt("var:wght=700"), ElementsAre("Test-BoldStated"));
}

TEST_F(VariableFragment, SelectsByAxisName) {
    EXPECT_THAT(NamesAt("var:Width=75"), ElementsAre("Test-VeryNarrow"));
}

TEST_F(VariableFragment, SelectsTheFirstFaceThatFits) {
    EXPECT_THAT(NamesAt("var:wght=400"), ElementsAre("Test-Regular"));
}

TEST_F(VariableFragment, AllowsLessThanAHundredthOfDifference) {
    EXPECT_THAT(NamesAt("var:wght=699.995"), ElementsAre("Test-BoldStated"));
    EXPECT_THAT(NamesAt("var:wght=699.9"), testing::IsEmpty());
}

TEST_F(VariableFragment, ReadsAnUnreadableNumberAsZero) {
    EXPECT_THAT(NamesAt("var:wght=bold"), testing::IsEmpty());
    const TempDir folder;
    path_ = folder.Write("z.ttf",
                         FontBuilder().Table("fvar", FvarTable({{"slnt", -10, 0, 0, 300}}, {})).Build());
    EXPECT_THAT(NamesAt("var:slnt=bold"), ElementsAre("Test-Regular"));
}

TEST_F(VariableFragment, FailsForAnAxisThatTheFaceDoesNotHave) {
    EXPECT_THAT(NamesAt("var:opsz=12"), testing::IsEmpty());
}

TEST_F(FaceFragment, WritesNumbersInTheirShortestForm) {
    std::vector<NameRecord> names = PlainNames("A", "Regular", "A-Regular");
    names.push_back(WindowsName(300, "Odd"));
    path_ = folder_.Write("v.ttf",
                          FontBuilder()
                              .Names(names)
                              .Table("fvar", FvarTable({{"a;b ", -100, 0, 100, 301}}, {{300, {-12.25}}}))
                              .Build());
    EXPECT_THAT(URLOf(1), EndsWith("#postscript-name=A-Odd;var:a%3Bb%20=-12.25"));
    EXPECT_THAT(NamesAt("var:a%3Bb%20=-12.25"), ElementsAre("A-Odd"));
}

} // namespace
} // namespace vellum::test
