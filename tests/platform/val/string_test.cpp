// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"
#include "platform/val/static_string.hpp"
#include "platform/val/string.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;

constinit const StaticString kEmpty("");
constinit const StaticString kPlain("postscript-name");
constinit const StaticString kMixed("Ein Züge \U0001D11E");
constinit const StaticString kWithZero("a\0b");

TEST(String, KeepsItsTextAndEndsWithAZero) {
    auto string = S("Noto Sans");
    size_t length = 0;
    const char *text = ValStringGetUTF8(string.Get(), &length);
    EXPECT_STREQ(text, "Noto Sans");
    EXPECT_EQ(length, 9u);
    EXPECT_EQ(ValStringGetBytes(string.Get(), nullptr), text);
}

TEST(String, CopiesItsBytes) {
    char bytes[] = "abc";
    auto string = Adopt(ValStringCreateWithCString(bytes));
    bytes[0] = 'x';
    EXPECT_EQ(TextOf(string), "abc");
}

TEST(String, MayBeEmpty) {
    EXPECT_EQ(TextOf(S("")), "");
    EXPECT_EQ(ValStringGetUTF16Length(S("").Get()), 0u);
    EXPECT_TRUE(ValEqual(S("").Get(), Adopt(ValStringCreateWithCString("")).Get()));
}

TEST(String, MayHoldZeros) {
    auto string = S("a\0b"sv);
    size_t length = 0;
    ValStringGetUTF8(string.Get(), &length);
    EXPECT_EQ(length, 3u);
    EXPECT_FALSE(ValEqual(string.Get(), S("a").Get()));
    EXPECT_EQ(ValStringGetUTF16Length(string.Get()), 3u);
}

TEST(String, IsNotMadeFromNull) {
    EXPECT_EQ(ValStringCreateWithUTF8(nullptr, 0), nullptr);
    EXPECT_EQ(ValStringCreateWithCString(nullptr), nullptr);
    EXPECT_EQ(ValStringCreateWithUTF16(nullptr, 0), nullptr);
    EXPECT_EQ(ValStringCreateWithBytes(nullptr, 0, kValStringEncodingUTF8), nullptr);
    EXPECT_EQ(ValStringCreateWithFileSystemRepresentation(nullptr, 0), nullptr);
}

TEST(String, OfNullHasNothing) {
    size_t length = 7;
    EXPECT_EQ(ValStringGetUTF8(nullptr, &length), nullptr);
    EXPECT_EQ(ValStringGetBytes(nullptr, &length), nullptr);
    EXPECT_EQ(length, 7u);
    EXPECT_EQ(ValStringGetUTF16Length(nullptr), 0u);
}

class InvalidUtf8 : public ::testing::TestWithParam<std::string_view> {};

TEST_P(InvalidUtf8, IsRefusedAsText) {
    EXPECT_FALSE(S(GetParam()));
    EXPECT_FALSE(S("before " + std::string(GetParam()) + " after"));
    EXPECT_FALSE(Encoded(GetParam(), kValStringEncodingUTF8));
}

