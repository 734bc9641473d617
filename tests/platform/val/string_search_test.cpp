// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gmock/gmock.h>

#include <optional>

namespace vellum {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;

constexpr ValCompareOptions kFold = kValCompareCaseInsensitive;
constexpr ValCompareOptions kBackwards = kValCompareBackwards;

using Place = std::pair<size_t, size_t>;

std::optional<Place> Find(const StringRef &text, const StringRef &sought, ValCompareOptions options = 0) {
    ValRange found{};
    if (!ValStringFind(text.Get(), sought.Get(), options, &found)) return std::nullopt;
    return Place(found.offset, found.length);
}

std::optional<Place> Find(std::string_view text, std::string_view sought, ValCompareOptions options = 0) {
    return Find(S(text), S(sought), options);
}

TEST(Find, GivesTheFirstPlaceOrTheLast) {
    EXPECT_EQ(Find("abcabc", "bc"), Place(1, 2));
    EXPECT_EQ(Find("abcabc", "bc", kBackwards), Place(4, 2));
    EXPECT_EQ(Find("aaa", "aa", kBackwards), Place(1, 2));
    EXPECT_EQ(Find("abc", "abc"), Place(0, 3));
    EXPECT_EQ(Find("abc", "abcd"), std::nullopt);
    EXPECT_EQ(Find("abc", "x", kBackwards), std::nullopt);
}

TEST(Find, CountsBytes) {
    EXPECT_EQ(Find("éa\U0001D11Eb", "b"), Place(7, 1));
}

TEST(Find, FindsTheEmptyStringNowhere) {
    EXPECT_EQ(Find("abc", ""), std::nullopt);
    EXPECT_EQ(Find("", ""), std::nullopt);
    EXPECT_EQ(Find("abc", "", kFold), std::nullopt);
}

TEST(Find, LeavesThePlaceAloneWhenThereIsNone) {
    ValRange found{7, 8};
    EXPECT_FALSE(ValStringFind(S("a").Get(), S("b").Get(), 0, &found));
    EXPECT_EQ(found.offset, 7u);
    EXPECT_TRUE(ValStringFind(S("a").Get(), S("a").Get(), 0, nullptr));
}

TEST(Find, FindsNothingInNullAndNoNull) {
    EXPECT_FALSE(ValStringFind(nullptr, S("a").Get(), 0, nullptr));
    EXPECT_FALSE(ValStringFind(S("a").Get(), nullptr, 0, nullptr));
}

TEST(Find, NeverCutsACharacter) {
    EXPECT_EQ(Find(S("\u00E9"), Name("\xA9")), std::nullopt);
    EXPECT_EQ(Find(S("\u00E9"), Name("\xA9"), kBackwards), std::nullopt);
    EXPECT_EQ(Find(Name("\u00E9\xA9"), Name("\xA9")), Place(2, 1));
    EXPECT_EQ(Find(Name("\xA9\u00E9"), Name("\xA9"), kBackwards), Place(0, 1));
    EXPECT_EQ(Find(S("\u00E9"), Name("\xC3")), std::nullopt);
}

TEST(CaseInsensitiveFind, GivesThePlaceInTheOriginalText) {
    EXPECT_EQ(Find("Noto SANS", "sans", kFold), Place(5, 4));
    EXPECT_EQ(Find("GROẞ und groß", "gross", kFold), Place(0, 6));
    EXPECT_EQ(Find("GROẞ und groß", "GROSS", kFold | kBackwards), Place(11, 5));
    EXPECT_EQ(Find("maß", "SS", kFold), Place(2, 2));
    EXPECT_EQ(Find("Masse", "ß", kFold), Place(2, 2));
    EXPECT_EQ(Find("x\u0130", "\u0130", kFold), Place(1, 2));
}

TEST(CaseInsensitiveFind, TakesACharacterWholeOrNotAtAll) {
    EXPECT_EQ(Find("ß", "s", kFold), std::nullopt);
    EXPECT_EQ(Find("aß", "as", kFold), std::nullopt);
    EXPECT_EQ(Find("ßs", "s", kFold), Place(2, 1));
    EXPECT_EQ(Find("ßs", "ss", kFold), Place(0, 2));
    EXPECT_EQ(Find("sß", "ss", kFold), Place(1, 2));
}

TEST(CaseInsensitiveFind, SeesBytesThatAreNoText) {
    EXPECT_EQ(Find(Name("A\xFF"), Name("a\xFF"), kFold), Place(0, 2));
    EXPECT_EQ(Find(Name("A\xFF"), Name("\xFE"), kFold), std::nullopt);
}

bool HasPrefix(std::string_view a, std::string_view b) {
    return ValStringHasPrefix(S(a).Get(), S(b).Get());
}
bool HasSuffix(std::string_view a, std::string_view b) {
    return ValStringHasSuffix(S(a).Get(), S(b).Get());
}

TEST(PrefixAndSuffix, CompareExactly) {
    EXPECT_TRUE(HasPrefix("file:///a", "file:"));
    EXPECT_FALSE(HasPrefix("File:///a", "file:"));
    EXPECT_FALSE(HasPrefix("fi", "file:"));
    EXPECT_TRUE(HasSuffix("a.ttf", ".ttf"));
    EXPECT_FALSE(HasSuffix("a.TTF", ".ttf"));
    EXPECT_FALSE(HasSuffix("ttf", ".ttf"));
}

TEST(PrefixAndSuffix, MayBeEmptyButNotNull) {
    EXPECT_TRUE(HasPrefix("a", "") && HasSuffix("a", "") && HasPrefix("", "") && HasSuffix("", ""));
    EXPECT_FALSE(ValStringHasPrefix(S("a").Get(), nullptr));
    EXPECT_FALSE(ValStringHasSuffix(nullptr, S("").Get()));
}

TEST(PrefixAndSuffix, NeverCutACharacter) {
    EXPECT_FALSE(ValStringHasPrefix(S("é").Get(), Name("\xC3").Get()));
    EXPECT_FALSE(ValStringHasSuffix(S("é").Get(), Name("\xA9").Get()));
}

std::string Substring(const StringRef &string, size_t offset, size_t length) {
    return TextOf(Adopt(ValStringCopySubstring(string.Get(), {offset, length})));
}

TEST(Substring, IsAStretchOfBytes) {
    EXPECT_EQ(Substring(S("a\U0001D11Ebc"), 1, 5), "\U0001D11Eb");
    EXPECT_EQ(Substring(S("abc"), 0, 0), "");
    EXPECT_EQ(Substring(S("abc"), 3, 0), "");
    auto whole = S("abc");
    EXPECT_EQ(Adopt(ValStringCopySubstring(whole.Get(), {0, 3})).Get(), whole.Get());
}

TEST(Substring, StaysWithinTheString) {
    EXPECT_EQ(Substring(S("abc"), 0, 4), "(null)");
    EXPECT_EQ(Substring(S("abc"), 4, 0), "(null)");
    EXPECT_EQ(Substring(S("abc"), 2, SIZE_MAX), "(null)");
    EXPECT_EQ(ValStringCopySubstring(nullptr, {0, 0}), nullptr);
}

TEST(Substring, CutsNoCharacterInTwo) {
    EXPECT_EQ(Substring(S("aéb"), 2, 2), "(null)");
    EXPECT_EQ(Substring(S("aéb"), 0, 2), "(null)");
    EXPECT_EQ(Substring(Name("\xFF\xFF"), 1, 1), "\xFF");
    EXPECT_EQ(Substring(Utf16({0xD800, 'a'}), 3, 1), "a");
    EXPECT_EQ(Substring(Utf16({0xD800, 'a'}), 1, 3), "(null)");
}

std::string Trim(std::string_view text, std::string_view trim) {
    return TextOf(Adopt(ValStringCopyTrimming(S(text).Get(), S(trim).Get())));
}

TEST(Trimming, TakesTheTextAwayAtBothEndsAsOftenAsItStands) {
    EXPECT_EQ(Trim("--a-b---", "-"), "a-b");
    EXPECT_EQ(Trim("ababxabab", "ab"), "x");
    EXPECT_EQ(Trim("Noto Sans Bold", "Noto Sans"), " Bold");
    EXPECT_EQ(Trim("aaa", "aa"), "a");
    EXPECT_EQ(Trim("aaaa", "aa"), "");
    EXPECT_EQ(Trim("abc", "ABC"), "abc");
    EXPECT_EQ(Trim("", "a"), "");
}

TEST(Trimming, OfNothingGivesTheStringItself) {
    auto string = S("abc");
    EXPECT_EQ(Adopt(ValStringCopyTrimming(string.Get(), S("").Get())).Get(), string.Get());
    EXPECT_EQ(Adopt(ValStringCopyTrimming(string.Get(), nullptr)).Get(), string.Get());
    EXPECT_EQ(ValStringCopyTrimming(nullptr, string.Get()), nullptr);
}

std::string TrimSpace(std::string_view text) {
    return TextOf(Adopt(ValStringCopyTrimmingWhitespace(S(text).Get())));
}

TEST(TrimmingWhitespace, KnowsEveryWhiteSpaceOfUnicode) {
    for (auto space : {" ", "\t", "\n", "\v", "\f", "\r", "\u0085", "\u00A0", "\u1680", "\u2000", "\u200A",
                       "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"}) {
        EXPECT_EQ(TrimSpace(std::string(space) + "a" + space + "b" + space + space),
                  "a" + std::string(space) + "b");
    }
}

TEST(TrimmingWhitespace, LeavesOtherCharacters) {
    for (auto text : {"\u200B", "\uFEFF", "\u180E", "-", "\x1F"}) EXPECT_EQ(TrimSpace(text), text);
    EXPECT_EQ(TrimSpace(" \t "), "");
    EXPECT_EQ(TrimSpace(""), "");
    EXPECT_EQ(ValStringCopyTrimmingWhitespace(nullptr), nullptr);
    EXPECT_EQ(TextOf(Adopt(ValStringCopyTrimmingWhitespace(Name(" \xFF ").Get()))), "\xFF");
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
    return Texts(Adopt(ValStringCopyComponents(S(text).Get(), S(separator).Get())).Get());
}

TEST(Components, StandBetweenSeparators) {
    EXPECT_THAT(Split("a;b;c", ";"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Split("a", ";"), ElementsAre("a"));
    EXPECT_THAT(Split("", ";"), ElementsAre(""));
    EXPECT_THAT(Split(";a;;", ";"), ElementsAre("", "a", "", ""));
    EXPECT_THAT(Split("a--b---c", "--"), ElementsAre("a", "b", "-c"));
}

TEST(Components, AreOneWithoutASeparator) {
    EXPECT_THAT(Split("a;b", ""), ElementsAre("a;b"));
    EXPECT_THAT(Texts(Adopt(ValStringCopyComponents(S("a").Get(), nullptr)).Get()), ElementsAre("a"));
    EXPECT_EQ(ValStringCopyComponents(nullptr, S(";").Get()), nullptr);
}

} // namespace
} // namespace vellum
