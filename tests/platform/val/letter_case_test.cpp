// SPDX-License-Identifier: MIT
#include "platform/val/letter_case.hpp"
#include "platform/val/shorthand.hpp"

#include <glib.h>
#include <gtest/gtest.h>

#include <memory>

namespace vellum {
namespace {

std::string Lower(std::string_view text) {
    return TextOf(Adopt(ValStringCopyLowercase(S(text).Get())));
}

std::string Written(const CaseMapping &mapping) {
    std::string text;
    for (uint8_t i = 0; i < mapping.count; ++i) {
        char bytes[4];
        text.append(bytes, EncodeCharacter(mapping.characters[i], bytes));
    }
    return text;
}

TEST(Lowercase, IsTheSameInEveryLocale) {
    EXPECT_EQ(Lower("Noto Sans CJK"), "noto sans cjk");
    EXPECT_EQ(Lower("TITLE"), "title");           // also for a Turkish user
    EXPECT_EQ(Lower("ÄÉÎ ЖЯ ΣΑΣ"), "äéî жя σασ"); // without looking at the end of the word
    EXPECT_EQ(Lower("ß ẞ"), "ß ß");
    EXPECT_EQ(Lower("\u01C5"), "\u01C6");
    EXPECT_EQ(Lower("\U00010400"), "\U00010428");
    EXPECT_EQ(Lower("\u2163 \u24B7"), "\u2173 \u24D1"); // numerals and circled letters
}

TEST(Lowercase, OfTheDottedCapitalIKeepsTheDot) {
    EXPECT_EQ(Lower("\u0130x"), "i\u0307x");
}

TEST(Lowercase, OfWhatHasNoneIsTheSame) {
    EXPECT_EQ(Lower(""), "");
    EXPECT_EQ(Lower("漢字 123 \U0001F600"), "漢字 123 \U0001F600");
    EXPECT_EQ(ValStringCopyLowercase(nullptr), nullptr);
}

TEST(Lowercase, OfLowercaseAsciiIsTheStringItself) {
    auto string = S("already-lower 1");
    EXPECT_EQ(Adopt(ValStringCopyLowercase(string.Get())).Get(), string.Get());
}

TEST(Lowercase, KeepsWhatIsNoText) {
    EXPECT_EQ(TextOf(Adopt(ValStringCopyLowercase(Name("A\xFF\xC3").Get()))), "a\xFF\xC3");
    EXPECT_EQ(TextOf(Adopt(ValStringCopyLowercase(Utf16({'A', 0xD800, 'B'}).Get()))), "a\xED\xA0\x80"
                                                                                      "b");
}

TEST(Lowercase, OfLowercaseIsItself) {
    for (char32_t c = 0; c < kRawByte; ++c) {
        char32_t lower = LowerCharacter(c).characters[0];
        ASSERT_EQ(LowerCharacter(lower).characters[0], lower) << std::hex << static_cast<uint32_t>(c);
    }
}

// GLib takes Cherokee capitals to small letters and these to capitals, so that they never meet.
constexpr bool IsCherokeeCapital(char32_t c) {
    return c >= 0x13A0 && c <= 0x13F5;
}

TEST(CaseFolding, AgreesWithGLibForEveryCodePointButCherokeeCapitals) {
    for (char32_t c = 1; c < kRawByte; ++c) {
        if (IsSurrogate(c) || IsCherokeeCapital(c)) continue;
        char bytes[4];
        auto length = static_cast<gssize>(EncodeCharacter(c, bytes));
        std::unique_ptr<char, decltype(&g_free)> expected(g_utf8_casefold(bytes, length), g_free);
        ASSERT_EQ(Written(FoldCharacter(c)), expected.get()) << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(CaseFolding, BringsCherokeeLettersToTheirCapitals) {
    EXPECT_EQ(Written(FoldCharacter(0x13A0)), "\u13A0");
    EXPECT_EQ(Written(FoldCharacter(0x13F5)), "\u13F5");
    EXPECT_EQ(Written(FoldCharacter(0xAB70)), "\u13A0");
    EXPECT_EQ(Written(FoldCharacter(0x13FD)), "\u13F5");
}

TEST(CaseFolding, OfFoldedTextIsItself) {
    for (char32_t c = 0; c < kRawByte; ++c) {
        const CaseMapping folded = FoldCharacter(c);
        for (uint8_t i = 0; i < folded.count; ++i) {
            ASSERT_EQ(Written(FoldCharacter(folded.characters[i])), Written({{folded.characters[i]}, 1}))
                << std::hex << static_cast<uint32_t>(c);
        }
    }
}

TEST(CaseFolding, OfWhatIsNoTextIsTheSame) {
    for (char32_t c : {char32_t{0xD800}, char32_t{0xDFFF}, char32_t{kRawByte + 0xC1}}) {
        EXPECT_EQ(FoldCharacter(c).characters[0], c);
        EXPECT_EQ(LowerCharacter(c).characters[0], c);
    }
}

struct CasePair {
    std::string_view a;
    std::string_view b;
    bool equal;
};
constexpr CasePair kCasePairs[] = {
    {"Arial", "ARIAL", true},
    {"Arial", "Ariel", false},
    {"Arial", "Arial ", false},
    {"", "", true},
    {"", "a", false},
    {"İstanbul", "i̇stanbul", true}, // with a combining dot
    {"İstanbul", "istanbul", false},
    {"I", "ı", false},
    {"Straße", "STRASSE", false}, // lower-cased, not folded
    {"Straße", "STRAẞE", true},
    {"ΣΑΣ", "σασ", true},
    {"ΣΑΣ", "σας", false}, // the final sigma is another letter
    {"\u212A", "k", true}, // Kelvin sign
    {"K", "\u212A", true},
    {"abcdefgh\u00C9", "ABCDEFGH\u00E9", true},
    {"\U00010400", "\U00010428", true},
};

TEST(CaseInsensitiveCallbacks, CompareLowerCasedForms) {
    for (auto [a, b, equal] : kCasePairs) {
        EXPECT_EQ(kValCaseInsensitiveStringCallbacks.equal(S(a).Get(), S(b).Get()), equal) << a << " " << b;
        EXPECT_EQ(kValCaseInsensitiveStringCallbacks.equal(S(b).Get(), S(a).Get()), equal) << a << " " << b;
        EXPECT_EQ(Lower(a) == Lower(b), equal) << a << " " << b;
    }
}

TEST(CaseInsensitiveCallbacks, HashWhatIsEqualTheSame) {
    auto hash = [](std::string_view text) {
        return kValCaseInsensitiveStringCallbacks.hash(S(text).Get());
    };
    for (auto [a, b, equal] : kCasePairs) EXPECT_EQ(hash(a) == hash(b), equal) << a << " " << b;
    EXPECT_EQ(hash("Ünïcödé text of some LENGTH"), hash("ünïcödé TEXT of some length"));
    EXPECT_NE(hash("a"), hash(std::string_view("a\0", 2)));
}

// Eight bytes are lower-cased at a time, in one number.
TEST(CaseInsensitiveCallbacks, HashEachASCIICharacterInEachPlaceAsItsSmallLetter) {
    auto hash = [](std::string_view text) {
        return kValCaseInsensitiveStringCallbacks.hash(S(text).Get());
    };
    for (size_t at = 0; at < 17; ++at)
        for (int c = 0; c < 0x80; ++c) {
            std::string text(17, 'Z'), lower(17, 'z'), other(17, 'z');
            text[at] = static_cast<char>(c);
            lower[at] = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
            other[at] = static_cast<char>(lower[at] ^ 1);
            EXPECT_EQ(hash(text), hash(lower)) << at << " " << c;
            EXPECT_NE(hash(text), hash(other)) << at << " " << c;
        }
}

TEST(CaseInsensitiveCallbacks, CompareOtherValuesAsTheyAre) {
    auto &callbacks = kValCaseInsensitiveStringCallbacks;
    EXPECT_TRUE(callbacks.equal(N(1).Get(), F(1.0).Get()));
    EXPECT_EQ(callbacks.hash(N(1).Get()), callbacks.hash(F(1.0).Get()));
    EXPECT_FALSE(callbacks.equal(S("1").Get(), N(1).Get()));
    EXPECT_FALSE(callbacks.equal(S("a").Get(), nullptr));
}

TEST(CaseInsensitiveCallbacks, CompareBytesThatAreNoText) {
    auto &callbacks = kValCaseInsensitiveStringCallbacks;
    EXPECT_TRUE(callbacks.equal(Name("A\xFF").Get(), Name("a\xFF").Get()));
    EXPECT_EQ(callbacks.hash(Name("A\xFF").Get()), callbacks.hash(Name("a\xFF").Get()));
    EXPECT_FALSE(callbacks.equal(Name("a\xFE").Get(), Name("a\xFF").Get()));
}

} // namespace
} // namespace vellum
