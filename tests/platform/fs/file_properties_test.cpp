// SPDX-License-Identifier: MIT
// What is known of a file: its properties, its second fork, where its links lead.
#include "platform/fs/file_fork.hpp"
#include "platform/fs/file_properties.hpp"
#include "platform/fs/link_target.hpp"
#include "support/temp_dir.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FileProperties, NameTheFileAndItsFolder) {
    const TempDir folder;
    const auto file = ReadFileProperties(folder.Write("a b%#\xFF.ttf", "12345"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->name, "a b%#\xFF.ttf");
    EXPECT_EQ(file->parent, folder.Path());
    EXPECT_EQ(file->kind, TFileKind::kRegular);
    EXPECT_EQ(file->size, 5u);
    EXPECT_EQ(file->fork_size, 0u);
}

TEST(FileProperties, NameAFolderWithoutItsSlash) {
    const TempDir folder;
    const auto inside = ReadFileProperties(folder.MakeFolder("inside") + "//");
    ASSERT_TRUE(inside);
    EXPECT_EQ(inside->name, "inside");
    EXPECT_EQ(inside->parent, folder.Path());
    EXPECT_EQ(inside->kind, TFileKind::kFolder);
    EXPECT_EQ(inside->size, 0u);
}

TEST(FileProperties, OfTheRootHaveNoNameAndItselfAsFolder) {
    const auto root = ReadFileProperties("/");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->name, "");
    EXPECT_EQ(root->parent, "/");
    EXPECT_EQ(ReadFileProperties("/dev")->parent, "/");
}

TEST(FileProperties, TellDevicesApartFromFilesAndFolders) {
    EXPECT_EQ(ReadFileProperties("/dev/null")->kind, TFileKind::kOther);
}

TEST(FileProperties, IdentifyTheFileAsTheSystemDoes) {
    const TempDir folder;
    const std::string path = folder.Write("a", "");
    struct stat status;
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    const auto file = ReadFileProperties(path);
    EXPECT_EQ(file->device, status.st_dev);
    EXPECT_EQ(file->inode, status.st_ino);
}

TEST(FileProperties, HaveTheTimesOfTheFile) {
    const TempDir folder;
    const std::string path = folder.Write("a", "");
    const timespec times[] = {{.tv_sec = 5, .tv_nsec = 6}, {.tv_sec = -7, .tv_nsec = 8000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const auto file = ReadFileProperties(path);
    EXPECT_EQ(file->modified.seconds, -7);
    struct statx status;
    ASSERT_EQ(::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &status), 0);
    ASSERT_EQ(file->created.has_value(), (status.stx_mask & STATX_BTIME) != 0);
    if (file->created) {
        EXPECT_EQ(*file->created, (TFileTime{status.stx_btime.tv_sec, status.stx_btime.tv_nsec}));
    }
}

TEST(FileProperties, AreThoseOfWhatALinkLeadsTo) {
    const TempDir folder;
    folder.Write("real/Foo.ttf", "12345");
    fs::create_symlink("real/Foo.ttf", folder.File("Link.ttf"));
    const auto file = ReadFileProperties(folder.File("Link.ttf"));
    EXPECT_EQ(file->name, "Link.ttf");
    EXPECT_EQ(file->parent, folder.Path());
    EXPECT_EQ(file->size, 5u);
}

TEST(FileProperties, AreNoneForWhatIsNotThere) {
    const TempDir folder;
    fs::create_symlink("none", folder.File("dangling"));
    EXPECT_FALSE(ReadFileProperties(folder.File("none")));
    EXPECT_FALSE(ReadFileProperties(folder.File("dangling")));
    EXPECT_FALSE(ReadFileProperties(folder.Write("a", "") + "/"));
    EXPECT_FALSE(ReadFileProperties(""));
}

TEST(FileProperties, AreNoneForARelativePath) {
    EXPECT_FALSE(ReadFileProperties("."));
}

TEST(FileFork, IsTheFileInTheFolderBeside) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "data");
    EXPECT_EQ(ForkSize(path), 0u);
    EXPECT_EQ(ForkFileOf(path), folder.File(".rsrc/Foo.ttf"));
    folder.Write(".rsrc/Foo.ttf", "1234567");
    EXPECT_EQ(ForkSize(path), 7u);
    EXPECT_EQ(ReadFileProperties(path)->fork_size, 7u);
}

TEST(FileFork, IsNoFolderInTheFolderBeside) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "data");
    folder.MakeFolder(".rsrc/Foo.ttf");
    EXPECT_EQ(ForkSize(path), 0u);
}

TEST(FileFork, IsTheAttributeBeforeTheFileBeside) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "data");
    folder.Write(".rsrc/Foo.ttf", "1234567");
    // Where the file system keeps no attributes, the file beside is all that there is.
    const bool kept = ::setxattr(path.c_str(), kForkAttribute, "123", 3, 0) == 0;
    EXPECT_EQ(ForkSize(path), kept ? 3u : 7u);
}

TEST(FileFork, IsTheFileBesideWhenTheAttributeIsEmpty) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "data");
    folder.Write(".rsrc/Foo.ttf", "1234567");
    ::setxattr(path.c_str(), kForkAttribute, "", 0, 0);
    EXPECT_EQ(ForkSize(path), 7u);
}

TEST(LinkTargets, AreWhatIsWrittenAndWhatHasNoLinkAnyMore) {
    const TempDir folder;
    const std::string real = fs::canonical(folder.Path());
    folder.Write("real/Foo.ttf", "");
    fs::create_directory_symlink("real", folder.File("way"));
    fs::create_symlink(folder.File("way/Foo.ttf"), folder.File("absolute"));
    EXPECT_THAT(LinkTargets(folder.File("absolute")),
                ElementsAre(folder.File("way/Foo.ttf"), real + "/real/Foo.ttf"));
    folder.MakeFolder("links");
    fs::create_symlink("../way/./Foo.ttf", folder.File("links/relative"));
    EXPECT_THAT(LinkTargets(folder.File("links/relative")),
                ElementsAre(folder.File("way/Foo.ttf"), real + "/real/Foo.ttf"));
}

TEST(LinkTargets, EndWhereALinkToALinkDoes) {
    const TempDir folder;
    const std::string real = fs::canonical(folder.Path());
    folder.Write("Foo.ttf", "");
    fs::create_symlink("Foo.ttf", folder.File("first"));
    fs::create_symlink("first", folder.File("second"));
    EXPECT_THAT(LinkTargets(folder.File("second")), ElementsAre(folder.File("first"), real + "/Foo.ttf"));
}

TEST(LinkTargets, AreNoneForWhatIsNoLinkOrLeadsNowhere) {
    const TempDir folder;
    fs::create_symlink("none", folder.File("dangling"));
    fs::create_symlink("loop", folder.File("loop"));
    EXPECT_THAT(LinkTargets(folder.Write("Foo.ttf", "")), IsEmpty());
    EXPECT_THAT(LinkTargets(folder.File("dangling")), IsEmpty());
    EXPECT_THAT(LinkTargets(folder.File("loop")), IsEmpty());
    EXPECT_THAT(LinkTargets(folder.File("none")), IsEmpty());
}

} // namespace
} // namespace vellum::test
