// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;

struct Row {
    ValStringEncoding encoding;
    std::string_view bytes;
    std::string_view text;
};

class Encoding : public ::testing::TestWithParam<Row> {};

TEST_P(Encoding, DecodesItsBytes) {
    const Row &row = GetParam();
    EXPECT_EQ(TextOf(Encoded(row.bytes, row.encoding)), row.text);
    EXPECT_EQ(TextOf(Encoded({row.bytes.data(), 0}, row.encoding)), "");
}

INSTANTIATE_TEST_SUITE_P(
    Known, Encoding,
    ::testing::Values(Row{kValStringEncodingRoman, "A\x80\x8A\xA9\xBD\xD0\xDB\xF0\xFF"sv,
                          "AÄä©Ω–€\uF8FFˇ"sv},
                      Row{kValStringEncodingRoman, "\xC6\xB6\xCA\xD8"sv, "\u2206\u2202\u00A0ÿ"sv},
                      Row{kValStringEncodingJapanese, "\x83\x71\x83\x89\x83\x4D a"sv, "ヒラギ a"sv},
                      Row{kValStringEncodingTraditionalChinese, "\xBC\xD0\xB7\xA2"sv, "標楷"sv},
                      Row{kValStringEncodingKorean, "\xB1\xBC\xB8\xB2"sv, "굴림"sv},
                      Row{kValStringEncodingSimplifiedChinese, "\xCB\xCE\xCC\xE5"sv, "宋体"sv},
                      Row{7, "\x80\xDF\xE0"sv, "Аяа"sv}, // Cyrillic
                      Row{21, "\xA1"sv, "ก"sv},          // Thai
                      Row{29, "\x80\x8A"sv, "Ää"sv},     // Central European
                      Row{kValStringEncodingUnicode, "\0A\xD8\x34\xDD\x1E"sv, "A\U0001D11E"sv},
                      Row{kValStringEncodingUTF16BE, "\0A\xD8\x34"sv, "A\xED\xA0\xB4"sv},
                      Row{kValStringEncodingUTF16BE, "\xFE\xFF\0a"sv, "\uFEFFa"sv}, // a mark is text
                      Row{kValStringEncodingUTF32BE, "\0\0\0A\0\x01\xD1\x1E"sv, "A\U0001D11E"sv},
                      Row{kValStringEncodingUTF32BE, "\0\x10\xFF\xFF"sv, "\U0010FFFF"sv},
                      Row{kValStringEncodingUTF8, "\xEF\xBB\xBFé"sv, "\uFEFFé"sv},
                      Row{kValStringEncodingASCII, "a\0\x7F"sv, "a\0\x7F"sv},
                      Row{kValStringEncodingLatin1, "\x41\x80\xE9\xFF"sv, "A\u0080éÿ"sv}));

struct Refusal {
    ValStringEncoding encoding;
    std::string_view bytes;
};

class BytesThatDoNotFit : public ::testing::TestWithParam<Refusal> {};

TEST_P(BytesThatDoNotFit, GiveNull) {
    EXPECT_FALSE(Encoded(GetParam().bytes, GetParam().encoding));
}

INSTANTIATE_TEST_SUITE_P(Encodings, BytesThatDoNotFit,
                         ::testing::Values(Refusal{kValStringEncodingUTF16BE, "\0A\0"sv},
                                           Refusal{kValStringEncodingUnicode, "A"sv},
                                           Refusal{kValStringEncodingUTF32BE, "\0\0\0"sv},
                                           Refusal{kValStringEncodingUTF32BE, "\0\0\xD8\0"sv},
                                           Refusal{kValStringEncodingUTF32BE, "\0\x11\0\0"sv},
                                           Refusal{kValStringEncodingUTF8, "\xC0\x80"sv},
                                           Refusal{kValStringEncodingASCII, "a\x80"sv},
                                           Refusal{kValStringEncodingJapanese, "a\x83"sv}, // cut short
                                           Refusal{kValStringEncodingSimplifiedChinese, "\xFF"sv},
                                           Refusal{kValStringEncodingKorean, "\xB1"sv}));

TEST(UnknownEncoding, GivesNull) {
    for (ValStringEncoding encoding : {4u, 5u, 6u, 20u, 33u, 0x106u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(Encoded("a", encoding)) << encoding;
    }
}

TEST(Roman, HasACharacterForEveryByte) {
    std::vector<std::string> seen;
    for (int byte = 0; byte < 256; ++byte) {
        const char bytes[] = {static_cast<char>(byte)};
        auto string = Encoded({bytes, 1}, kValStringEncodingRoman);
        EXPECT_EQ(ValStringGetUTF16Length(string.Get()), 1u);
        for (const std::string &other : seen) EXPECT_NE(TextOf(string), other) << byte;
        seen.push_back(TextOf(string));
    }
}

TEST(LongText, IsDecodedWhole) {
    std::string bytes;
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        bytes += "\xB1\xBC ";
        text += "굴 ";
    }
    EXPECT_EQ(TextOf(Encoded(bytes, kValStringEncodingKorean)), text);
}

} // namespace
} // namespace vellum
