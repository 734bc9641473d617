// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;

constexpr ValCompareOptions kFold = kValCompareCaseInsensitive;
constexpr ValCompareOptions kNumeric = kValCompareNumeric;

int Compare(const StringRef &a, const StringRef &b, ValCompareOptions options = kValCompareExact) {
    return ValStringCompare(a.Get(), b.Get(), options);
}

int Compare(std::string_view a, std::string_view b, ValCompareOptions options = kValCompareExact) {
    return Compare(S(a), S(b), options);
}

TEST(ExactOrder, IsThatOfCodePoints) {
    EXPECT_EQ(Compare("a", "b"), -1);
    EXPECT_EQ(Compare("b", "a"), 1);
    EXPECT_EQ(Compare("a", "a"), 0);
    EXPECT_EQ(Compare("Z", "a"), -1);
    EXPECT_EQ(Compare("a", "é"), -1);
    EXPECT_EQ(Compare("\uFFFD", "\U00010000"), -1); // not as UTF-16 units sort
}

TEST(ExactOrder, PutsAPrefixFirst) {
    EXPECT_EQ(Compare("", "a"), -1);
    EXPECT_EQ(Compare("ab", "abc"), -1);
    EXPECT_EQ(Compare("a", "a\0"sv), -1);
}

TEST(Order, PutsNullFirst) {
    EXPECT_EQ(ValStringCompare(nullptr, nullptr, 0), 0);
    EXPECT_EQ(ValStringCompare(nullptr, S("").Get(), 0), -1);
    EXPECT_EQ(ValStringCompare(S("").Get(), nullptr, kFold), 1);
}

TEST(Order, IgnoresTheOptionOfSearches) {
    EXPECT_EQ(Compare("a", "b", kValCompareBackwards), -1);
}

TEST(CaseInsensitiveOrder, FoldsFully) {
    EXPECT_EQ(Compare("Noto SANS", "noto sans", kFold), 0);
    EXPECT_EQ(Compare("STRASSE", "straße", kFold), 0);
    EXPECT_EQ(Compare("ΣΊΣΥΦΟΣ", "σίσυφος", kFold), 0);
    EXPECT_EQ(Compare("\u212A", "k", kFold), 0);       // Kelvin sign
    EXPECT_EQ(Compare("\u0130", "i\u0307", kFold), 0); // dotted capital I
    EXPECT_EQ(Compare("\uFB03", "FFI", kFold), 0);     // ligature
    EXPECT_EQ(Compare("\u1FB3", "\u03B1\u03B9", kFold), 0);
    EXPECT_EQ(Compare("\u13A0", "\uAB70", kFold), 0); // Cherokee folds to capitals
    EXPECT_NE(Compare("\u0131", "i", kFold), 0);      // the dotless i is a letter of its own
}

TEST(CaseInsensitiveOrder, IsThatOfFoldedText) {
    EXPECT_EQ(Compare("a", "B", kFold), -1);
    EXPECT_EQ(Compare("B", "a", kFold), 1);
    EXPECT_EQ(Compare("Z_", "za", kFold), -1); // "_" stands before "a"
    EXPECT_EQ(Compare("ab", "ABC", kFold), -1);
    EXPECT_EQ(Compare("ß", "ss", kFold), 0);
    EXPECT_EQ(Compare("ß", "st", kFold), -1);
    EXPECT_EQ(Compare("ß", "s", kFold), 1);
}

TEST(NumericOrder, ComparesRunsOfDigitsByValue) {
    EXPECT_EQ(Compare("font2", "font10", kNumeric), -1);
    EXPECT_EQ(Compare("font10", "font2", kNumeric), 1);
    EXPECT_EQ(Compare("font2b", "font2a", kNumeric), 1);
    EXPECT_EQ(Compare("1.9", "1.10", kNumeric), -1);
    EXPECT_EQ(Compare("10a2", "10a10", kNumeric), -1);
}

TEST(NumericOrder, IgnoresLeadingZeros) {
    EXPECT_EQ(Compare("a007", "a7", kNumeric), 0);
    EXPECT_EQ(Compare("a007b", "a7c", kNumeric), -1);
    EXPECT_EQ(Compare("000", "0", kNumeric), 0);
    EXPECT_EQ(Compare("a0", "a", kNumeric), 1);
}

TEST(NumericOrder, HasNoLargestNumber) {
    std::string large(400, '9');
    std::string larger = "1" + std::string(400, '0');
    EXPECT_EQ(Compare(large, larger, kNumeric), -1);
    EXPECT_EQ(Compare("x" + larger, "x" + large, kNumeric), 1);
}

TEST(NumericOrder, ComparesADigitWithALetterByCodePoint) {
    EXPECT_EQ(Compare("9", "a", kNumeric), -1);
    EXPECT_EQ(Compare("/", "9", kNumeric), -1);
    EXPECT_EQ(Compare("12", "1a", kNumeric), 1); // 12 is more than 1
}

TEST(NumericOrder, KnowsOnlyAsciiDigits) {
    EXPECT_EQ(Compare("\u0662", "\u0661\u0660", kNumeric), 1);
}

TEST(NumericOrder, CombinesWithCase) {
    EXPECT_EQ(Compare("FONT2", "font10", kFold | kNumeric), -1);
    EXPECT_EQ(Compare("Straße 07", "STRASSE 7", kFold | kNumeric), 0);
}

TEST(InvalidUnicode, ComparesByBytesAndBehindAllText) {
    auto upper = Name("A\xFF");
    auto lower = Name("a\xFF");
    EXPECT_EQ(Compare(upper, lower, kFold), -1);
    EXPECT_EQ(Compare(Name("a\xFF"), Name("a\xFF"), kFold), 0);
    EXPECT_EQ(Compare(Name("x10\xFF"), Name("x2\xFF"), kNumeric), -1);
    EXPECT_EQ(Compare(S("z"), upper, kFold), -1);
    EXPECT_EQ(Compare(upper, S("z"), kFold), 1);
    EXPECT_EQ(Compare(upper, S("z")), -1); // exactly
}

TEST(EveryOrder, IsAnOrder) {
    std::vector<StringRef> all;
    for (auto text : {""sv,   "a"sv, "A"sv,          "ab"sv, "AB"sv, "a1"sv,   "a01"sv, "a10"sv, "a2"sv,
                      "A2"sv, "1"sv, "01"sv,         "2"sv,  "10"sv, "ß"sv,    "ss"sv,  "SS"sv,  "st"sv,
                      "é"sv,  "É"sv, "\U0001D11E"sv, "-"sv,  "~"sv,  "a\0b"sv, "a\0"sv, "a\0c"sv}) {
        all.push_back(S(text));
    }
    for (auto bytes : {"A\xFF"sv, "a\xFF"sv, "B\xFF"sv, "\x80"sv}) all.push_back(Name(bytes));
    all.push_back(Utf16({'a', 0xD800}));
    for (ValCompareOptions options = 0; options < 8; ++options) {
        for (auto &a : all) {
            for (auto &b : all) {
                EXPECT_EQ(Compare(a, b, options), -Compare(b, a, options));
                for (auto &c : all) {
                    if (Compare(a, b, options) > 0 || Compare(b, c, options) > 0) continue;
                    EXPECT_LE(Compare(a, c, options), 0)
                        << options << " " << TextOf(a) << " " << TextOf(b) << " " << TextOf(c);
                }
            }
        }
    }
}

} // namespace
} // namespace vellum