TEST_P(InvalidUtf8, IsKeptAsAFileName) {
    auto name = Name(GetParam());
    EXPECT_EQ(TextOf(name), GetParam());
    EXPECT_EQ(ValStringGetUTF8(name.Get(), nullptr), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Classes, InvalidUtf8,
                         ::testing::Values("\x80"sv,             // a continuation alone
                                           "\xBF"sv,             //
                                           "\xC3"sv,             // a lead alone
                                           "\xE2\x82"sv,         // cut short
                                           "\xF0\x9D\x84"sv,     //
                                           "\xC0\x80"sv,         // overlong
                                           "\xC1\xBF"sv,         //
                                           "\xE0\x9F\xBF"sv,     //
                                           "\xF0\x8F\xBF\xBF"sv, //
                                           "\xED\xA0\x80"sv,     // surrogates
                                           "\xED\xBF\xBF"sv,     //
                                           "\xED\xA0\x80\xED\xB0\x80"sv,
                                           "\xF4\x90\x80\x80"sv, // above U+10FFFF
                                           "\xF5\x80\x80\x80"sv, //
                                           "\xFE"sv, "\xFF"sv, "\xC3\x28"sv));

TEST(String, AcceptsTheFirstAndLastCodePointOfEveryLength) {
    for (std::string_view text :
         {"\x7F"sv, "\xC2\x80"sv, "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv,
          "\xEF\xBF\xBF"sv, "\xF0\x90\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv}) {
        EXPECT_EQ(TextOf(S(text)), text);
    }
}

TEST(String, FindsABadByteWhereverItStands) {
    for (size_t length = 1; length < 40; ++length) {
        for (size_t at = 0; at < length; ++at) {
            std::string text(length, 'a');
            EXPECT_TRUE(S(text));
            text[at] = '\xFF';
            EXPECT_FALSE(S(text)) << length << " " << at;
        }
    }
}

TEST(FileName, RefusesOnlyZeros) {
    EXPECT_FALSE(Name("a\0b"sv));
    EXPECT_EQ(TextOf(Name("\x01\x7F\xFF")), "\x01\x7F\xFF");
    EXPECT_EQ(TextOf(Name("")), "");
}

TEST(FileName, EqualsTheTextThatHasItsBytes) {
    EXPECT_TRUE(ValEqual(Name("Züge").Get(), S("Züge").Get()));
    EXPECT_STREQ(ValStringGetUTF8(Name("Züge").Get(), nullptr), "Züge");
}

TEST(Utf16Length, CountsUnits) {
    EXPECT_EQ(ValStringGetUTF16Length(S("abc").Get()), 3u);
    EXPECT_EQ(ValStringGetUTF16Length(S("é€").Get()), 2u);
    EXPECT_EQ(ValStringGetUTF16Length(S("a\U0001D11Eb").Get()), 4u);
    EXPECT_EQ(ValStringGetUTF16Length(Utf16({0xD834, 'x'}).Get()), 2u);
    EXPECT_EQ(ValStringGetUTF16Length(Name("a\xFF\xC3").Get()), 3u);
}

TEST(Utf16, JoinsPairs) {
    EXPECT_TRUE(ValEqual(Utf16({0xD834, 0xDD1E}).Get(), S("\U0001D11E").Get()));
}

TEST(Utf16, KeepsLoneSurrogatesInThreeBytes) {
    EXPECT_EQ(TextOf(Utf16({'a', 0xD834})), "a\xED\xA0\xB4");
    EXPECT_EQ(TextOf(Utf16({0xDD1E, 'a'})), "\xED\xB4\x9E"
                                            "a");
    EXPECT_EQ(TextOf(Utf16({0xDD1E, 0xD834})), "\xED\xB4\x9E\xED\xA0\xB4");
    EXPECT_EQ(TextOf(Utf16({0xD834, 0xD834, 0xDD1E})), "\xED\xA0\xB4\U0001D11E");
}

TEST(Utf16, WithALoneSurrogateIsNoUtf8) {
    auto string = Utf16({'a', 0xD834});
    EXPECT_EQ(ValStringGetUTF8(string.Get(), nullptr), nullptr);
    EXPECT_TRUE(ValEqual(string.Get(), Utf16({'a', 0xD834}).Get()));
    EXPECT_FALSE(ValEqual(string.Get(), Utf16({'a', 0xD835}).Get()));
}

TEST(Utf16, MayBeEmpty) {
    const uint16_t unit = 0;
    EXPECT_EQ(TextOf(Adopt(ValStringCreateWithUTF16(&unit, 0))), "");
    EXPECT_EQ(TextOf(Adopt(ValStringCreateWithUTF16(&unit, 1))), "\0"sv);
}

TEST(StringHash, AgreesWithEqualityHoweverTheStringWasMade) {
    auto a = S("Größe \U0001D11E");
    auto b = Name("Größe \U0001D11E");
    auto c = Encoded({"\0G\0r\0\xF6\0\xDF\0e\0 \xD8\x34\xDD\x1E", 16}, kValStringEncodingUTF16BE);
    EXPECT_TRUE(ValEqual(a.Get(), b.Get()) && ValEqual(a.Get(), c.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(b.Get()));
    EXPECT_EQ(ValHash(a.Get()), ValHash(c.Get()));
}

TEST(StringHash, IsTheSameInEveryProcess) {
    EXPECT_EQ(HashText("Noto Sans"), 15812047714631200360u); // recorded: stored hashes must not change
    EXPECT_EQ(ValHash(S("Noto Sans").Get()), HashText("Noto Sans"));
}

TEST(StringHash, TellsEveryBitOfShortAndLongTextsApart) {
    for (size_t length : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 48u, 65u}) {
        std::string text(length, 'a');
        const uint64_t hash = HashText(text);
        for (size_t bit = 0; bit < length * 8; ++bit) {
            std::string other = text;
            other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << (bit % 8)));
            EXPECT_NE(HashText(other), hash) << length << " " << bit;
        }
        EXPECT_NE(HashText(text + '\0'), hash);
    }
}

