// SPDX-License-Identifier: MIT
#include "platform/val/shorthand.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace vellum {
namespace {

using URLRef = Ref<const ValURL>;

std::string Path(std::string_view text) {
    return TextOf(Adopt(ValURLCopyFileSystemPath(U(text).Get())));
}

struct PathRow {
    std::string_view url;
    std::string_view path;
};

TEST(FileSystemPath, IsDecoded) {
    constexpr PathRow kRows[] = {
        {"file:///a/b", "/a/b"},
        {"file:///a%20b", "/a b"},
        {"file:///a b", "/a b"},
        {"file:///Z%C3%BCge", "/Züge"},
        {"file:///%FF", "/\xFF"},
        {"file:///a/", "/a"},
        {"file:///a//", "/a"},
        {"file:///", "/"},
        {"file:////", "/"},
        {"file:///a//b", "/a//b"},
        {"file:////a", "//a"},
        {"file://localhost/a", "/a"},
        {"FILE:///a", "/a"},
        {"file:///a?q#f", "/a"},
        {"file:///100%", "/100%"},
        {"file:///a%2Fb", "(null)"},
        {"file:///a%2fb", "(null)"},
        {"file:///a%00b", "(null)"},
        {"file://inMemory_0x10", "(null)"},
        {"file:a", "(null)"},
        {"http://host/a", "(null)"},
        {"filex:///a", "(null)"},
        {"fil:///a", "(null)"},
    };
    for (auto [url, path] : kRows) EXPECT_EQ(Path(url), path) << url;
    EXPECT_EQ(ValURLCopyFileSystemPath(nullptr), nullptr);
}

TEST(FileSystemPath, RoundTripsAnyBytes) {
    std::string bytes = "/";
    for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
    auto url = Adopt(ValURLCreateWithFileSystemPath(Name(bytes).Get(), false, nullptr));
    EXPECT_TRUE(ValEqual(Adopt(ValURLCopyFileSystemPath(url.Get())).Get(), Name(bytes).Get()));
}

TEST(FileSystemRepresentation, FillsABufferThatIsLargeEnough) {
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_FALSE(ValURLGetFileSystemRepresentation(U("file:///a%20b").Get(), buffer, 4));
    EXPECT_EQ(std::string(buffer, 8), "xxxxxxxx");
    EXPECT_TRUE(ValURLGetFileSystemRepresentation(U("file:///a%20b").Get(), buffer, 5));
    EXPECT_STREQ(buffer, "/a b");
    EXPECT_EQ(buffer[5], 'x');
    EXPECT_FALSE(ValURLGetFileSystemRepresentation(U("http://a/b").Get(), buffer, 8));
    EXPECT_FALSE(ValURLGetFileSystemRepresentation(U("file:///").Get(), nullptr, 8));
    EXPECT_FALSE(ValURLGetFileSystemRepresentation(U("file:///").Get(), buffer, 0));
    EXPECT_FALSE(ValURLGetFileSystemRepresentation(nullptr, buffer, 8));
}

TEST(DirectoryPath, EndsWithASlash) {
    EXPECT_TRUE(ValURLHasDirectoryPath(U("file:///a/").Get()));
    EXPECT_TRUE(ValURLHasDirectoryPath(U("file:///#f").Get()));
    EXPECT_FALSE(ValURLHasDirectoryPath(U("file:///a").Get()));
    EXPECT_FALSE(ValURLHasDirectoryPath(U("file:///a#/").Get()));
    EXPECT_FALSE(ValURLHasDirectoryPath(U("file://host").Get()));
    EXPECT_FALSE(ValURLHasDirectoryPath(nullptr));
}

struct ComponentRow {
    std::string_view url;
    std::string_view component;
    std::string_view extension;
};

TEST(LastPathComponent, AndItsExtensionAreDecoded) {
    constexpr ComponentRow kRows[] = {
        {"file:///a/b.ttf", "b.ttf", "ttf"},
        {"file:///a/b.tar.gz/", "b.tar.gz", "gz"},
        {"file:///a/b%20c.o%74f#x.y", "b c.otf", "otf"},
        {"file:///", "/", "(null)"},
        {"file:////", "/", "(null)"},
        {"file:///.profile", ".profile", "(null)"},
        {"file:///a.", "a.", "(null)"},
        {"file:///..", "..", "(null)"},
        {"file:///a.d/b", "b", "(null)"},
        {"file:///a.d//", "a.d", "d"},
        {"file://host", "(null)", "(null)"},
        {"data:a.b", "a.b", "b"},
        {"file:///a%00.ttf", "(null)", "(null)"},
    };
    for (auto [url, component, extension] : kRows) {
        EXPECT_EQ(TextOf(Adopt(ValURLCopyLastPathComponent(U(url).Get()))), component) << url;
        EXPECT_EQ(TextOf(Adopt(ValURLCopyPathExtension(U(url).Get()))), extension) << url;
    }
    EXPECT_EQ(ValURLCopyLastPathComponent(nullptr), nullptr);
    EXPECT_EQ(ValURLCopyPathExtension(nullptr), nullptr);
}

std::string Parent(std::string_view text) {
    return AbsoluteTextOf(Adopt(ValURLCopyDeletingLastPathComponent(U(text).Get())));
}

TEST(DeletingLastPathComponent, GivesTheDirectoryThatHoldsIt) {
    EXPECT_EQ(Parent("file:///a/b.ttf"), "file:///a/");
    EXPECT_EQ(Parent("file:///a/b/"), "file:///a/");
    EXPECT_EQ(Parent("file:///a/b?q#f"), "file:///a/");
    EXPECT_EQ(Parent("file:///a"), "file:///");
    EXPECT_EQ(Parent("file:///a//b"), "file:///a//");
    EXPECT_EQ(Parent("file:///a//"), "file:///");
    EXPECT_EQ(Parent("http://Host:80/a%20b/c"), "http://Host:80/a%20b/");
}

TEST(DeletingLastPathComponent, EndsAtTheRoot) {
    EXPECT_EQ(Parent("file:///"), "file:///");
    EXPECT_EQ(Parent("file:///#f"), "file:///");
    EXPECT_EQ(Parent("file://host"), "(null)");
    EXPECT_EQ(Parent("data:abc"), "(null)");
    EXPECT_EQ(ValURLCopyDeletingLastPathComponent(nullptr), nullptr);
}

std::string Append(std::string_view text, const StringRef &component, bool is_directory = false) {
    return AbsoluteTextOf(
        Adopt(ValURLCopyAppendingPathComponent(U(text).Get(), component.Get(), is_directory)));
}

TEST(AppendingPathComponent, AddsEscapedText) {
    EXPECT_EQ(Append("file:///a", S("b c%")), "file:///a/b%20c%25");
    EXPECT_EQ(Append("file:///a/", S("b")), "file:///a/b");
    EXPECT_EQ(Append("file:///", S("b"), true), "file:///b/");
    EXPECT_EQ(Append("file:///a?q#f", S("b")), "file:///a/b");
    EXPECT_EQ(Append("http://host", S("b")), "http://host/b");
    EXPECT_EQ(Append("file:///a", Name("\xFF")), "file:///a/%FF");
}

TEST(AppendingPathComponent, TakesSlashesAsThePathDoes) {
    EXPECT_EQ(Append("file:///a", S("b/c")), "file:///a/b/c");
    EXPECT_EQ(Append("file:///a", S("/b")), "file:///a/b");
    EXPECT_EQ(Append("file:///a", S("b/"), true), "file:///a/b/");
}

TEST(AppendingPathComponent, NeedsAComponent) {
    EXPECT_EQ(Append("file:///a", S("")), "(null)");
    EXPECT_EQ(Append("file:///a", S("/")), "(null)");
    EXPECT_EQ(Append("file:///a", nullptr), "(null)");
    EXPECT_EQ(Append("file:///a", S(std::string_view("a\0b", 3))), "(null)");
    EXPECT_EQ(ValURLCopyAppendingPathComponent(nullptr, S("a").Get(), false), nullptr);
}

TEST(PathOfARelativeURL, IsThatOfItsAbsoluteForm) {
    auto url = U("d/e.otf", U("file:///a/b"));
    EXPECT_EQ(TextOf(Adopt(ValURLCopyFileSystemPath(url.Get()))), "/a/d/e.otf");
    EXPECT_EQ(TextOf(Adopt(ValURLCopyPathExtension(url.Get()))), "otf");
    EXPECT_EQ(AbsoluteTextOf(Adopt(ValURLCopyDeletingLastPathComponent(url.Get()))), "file:///a/d/");
}

} // namespace
} // namespace vellum
