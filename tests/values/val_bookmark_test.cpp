// SPDX-License-Identifier: MIT
#include "platform/fs/bookmark.hpp"
#include "support/temp_dir.hpp"
#include "values/val_bookmark.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

Bytes BytesOf(const TValBookmark &bookmark) {
    const uint8_t *bytes = ValDataGetBytes(bookmark.Get());
    return Bytes(bytes, bytes + ValDataGetLength(bookmark.Get()));
}

TValBookmark Kept(const Bytes &bytes) {
    return TValBookmark(Ref<const ValData>(Adopt(ValDataCreate(bytes.data(), bytes.size()))));
}

TEST(TValBookmark, HasTheBytesOfTheFilesBookmark) {
    const TempDir folder;
    const std::string path = folder.Write("a b%#\xC3\xA4\xFF.ttf", "12345");
    const TValBookmark bookmark(FileURL(path).Get());
    ASSERT_TRUE(bookmark);
    EXPECT_EQ(BytesOf(bookmark), CreateBookmark(path));
}

TEST(TValBookmark, LeadsBackToTheURL) {
    const TempDir folder;
    for (const char *name : {"Foo.ttf", "a b.ttf", "a%20b.ttf", "a#b.ttf", "\xC3\xA4.ttf", "\xFF.ttf"}) {
        const TValURL url = TValURL::FromPath(folder.Write(name, "12345"));
        EXPECT_EQ(TValBookmark(url.Get()).Resolve(), url) << name;
    }
}

TEST(TValBookmark, LeadsToTheFileThatWasRenamed) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    const TValBookmark bookmark(FileURL(path).Get());
    fs::rename(path, folder.File("b c.ttf"));
    EXPECT_EQ(bookmark.Resolve(), TValURL::FromPath(folder.File("b c.ttf")));
    EXPECT_EQ(Kept(BytesOf(bookmark)).Resolve(), bookmark.Resolve());
}

TEST(TValBookmark, OfAFolderLeadsToTheURLOfAFolder) {
    const TempDir folder;
    const std::string inside = folder.MakeFolder("inside");
    EXPECT_EQ(TValBookmark(FileURL(inside).Get()).Resolve(), TValURL::FromPath(inside, true));
    EXPECT_EQ(TValBookmark(TValURL::FromPath(inside, true).Get()).Resolve(),
              TValURL::FromPath(inside, true));
    EXPECT_EQ(TValBookmark(FileURL("/").Get()).Resolve().Text(), "file:///");
}

TEST(TValBookmark, IsOfTheFileWhateverItsFragment) {
    const TempDir folder;
    const TValURL url = TValURL::FromPath(folder.Write("Foo.ttf", "12345"));
    const TValBookmark of_face(url.WithFragment(TValStr("postscript-name=Foo")).Get());
    EXPECT_EQ(BytesOf(of_face), BytesOf(TValBookmark(url.Get())));
    EXPECT_EQ(of_face.Resolve(), url);
}

TEST(TValBookmark, OfNothingIsNone) {
    const TempDir folder;
    EXPECT_FALSE(TValBookmark());
    EXPECT_FALSE(TValBookmark(static_cast<const ValURL *>(nullptr)));
    EXPECT_FALSE(TValBookmark(FileURL(folder.File("none")).Get()));
    EXPECT_FALSE(TValBookmark(MakeURL("http://example.org/Foo.ttf").Get()));
    EXPECT_FALSE(TValBookmark(MakeURL("file://inMemory_0x1#postscript-name=A").Get()));
    EXPECT_FALSE(TValBookmark().Resolve());
}

TEST(TValBookmark, OfStrangeDataLeadsNowhere) {
    EXPECT_FALSE(Kept({}).Resolve());
    EXPECT_FALSE(Kept({1, 2, 3}).Resolve());
    EXPECT_FALSE(Kept(Bytes(5000, 0x2F)).Resolve());
}

} // namespace
} // namespace vellum::test
