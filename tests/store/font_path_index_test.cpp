// SPDX-License-Identifier: MIT
#include "store/font_path_index.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr FontReference kFirst = 0x80000001, kSecond = 0x80010001;

class FontPathIndex : public ::testing::Test {
protected:
    void Add(FontReference font, const char *url) { index.AddFontForKey(font, MakeURL(url).Get()); }
    void Remove(FontReference font, const char *url) { index.RemoveFontForKey(font, MakeURL(url).Get()); }
    std::vector<FontReference> Find(const char *url) const {
        const auto wanted = MakeURL(url);
        const auto found = References(index.CopyFontsForKey(wanted.Get()));
        EXPECT_EQ(index.FontsForKey(wanted.Get()), found);
        return found;
    }

    TFontPathIndex index;
};

TEST_F(FontPathIndex, AFaceIsFoundUnderItsFileAndEveryFolderAboveIt) {
    Add(kFirst, "file:///a/b/c.ttf");
    EXPECT_THAT(Texts(index.CopyAllKeys()), ElementsAre("/a/b/c.ttf", "/a/b", "/a"));
    EXPECT_THAT(Find("file:///a/b/c.ttf"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file:///a/b/"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file:///a"), ElementsAre(kFirst));
}

TEST_F(FontPathIndex, TheRootFindsNothing) {
    Add(kFirst, "file:///a/b/c.ttf");
    EXPECT_THAT(Find("file:///"), IsEmpty());
}

TEST_F(FontPathIndex, APathWithoutComponentsIsItsOwnKey) {
    Add(kFirst, "file:///");
    EXPECT_THAT(Texts(index.CopyAllKeys()), ElementsAre("/"));
}

TEST_F(FontPathIndex, LettersCaseCountsInPaths) {
    Add(kFirst, "file:///a/c.ttf");
    EXPECT_THAT(Find("file:///a/C.ttf"), IsEmpty());
}

TEST_F(FontPathIndex, RemovingMirrorsAdding) {
    Add(kFirst, "file:///a/b/c.ttf");
    Add(kSecond, "file:///a/d.ttf");
    Remove(kFirst, "file:///a/b/c.ttf");
    EXPECT_THAT(Find("file:///a/b/c.ttf"), IsEmpty());
    EXPECT_THAT(Find("file:///a/b"), IsEmpty());
    EXPECT_THAT(Find("file:///a"), ElementsAre(kSecond));
}

TEST_F(FontPathIndex, FragmentsAreNoPartOfThePath) {
    Add(kFirst, "file:///a/c.ttc#postscript-name=One");
    Add(kSecond, "file:///a/c.ttc#postscript-name=Two");
    EXPECT_THAT(Find("file:///a/c.ttc#postscript-name=Two"), ElementsAre(kFirst, kSecond));
}

TEST_F(FontPathIndex, SpellingsOfOnePathAreOneKey) {
    Add(kFirst, "file:///a//b/./x/../c.ttf");
    EXPECT_THAT(Find("file:///a/b/c.ttf"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file:///a/b/c.ttf/"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file:///a/b/%63.ttf"), ElementsAre(kFirst));
}

TEST_F(FontPathIndex, FileNamesThatAreNoTextAreKeysToo) {
    Add(kFirst, "file:///a/%FF.ttf");
    EXPECT_THAT(Find("file:///a/%FF.ttf"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file:///a/%FE.ttf"), IsEmpty());
}

TEST_F(FontPathIndex, FontsInMemoryAreKeptApartByTheirAddress) {
    Add(kFirst, "file://inMemory_0xAb#postscript-name=A");
    Add(kSecond, "file://inMemory_0xab#postscript-name=A");
    EXPECT_THAT(Find("file://inMemory_0xAb"), ElementsAre(kFirst));
    EXPECT_THAT(Find("file://inMemory_0xab"), ElementsAre(kSecond));
}

TEST_F(FontPathIndex, WhatIsNoURLIsPassedOver) {
    index.AddFontForKey(kFirst, String("/a/c.ttf").Get());
    EXPECT_EQ(ValArrayGetCount(index.CopyAllKeys().Get()), 0u);
    Add(kFirst, "file:///a/c.ttf");
    EXPECT_FALSE(index.CopyFontsForKey(String("/a/c.ttf").Get()));
    EXPECT_FALSE(index.CopyFontsForKey(nullptr));
    EXPECT_THAT(index.FontsForKey(String("/a/c.ttf").Get()), IsEmpty());
    EXPECT_THAT(index.FontsForKey(nullptr), IsEmpty());
}

TEST(NormalizePath, TakesDotsAndSlashesOutOfTheText) {
    EXPECT_EQ(NormalizePath("/a/b/c"), "/a/b/c");
    EXPECT_EQ(NormalizePath("//a///b/"), "/a/b");
    EXPECT_EQ(NormalizePath("/a/./b/."), "/a/b");
    EXPECT_EQ(NormalizePath("/a/../b"), "/b");
    EXPECT_EQ(NormalizePath("/../../b"), "/b");
    EXPECT_EQ(NormalizePath("/"), "/");
    EXPECT_EQ(NormalizePath("/.."), "/");
    EXPECT_EQ(NormalizePath(""), "");
    EXPECT_EQ(NormalizePath("/a/...b/..c"), "/a/...b/..c");
}

} // namespace
} // namespace vellum::test
