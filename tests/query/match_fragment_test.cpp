// SPDX-License-Identifier: MIT
#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

class MatchesFragment : public ::testing::Test {
protected:
    static bool Plain(const char *fragment) {
        return TClientFontEntity(TGxFont(AsData(MakeFont({"Foo", "Bold"})).Get()).Font())
            .MatchesFragment(String(fragment).Get());
    }

    // The instance of weight 700 of a variable font.
    bool Instance(const char *fragment) const {
        const auto url = folder.Add("v.ttf", MakeVariableFont({"V"}, {700}));
        const auto fonts = CreateFontsFromURL(url.Get());
        const auto *instance = static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), 1));
        return TClientFontEntity(Retain(instance)).MatchesFragment(String(fragment).Get());
    }

    FontFolder folder;
};

TEST_F(MatchesFragment, ComparesNamesWithoutCase) {
    EXPECT_TRUE(Plain("postscript-name=FOO-bold"));
    EXPECT_TRUE(Plain("family-name=foo"));
    EXPECT_TRUE(Plain("full-name=foo bold"));
    EXPECT_TRUE(Plain("subfamily-name=BOLD"));
    EXPECT_FALSE(Plain("postscript-name=Foo"));
    EXPECT_FALSE(Plain("subfamily-name="));
}

TEST_F(MatchesFragment, WantsEveryParameterToFit) {
    EXPECT_TRUE(Plain("family-name=Foo;subfamily-name=Bold"));
    EXPECT_FALSE(Plain("family-name=Foo;subfamily-name=Light"));
}

TEST_F(MatchesFragment, PassesOverWhatSelectsNothing) {
    EXPECT_TRUE(Plain(""));
    EXPECT_TRUE(Plain("page=3"));
    EXPECT_TRUE(Plain("postscript-name"));
    EXPECT_TRUE(Plain("postscript-name=a=b"));
    EXPECT_TRUE(Plain("Postscript-Name=Other"));
    EXPECT_TRUE(Plain(";;"));
}

TEST_F(MatchesFragment, ComparesPlacesOnAxesByNameOrTagWithinAHundredth) {
    EXPECT_TRUE(Instance("var:wght=700"));
    EXPECT_TRUE(Instance("var:Weight=700"));
    EXPECT_TRUE(Instance("var:wght=699.995"));
    EXPECT_FALSE(Instance("var:wght=699.9"));
    EXPECT_FALSE(Instance("var:wght=400"));
    EXPECT_FALSE(Instance("var:wdth=100"));
}

TEST_F(MatchesFragment, ReadsAnAxisValueThatIsNoNumberAsZero) {
    EXPECT_FALSE(Instance("var:wght=bold"));
    EXPECT_TRUE(Instance("var:wght=7e2"));
    EXPECT_FALSE(Instance("var:wght=7,00"));
}

TEST_F(MatchesFragment, AFontWithoutVariationsFailsAnyAxis) {
    EXPECT_FALSE(Plain("var:wght=400"));
}

} // namespace
} // namespace vellum::test
