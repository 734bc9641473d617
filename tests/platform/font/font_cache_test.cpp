// SPDX-License-Identifier: MIT
// The parser's cache: which objects come when one asks again.
#include "asking.hpp"

#include <gmock/gmock.h>

#include <filesystem>

namespace vellum::test {
namespace {

using testing::ElementsAre;

TEST(FontCache, GivesTheSameObjectsForAnUnchangedFile) {
    const TempDir folder;
    const std::string path = folder.Write("a.ttf", VariableFont().Build());
    const auto first = FontsAt(path);
    const auto second = FontsAt(path);
    ASSERT_EQ(ValArrayGetCount(first.Get()), 3u);
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(FaceOf(first, i), FaceOf(second, i));
}

TEST(FontCache, GivesNewObjectsForAChangedFile) {
    const TempDir folder;
    const std::string path =
        folder.Write("a.ttf", FontBuilder().Names(PlainNames("A", "Regular", "Old")).Build());
    const auto old = FontsAt(path);
    EXPECT_EQ(PostScriptName(FaceOf(old)), "Old");
    folder.Write("a.ttf", FontBuilder().Names(PlainNames("A", "Regular", "Newer")).Build());
    EXPECT_THAT(PostScriptNames(FontsAt(path)), ElementsAre("Newer"));
    EXPECT_EQ(PostScriptName(FaceOf(old)), "Old");
}

TEST(FontCache, GivesNewObjectsForAnotherFileOfTheSameName) {
    const TempDir folder;
    const std::string path = folder.Write("a.ttf", FontBuilder().Build());
    const auto old = FontsAt(path);
    std::filesystem::rename(folder.Write("b.ttf", FontBuilder().Build()), path);
    EXPECT_NE(FaceOf(FontsAt(path)), FaceOf(old));
}

TEST(FontCache, DoesNotRememberThatAFileIsNoFont) {
    const TempDir folder;
    const std::string path = folder.Write("a.ttf", "no font");
    EXPECT_FALSE(FontsAt(path));
    folder.Write("a.ttf", FontBuilder().Build());
    EXPECT_TRUE(FontsAt(path));
}

TEST(FontCache, ForgetsOnePath) {
    const TempDir folder;
    const std::string one = folder.Write("1.ttf", FontBuilder().Build());
    const std::string two = folder.Write("2.ttf", FontBuilder().Build());
    const auto old_one = FontsAt(one);
    const auto old_two = FontsAt(two);
    FacetFontPurgeCaches(Val(one).Get());
    EXPECT_NE(FaceOf(FontsAt(one)), FaceOf(old_one));
    EXPECT_EQ(FaceOf(FontsAt(two)), FaceOf(old_two));
}

TEST(FontCache, ForgetsEverything) {
    const TempDir folder;
    const std::string path = folder.Write("1.ttf", FontBuilder().Build());
    const auto old = FontsAt(path);
    FacetFontPurgeCaches(nullptr);
    EXPECT_NE(FaceOf(FontsAt(path)), FaceOf(old));
}

TEST(FontCache, IsBounded) {
    const TempDir folder;
    const std::string path = folder.Write("first.ttf", FontBuilder().Build());
    const auto first = FontsAt(path);
    for (int i = 0; i < 64; ++i) FontsAt(folder.Write(std::to_string(i) + ".ttf", FontBuilder().Build()));
    EXPECT_NE(FaceOf(FontsAt(path)), FaceOf(first));
}

TEST(FontCache, KeepsWhatIsAskedForOften) {
    const TempDir folder;
    const std::string path = folder.Write("first.ttf", FontBuilder().Build());
    const auto first = FontsAt(path);
    for (int i = 0; i < 100; ++i) {
        FontsAt(folder.Write(std::to_string(i) + ".ttf", FontBuilder().Build()));
        EXPECT_EQ(FaceOf(FontsAt(path)), FaceOf(first));
    }
}

} // namespace
} // namespace vellum::test
