// SPDX-License-Identifier: MIT
#include "values/val_url.hpp"

#include <gtest/gtest.h>

namespace vellum {
namespace {

using namespace std::string_view_literals;

TEST(TValURL, IsMadeFromAPathOfAnyBytes) {
    EXPECT_EQ(TValURL::FromPath("/a b/c.ttf").Text(), "file:///a%20b/c.ttf");
    EXPECT_EQ(TValURL::FromPath("/a\xFF").Text(), "file:///a%FF");
    EXPECT_EQ(TValURL::FromPath("/a\xFF").Path().View(), "/a\xFF");
    EXPECT_EQ(TValURL::FromPath("/a//b").Text(), "file:///a//b");
    EXPECT_EQ(TValURL::FromPath("/a", true).Text(), "file:///a/");
    EXPECT_FALSE(TValURL::FromPath(""));
    EXPECT_FALSE(TValURL::FromPath("/a\0b"sv));
}

TEST(TValURL, IsMadeFromText) {
    const TValURL url = TValURL::FromText("file://Host/a%20b.otf#x%3Dy");
    EXPECT_EQ(url.Scheme().View(), "file");
    EXPECT_EQ(url.Host().View(), "Host");
    EXPECT_EQ(url.Path().View(), "/a b.otf");
    EXPECT_EQ(url.Extension().View(), "otf");
    EXPECT_EQ(url.Fragment().View(), "x=y");
    EXPECT_FALSE(TValURL::FromText("a/b"));
    EXPECT_FALSE(TValURL::FromText("file:///\xFF"));
}

TEST(TValURL, OfNothingHasNothing) {
    const TValURL none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.Text(), "");
    EXPECT_FALSE(none.Scheme() || none.Host() || none.Path() || none.Fragment() || none.Absolute());
    EXPECT_EQ(none, TValURL());
}

TEST(TValURL, EqualsByItsAbsoluteForm) {
    const TValURL base = TValURL::FromText("file:///a/b");
    const TValURL relative(Adopt(ValURLCreateWithString(TValStr("c").Get(), base.Get())));
    EXPECT_EQ(relative, TValURL::FromText("file:///a/c"));
    EXPECT_EQ(relative.Text(), "file:///a/c");
    EXPECT_EQ(ValURLGetBase(relative.Absolute().Get()), nullptr);
}

TEST(TValURL, TakesAnotherFragment) {
    const TValURL url = TValURL::FromText("file:///a#b");
    EXPECT_EQ(url.WithFragment(TValStr("c")).Text(), "file:///a#c");
    EXPECT_EQ(url.WithFragment(TValStr()).Text(), "file:///a");
}

} // namespace
} // namespace vellum
