// SPDX-License-Identifier: MIT
#include "describe/font_entity.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

int Compare(const char *a, const char *b) {
    return TFontEntity::CompareFamilyNames(String(a).Get(), String(b).Get());
}

TEST(CompareFamilyNames, AMissingNameComesFirst) {
    const auto name = String("Foo");
    EXPECT_EQ(TFontEntity::CompareFamilyNames(nullptr, name.Get()), -1);
    EXPECT_EQ(TFontEntity::CompareFamilyNames(name.Get(), nullptr), 1);
    EXPECT_EQ(TFontEntity::CompareFamilyNames(nullptr, nullptr), 0);
}

TEST(CompareFamilyNames, ANameWithoutAFoundryComesBeforeOneWith) {
    EXPECT_EQ(Compare("Zapf", "Linotype Zapf"), -1);
    EXPECT_EQ(Compare("Adobe Garamond", "Zapf"), 1);
}

TEST(CompareFamilyNames, FoundriesComeInTheOrderOfTheTable) {
    const char *const order[] = {"Adobe X",   "Orrery X",   "Bauer X",    "Berthold X", "Bitstream X",
                                 "ITC X",     "Linotype X", "Monotype X", "PMN X",      "Simoncini X",
                                 "Stempel X", "URW X",      "WTC X",      "#X"};
    for (size_t i = 0; i + 1 < std::size(order); ++i) {
        EXPECT_EQ(Compare(order[i], order[i + 1]), -1) << order[i];
        EXPECT_EQ(Compare(order[i + 1], order[i]), 1) << order[i];
    }
}

TEST(CompareFamilyNames, APrefixNeedsItsLetterCaseAndNoWordBoundary) {
    EXPECT_EQ(Compare("ITCH", "Zapf"), 1);
    EXPECT_EQ(Compare("itc Zapf", "Zapf"), -1);
}

TEST(CompareFamilyNames, TheRestIsComparedWithoutCaseAndByNumber) {
    EXPECT_EQ(Compare("Foo 2", "foo 10"), -1);
    EXPECT_EQ(Compare("FOO", "foo"), 0);
    EXPECT_EQ(Compare("Monotype Foo 10", "Monotype Foo 9"), 1);
}

TEST(ComparePostScriptNames, IsPlain) {
    const auto upper = String("Z"), lower = String("a");
    EXPECT_EQ(TFontEntity::ComparePostScriptNames(upper.Get(), lower.Get()), -1);
}

} // namespace
} // namespace vellum::test