TEST(StaticString, EqualsAStringMadeAtRunTime) {
    EXPECT_TRUE(ValEqual(kPlain.Get(), S("postscript-name").Get()));
    EXPECT_TRUE(ValEqual(kMixed.Get(), S("Ein Züge \U0001D11E").Get()));
    EXPECT_TRUE(ValEqual(kEmpty.Get(), S("").Get()));
    EXPECT_TRUE(ValEqual(kWithZero.Get(), S("a\0b"sv).Get()));
}

TEST(StaticString, IsMadeByTheCompilerWithAllThatIsKnownOfIt) {
    EXPECT_EQ(kMixed.hash.load(), ValHash(S("Ein Züge \U0001D11E").Get()));
    EXPECT_EQ(kMixed.utf16_length, 11u);
    EXPECT_FALSE(kMixed.is_ascii);
    EXPECT_TRUE(kMixed.is_unicode && kPlain.is_ascii);
    EXPECT_STREQ(ValStringGetUTF8(kPlain.Get(), nullptr), "postscript-name");
    EXPECT_EQ(Text(*kMixed.Get()), "Ein Züge \U0001D11E");
}

TEST(StaticString, IsNeverFreed) {
    for (int i = 0; i < 10; ++i) ValRelease(kPlain.Get());
    EXPECT_EQ(kPlain.references.load(), ValObject::kImmortal);
}

TEST(Character, RoundTripsThroughItsBytes) {
    for (char32_t c = 0; c < kRawByte; c += c < 0x3000 ? 1 : 61) {
        char bytes[4];
        std::string_view encoded(bytes, EncodeCharacter(c, bytes));
        Character decoded = DecodeCharacter(encoded);
        EXPECT_EQ(decoded.value, c);
        EXPECT_EQ(decoded.length, encoded.size());
        for (size_t cut = 1; cut < encoded.size(); ++cut) {
            EXPECT_EQ(DecodeCharacter(encoded.substr(0, cut)).length, 1u);
            EXPECT_FALSE(IsCharacterBoundary(encoded, cut));
        }
    }
}

TEST(Character, OfAByteThatIsNoTextKeepsTheByte) {
    for (char32_t byte = 0x80; byte < 0x100; ++byte) {
        char bytes[4];
        const char text[] = {static_cast<char>(byte)};
        EXPECT_EQ(DecodeCharacter({text, 1}).value, kRawByte + byte);
        EXPECT_EQ(EncodeCharacter(kRawByte + byte, bytes), 1u);
        EXPECT_EQ(bytes[0], text[0]);
    }
}

TEST(CharacterBoundary, AgreesWithReadingFromTheFront) {
    const std::string_view pieces[] = {
        "a",        "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9D\x84\x9E", "\x80",     "\xC3",
        "\xE2\x82", "\xFF",     "\xF0\x9D\x84", "\xED\xA0\x80",     "\xC0\x80", "\xE0\x80"};
    for (std::string_view first : pieces) {
        for (std::string_view second : pieces) {
            for (std::string_view third : pieces) {
                std::string text = std::string(first).append(second).append(third);
                std::string boundaries(text.size() + 1, '0');
                for (size_t at = 0; at < text.size();
                     at += DecodeCharacter(std::string_view(text).substr(at)).length) {
                    boundaries[at] = '1';
                }
                boundaries[text.size()] = '1';
                for (size_t at = 0; at <= text.size(); ++at) {
                    EXPECT_EQ(IsCharacterBoundary(text, at), boundaries[at] == '1') << at;
                }
            }
        }
    }
}

} // namespace
} // namespace vellum
