// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"
#include "platform/val/url.hpp"

#include <glib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

namespace vellum {
namespace {

using namespace std::string_view_literals;
using URLRef = Ref<const ValURL>;

URLRef FromPath(const StringRef &path, bool is_directory = false, const URLRef &base = nullptr) {
    return Adopt(ValURLCreateWithFileSystemPath(path.Get(), is_directory, base.Get()));
}

struct PartsRow {
    std::string_view text;
    std::string_view scheme;
    std::string_view host;
    std::string_view path;
    std::string_view fragment;
};

class URLText : public ::testing::TestWithParam<PartsRow> {};

TEST_P(URLText, HasItsParts) {
    const PartsRow &row = GetParam();
    auto url = U(row.text);
    ASSERT_TRUE(url);
    EXPECT_EQ(TextOf(ValURLGetString(url.Get())), row.text);
    EXPECT_EQ(AbsoluteTextOf(url), row.text);
    EXPECT_EQ(TextOf(Adopt(ValURLCopyScheme(url.Get()))), row.scheme);
    EXPECT_EQ(TextOf(Adopt(ValURLCopyHost(url.Get()))), row.host);
    EXPECT_EQ(TextOf(Adopt(ValURLCopyPath(url.Get()))), row.path);
    EXPECT_EQ(TextOf(Adopt(ValURLCopyFragment(url.Get()))), row.fragment);
    EXPECT_EQ(ValURLGetBase(url.Get()), nullptr);
}

TEST(URLTexts, HaveNoControlCharacterInAnyPlace) {
    for (size_t length = 8; length < 25; ++length)
        for (size_t at = 5; at < length; ++at)
            for (int c = 0; c < 0x80; ++c) {
                std::string text = "file:" + std::string(length - 5, 'a');
                text[at] = static_cast<char>(c);
                EXPECT_EQ(bool(U(text)), c >= 0x20 && c != 0x7F) << length << " " << at << " " << c;
            }
}

INSTANTIATE_TEST_SUITE_P(
    Table, URLText,
    ::testing::Values(
        PartsRow{"file:///usr/share/fonts/a.ttf", "file", "(null)", "/usr/share/fonts/a.ttf", "(null)"},
        PartsRow{"file://inMemory_0x10c8a2b30#postscript-name=A", "file", "inMemory_0x10c8a2b30", "",
                 "postscript-name=A"},
        PartsRow{"file:///", "file", "(null)", "/", "(null)"},
        PartsRow{"file://localhost/a", "file", "localhost", "/a", "(null)"},
        PartsRow{"FILE:///a%20b", "file", "(null)", "/a%20b", "(null)"},
        PartsRow{"file:///a b c", "file", "(null)", "/a b c", "(null)"}, // sloppy, but let pass
        PartsRow{"file:///Züge/漢字.otf", "file", "(null)", "/Züge/漢字.otf", "(null)"},
        PartsRow{"file:///a//b/../c", "file", "(null)", "/a//b/../c", "(null)"}, // kept as it stands
        PartsRow{"file:///a#", "file", "(null)", "/a", ""},
        PartsRow{"file:///a?q#f#g?h", "file", "(null)", "/a", "f#g?h"},
        PartsRow{"http://user:pw@Host.Example:8080/p;x?q=1#f", "http", "Host.Example", "/p;x", "f"},
        PartsRow{"http://[2001:db8::1]:80/", "http", "[2001:db8::1]", "/", "(null)"},
        PartsRow{"http://host", "http", "host", "", "(null)"},
        PartsRow{"http://host:/", "http", "host", "/", "(null)"},
        PartsRow{"http://host?q/r", "http", "host", "", "(null)"},
        PartsRow{"data:text/plain,a", "data", "(null)", "text/plain,a", "(null)"},
        PartsRow{"x-a+b.1:/p", "x-a+b.1", "(null)", "/p", "(null)"},
        PartsRow{"file:/a", "file", "(null)", "/a", "(null)"}));

TEST(URLText, ThatIsNoURLMakesNone) {
    for (auto text : {""sv, "/a/b"sv, "a/b"sv, "#f"sv, "?q"sv, "//host/a"sv, ":a"sv, "1a:b"sv, "a_b:c"sv,
                      "file:///a\nb"sv, "file:///a\0b"sv, "file:///a\x7F"sv, "http://host:80x/"sv,
                      "http://[::1/"sv, "http://[::1]x/"sv}) {
        EXPECT_FALSE(U(text)) << text;
    }
    EXPECT_EQ(ValURLCreateWithString(nullptr, nullptr), nullptr);
    EXPECT_EQ(ValURLCreateWithString(nullptr, U("file:///a").Get()), nullptr);
    EXPECT_EQ(ValURLCreateWithString(Name("file:///\xFF").Get(), nullptr), nullptr);
    EXPECT_EQ(ValURLCreateWithString(Utf16({'f', ':', 0xD800}).Get(), nullptr), nullptr);
}

TEST(URLBytes, MakeTheSameURLAsText) {
    constexpr auto kText = "file:///a%20b#c"sv;
    auto url = Adopt(ValURLCreateWithBytes(kText.data(), kText.size(), nullptr));
    EXPECT_TRUE(ValEqual(url.Get(), U(kText).Get()));
    EXPECT_EQ(ValURLCreateWithBytes(nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(ValURLCreateWithBytes("\xFF", 1, U("file:///").Get()), nullptr);
    auto relative = Adopt(ValURLCreateWithBytes("b", 1, url.Get()));
    EXPECT_EQ(AbsoluteTextOf(relative), "file:///b");
}

TEST(NullURL, HasNoParts) {
    EXPECT_EQ(ValURLGetString(nullptr), nullptr);
    EXPECT_EQ(ValURLGetBase(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyAbsolute(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyScheme(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyHost(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyPath(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyFragment(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyDecodedFragment(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyWithFragment(nullptr, S("a").Get()), nullptr);
}

// RFC 3986, 5.4: relative references and what they come to under this base.
constexpr auto kRfcBase = "http://a/b/c/d;p?q";
struct Resolution {
    std::string_view relative;
    std::string_view absolute;
};
constexpr Resolution kRfcResolutions[] = {
    {"g", "http://a/b/c/g"},
    {"./g", "http://a/b/c/g"},
    {"g/", "http://a/b/c/g/"},
    {"/g", "http://a/g"},
    {"//g", "http://g"},
    {"?y", "http://a/b/c/d;p?y"},
    {"g?y", "http://a/b/c/g?y"},
    {"#s", "http://a/b/c/d;p?q#s"},
    {"g#s", "http://a/b/c/g#s"},
    {"g?y#s", "http://a/b/c/g?y#s"},
    {";x", "http://a/b/c/;x"},
    {"g;x", "http://a/b/c/g;x"},
    {"g;x?y#s", "http://a/b/c/g;x?y#s"},
    {"", "http://a/b/c/d;p?q"},
    {".", "http://a/b/c/"},
    {"./", "http://a/b/c/"},
    {"..", "http://a/b/"},
    {"../", "http://a/b/"},
    {"../g", "http://a/b/g"},
    {"../..", "http://a/"},
    {"../../", "http://a/"},
    {"../../g", "http://a/g"},
    {"../../../g", "http://a/g"},
    {"../../../../g", "http://a/g"},
    {"/./g", "http://a/g"},
    {"/../g", "http://a/g"},
    {"g.", "http://a/b/c/g."},
    {".g", "http://a/b/c/.g"},
    {"g..", "http://a/b/c/g.."},
    {"..g", "http://a/b/c/..g"},
    {"./../g", "http://a/b/g"},
    {"./g/.", "http://a/b/c/g/"},
    {"g/./h", "http://a/b/c/g/h"},
    {"g/../h", "http://a/b/c/h"},
    {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
    {"g;x=1/../y", "http://a/b/c/y"},
    {"g?y/./x", "http://a/b/c/g?y/./x"},
    {"g?y/../x", "http://a/b/c/g?y/../x"},
    {"g#s/./x", "http://a/b/c/g#s/./x"},
    {"g#s/../x", "http://a/b/c/g#s/../x"},
};

TEST(RelativeURL, IsResolvedAsTheRfcShows) {
    for (auto [relative, absolute] : kRfcResolutions) {
        auto url = U(relative, U(kRfcBase));
        EXPECT_EQ(AbsoluteTextOf(url), absolute) << relative;
        EXPECT_EQ(TextOf(ValURLGetString(url.Get())), relative);
    }
}

TEST(RelativeURL, IsResolvedAsGLibDoes) {
    for (auto [relative, absolute] : kRfcResolutions) {
        std::unique_ptr<char, decltype(&g_free)> theirs(
            g_uri_resolve_relative(kRfcBase, std::string(relative).c_str(), G_URI_FLAGS_ENCODED, nullptr),
            g_free);
        EXPECT_EQ(AbsoluteTextOf(U(relative, U(kRfcBase))), theirs.get()) << relative;
    }
}

TEST(RelativeURL, KeepsItsBase) {
    auto base = U("file:///a/b");
    auto url = U("c", base);
    EXPECT_EQ(ValURLGetBase(url.Get()), base.Get());
    auto absolute = Adopt(ValURLCopyAbsolute(url.Get()));
    EXPECT_EQ(ValURLGetBase(absolute.Get()), nullptr);
    EXPECT_EQ(TextOf(ValURLGetString(absolute.Get())), "file:///a/c");
    EXPECT_EQ(Adopt(ValURLCopyAbsolute(absolute.Get())).Get(), absolute.Get());
}

TEST(RelativeURL, MayHaveARelativeBase) {
    auto url = U("d", U("b/c", U("file:///a/")));
    EXPECT_EQ(AbsoluteTextOf(url), "file:///a/b/d");
    EXPECT_EQ(TextOf(Adopt(ValURLCopyPath(url.Get()))), "/a/b/d");
}

TEST(RelativeURL, MayHaveAVeryLongChainOfBases) {
    auto url = U("file:///a/");
    for (int i = 0; i < 50'000; ++i) url = U("b", url);
    EXPECT_EQ(AbsoluteTextOf(url), "file:///a/b");
}

TEST(RelativeURL, CoversTheOddCasesOfMerging) {
    EXPECT_EQ(AbsoluteTextOf(U("g", U("http://host"))), "http://host/g");
    EXPECT_EQ(AbsoluteTextOf(U("b//c/../d", U("file:///a//x/y"))), "file:///a//x/b//d");
    EXPECT_EQ(AbsoluteTextOf(U("g", U("data:abc"))), "data:g");
    EXPECT_EQ(AbsoluteTextOf(U(".././g", U("data:abc"))), "data:g");
    EXPECT_EQ(AbsoluteTextOf(U("..", U("data:abc"))), "data:");
    EXPECT_EQ(AbsoluteTextOf(U("/.//c", U("a:/b"))), "a:/.//c"); // not an authority
    EXPECT_EQ(AbsoluteTextOf(U("?", U("file:///a?q#f"))), "file:///a?");
    EXPECT_EQ(AbsoluteTextOf(U("", U("file:///a?q#f"))), "file:///a?q");
}

TEST(AbsoluteURL, DropsItsBase) {
    auto url = U("file:///a", U("file:///b"));
    EXPECT_EQ(ValURLGetBase(url.Get()), nullptr);
}

TEST(URLEquality, ComparesAbsoluteForms) {
    auto direct = U("file:///a/c");
    auto relative = U("c", U("file:///a/b"));
    EXPECT_TRUE(ValEqual(direct.Get(), relative.Get()));
    EXPECT_EQ(ValHash(direct.Get()), ValHash(relative.Get()));
    EXPECT_FALSE(ValEqual(direct.Get(), U("file:///a/C").Get()));
    EXPECT_FALSE(ValEqual(direct.Get(), U("file:///a/c#").Get()));
    EXPECT_FALSE(ValEqual(direct.Get(), U("file:///a/%63").Get())); // as it is written
}

std::string DecodedFragment(std::string_view text) {
    return TextOf(Adopt(ValURLCopyDecodedFragment(U(text).Get())));
}

TEST(Fragment, IsDecodedOnRequest) {
    EXPECT_EQ(DecodedFragment("file:///a#postscript-name=A%20B"), "postscript-name=A B");
    EXPECT_EQ(DecodedFragment("file:///a#50%"), "50%");
    EXPECT_EQ(DecodedFragment("file:///a#%FF"), "\xFF");
    EXPECT_EQ(DecodedFragment("file:///a#"), "");
    EXPECT_EQ(DecodedFragment("file:///a#a%20b%00"), "a%20b%00");
    EXPECT_EQ(DecodedFragment("file:///a"), "(null)");
}

std::string WithFragment(const URLRef &url, const StringRef &fragment) {
    return AbsoluteTextOf(Adopt(ValURLCopyWithFragment(url.Get(), fragment.Get())));
}

TEST(Fragment, IsReplacedOrTakenAway) {
    EXPECT_EQ(WithFragment(U("file:///a"), S("f")), "file:///a#f");
    EXPECT_EQ(WithFragment(U("file:///a?q#old"), S("new%20")), "file:///a?q#new%20");
    EXPECT_EQ(WithFragment(U("file:///a#old"), nullptr), "file:///a");
    EXPECT_EQ(WithFragment(U("file:///a"), nullptr), "file:///a");
    EXPECT_EQ(WithFragment(U("file:///a"), S("")), "file:///a#");
    EXPECT_EQ(WithFragment(U("b", U("file:///a/")), S("f")), "file:///a/b#f");
    EXPECT_EQ(WithFragment(U("file:///a"), S("\n")), "(null)");
}

TEST(FilePath, MakesAFileURL) {
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/usr/share/fonts/a b.ttf"))), "file:///usr/share/fonts/a%20b.ttf");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/"))), "file:///");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/Züge"))), "file:///Z%C3%BCge");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/100%#?[]"))), "file:///100%25%23%3F%5B%5D");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/-._~!$&'()*+,;=:@"))), "file:///-._~!$&'()*+,;=:@");
    EXPECT_EQ(AbsoluteTextOf(FromPath(Name("/\xFF\xC3"))), "file:///%FF%C3");
}

TEST(FilePath, KeepsDoubledSlashesAndDots) {
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/a//b/../c/."))), "file:///a//b/../c/.");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("//a"))), "file:////a");
}

TEST(FilePath, OfADirectoryEndsWithASlash) {
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/a"), true)), "file:///a/");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/a/"), true)), "file:///a/");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/"), true)), "file:///");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/a/"), false)), "file:///a/");
}

TEST(FilePath, ThatIsEmptyOrHoldsAZeroMakesNone) {
    EXPECT_FALSE(FromPath(S("")));
    EXPECT_FALSE(FromPath(nullptr));
    EXPECT_FALSE(FromPath(S("/a\0b"sv)));
}

TEST(RelativeFilePath, IsTakenFromItsBase) {
    auto url = FromPath(S("b c/d"), false, U("file:///a/x"));
    EXPECT_EQ(TextOf(ValURLGetString(url.Get())), "b%20c/d");
    EXPECT_EQ(AbsoluteTextOf(url), "file:///a/b%20c/d");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("/b"), false, U("file:///a/"))), "file:///b");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("b"), true, U("file:///a/"))), "file:///a/b/");
}

TEST(RelativeFilePath, WithAColonIsNoScheme) {
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("a:b"), false, U("file:///x/"))), "file:///x/a:b");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("c/a:b"), false, U("file:///x/"))), "file:///x/c/a:b");
}

TEST(RelativeFilePath, IsTakenFromTheCurrentDirectory) {
    char pattern[] = "/tmp/vellum url-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(pattern);
    auto url = FromPath(S("fonts/a.ttf"));
    EXPECT_EQ(TextOf(Adopt(ValURLCopyFileSystemPath(url.Get()))), std::string(pattern) + "/fonts/a.ttf");
    EXPECT_EQ(ValURLGetBase(url.Get()), nullptr);

    std::filesystem::current_path("/");
    EXPECT_EQ(AbsoluteTextOf(FromPath(S("a:b"))), "file:///a:b");
    std::filesystem::current_path(before);
    std::filesystem::remove_all(pattern);
}

} // namespace
} // namespace vellum
