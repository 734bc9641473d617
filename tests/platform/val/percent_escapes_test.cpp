// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;

std::string Escape(const StringRef &string, std::string_view also = {}) {
    return TextOf(Adopt(ValStringCopyAddingPercentEscapes(string.Get(), S(also).Get())));
}

std::string Unescape(std::string_view text) {
    return TextOf(Adopt(ValStringCopyRemovingPercentEscapes(S(text).Get())));
}

TEST(AddingPercentEscapes, LeavesWhatAPathMayHold) {
    constexpr auto kPlain = "ABCXYZabcxyz0189-._~!$&'()*+,;=:@/";
    EXPECT_EQ(Escape(S(kPlain)), kPlain);
}

TEST(AddingPercentEscapes, EscapesAllElseByteByByte) {
    EXPECT_EQ(Escape(S("a b")), "a%20b");
    EXPECT_EQ(Escape(S("é\U0001D11E")), "%C3%A9%F0%9D%84%9E");
    EXPECT_EQ(Escape(S("\"#%<>?[\\]^`{|}")), "%22%23%25%3C%3E%3F%5B%5C%5D%5E%60%7B%7C%7D");
    EXPECT_EQ(Escape(S("\x01\x7F\0"sv)), "%01%7F%00");
    EXPECT_EQ(Escape(Name("\xFF\xC3")), "%FF%C3");
}

TEST(AddingPercentEscapes, EscapesAnEscapeAgain) {
    EXPECT_EQ(Escape(S("%41")), "%2541");
}

TEST(AddingPercentEscapes, EscapesWhatIsAskedForAsWell) {
    EXPECT_EQ(Escape(S("a=b;c/d"), "=;"), "a%3Db%3Bc/d");
    EXPECT_EQ(Escape(S("abc"), "b"), "a%62c");
    EXPECT_EQ(TextOf(Adopt(ValStringCopyAddingPercentEscapes(S("a=").Get(), nullptr))), "a=");
    EXPECT_EQ(ValStringCopyAddingPercentEscapes(nullptr, nullptr), nullptr);
}

TEST(RemovingPercentEscapes, DecodesEveryEscape) {
    EXPECT_EQ(Unescape("a%20b"), "a b");
    EXPECT_EQ(Unescape("%c3%A9"), "é");
    EXPECT_EQ(Unescape("%2541"), "%41"); // once
    EXPECT_EQ(Unescape("%FF"), "\xFF");
    EXPECT_EQ(Unescape("%2F"), "/");
    EXPECT_EQ(Unescape(""), "");
}

TEST(RemovingPercentEscapes, LeavesAPercentThatBeginsNoEscape) {
    for (auto text : {"100%", "%4", "%", "%%", "%zz", "%4g", "% 41"}) EXPECT_EQ(Unescape(text), text);
    EXPECT_EQ(Unescape("%%41"), "%A");
}

TEST(RemovingPercentEscapes, RefusesAnEscapedZero) {
    EXPECT_EQ(Unescape("a%00b"), "(null)");
    EXPECT_EQ(ValStringCopyRemovingPercentEscapes(nullptr), nullptr);
}

TEST(PercentEscapes, RoundTripEveryByteButZero) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
    EXPECT_EQ(Unescape(Escape(Name(bytes))), bytes);
    EXPECT_EQ(Unescape(Escape(Name(bytes), "abc/")), bytes);
}

} // namespace
} // namespace vellum
