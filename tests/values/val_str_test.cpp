// SPDX-License-Identifier: MIT
#include "values/val_str.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

TEST(TValStr, IsMadeFromAnyText) {
    EXPECT_EQ(TValStr("abc").View(), "abc");
    EXPECT_EQ(TValStr(std::string("abc")).View(), "abc");
    EXPECT_EQ(TValStr(std::string_view("abc").substr(1)).View(), "bc");
    EXPECT_EQ(TValStr(Adopt(ValStringCreateWithCString("abc"))).View(), "abc");
    EXPECT_TRUE(TValStr(""));
}

TEST(TValStr, OfNothingOrOfWhatIsNoTextIsNone) {
    EXPECT_FALSE(TValStr());
    EXPECT_FALSE(TValStr(static_cast<const char *>(nullptr)));
    EXPECT_FALSE(TValStr("\xFF"));
    EXPECT_EQ(TValStr().View(), "");
    EXPECT_TRUE(TValStr().IsEmpty());
    EXPECT_TRUE(TValStr("").IsEmpty());
    EXPECT_EQ(TValStr().Get(), nullptr);
}

TEST(TValStr, EqualsByText) {
    EXPECT_EQ(TValStr("a"), TValStr("a"));
    EXPECT_FALSE(TValStr("a") == TValStr("b"));
    EXPECT_FALSE(TValStr("") == TValStr()); // the empty text is not none
    EXPECT_EQ(TValStr(), TValStr());
}

TEST(TValStr, CopiesShareTheString) {
    const TValStr a("a");
    const TValStr b = a;
    EXPECT_EQ(a.Get(), b.Get());
    EXPECT_EQ(a.Ref().Get(), a.Get());
}

TEST(TValStr, KnowsItsEnds) {
    EXPECT_TRUE(TValStr("font.ttf").HasPrefix("font"));
    EXPECT_FALSE(TValStr("font.ttf").HasPrefix("Font"));
    EXPECT_TRUE(TValStr("font.ttf").HasSuffix(".ttf"));
    EXPECT_FALSE(TValStr().HasPrefix("a"));
}

TEST(TValStr, TrimsDashesAndThenWhiteSpace) {
    EXPECT_EQ(TValStr("-- Bold Italic \t-").TrimWhitespaceAndDash().View(), "Bold Italic");
    EXPECT_EQ(TValStr("Semi-Bold").TrimWhitespaceAndDash().View(), "Semi-Bold");
    EXPECT_EQ(TValStr("- -").TrimWhitespaceAndDash(), TValStr(""));
    EXPECT_EQ(TValStr(" - Bold").TrimWhitespaceAndDash().View(),
              "- Bold"); // a dash behind white space stays
    EXPECT_EQ(TValStr("-\u3000a").TrimWhitespaceAndDash().View(), "a");
    EXPECT_EQ(TValStr("–a").TrimWhitespaceAndDash().View(), "–a"); // a dash, but not "-"
    EXPECT_FALSE(TValStr().TrimWhitespaceAndDash());
}

TEST(TValStr, TrimsAnotherText) {
    EXPECT_EQ(TValStr("Noto Sans Bold").Trim(TValStr("Noto Sans")).View(), " Bold");
    EXPECT_EQ(TValStr("abc").Trim(TValStr()).View(), "abc");
    EXPECT_EQ(TValStr("  a ").TrimWhitespace().View(), "a");
    EXPECT_FALSE(TValStr().Trim(TValStr("a")));
}

TEST(TValStr, HasALowercaseForm) {
    EXPECT_EQ(TValStr("ÀB").Lowercase().View(), "àb");
    EXPECT_FALSE(TValStr().Lowercase());
}

TEST(TValStr, OfOneTextIsUniqueInTheProcess) {
    const TValStr a = TValStr("a unique text").Unique();
    EXPECT_EQ(TValStr("a unique text").Unique().Get(), a.Get());
    EXPECT_EQ(TValStr::GetUniqueString(TValStr("a unique text").Get()).Get(), a.Get());
    EXPECT_FALSE(TValStr().Unique());
}

} // namespace
} // namespace vellum
