// SPDX-License-Identifier: MIT
#include "platform/fs/folder.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

TEST(IsFolder, IsTrueForFoldersAlone) {
    const TempDir folder;
    const std::string file = folder.Write("file", "");
    EXPECT_TRUE(IsFolder(folder.Path()));
    EXPECT_TRUE(IsFolder(folder.Path() + "//"));
    EXPECT_TRUE(IsFolder("/"));
    EXPECT_TRUE(IsFolder("//"));
    EXPECT_FALSE(IsFolder(file));
    EXPECT_FALSE(IsFolder(folder.File("none")));
    EXPECT_FALSE(IsFolder(""));
}

TEST(IsFolder, FollowsNoLinkAtTheEndOfThePath) {
    const TempDir folder;
    folder.MakeFolder("folder/inside");
    fs::create_directory_symlink("folder", folder.File("link"));
    EXPECT_FALSE(IsFolder(folder.File("link")));
    EXPECT_FALSE(IsFolder(folder.File("link/")));
    EXPECT_TRUE(IsFolder(folder.File("link/inside")));
}

TEST(LeadsToFolder, FollowsLinks) {
    const TempDir folder;
    const std::string file = folder.Write("folder/file", "");
    fs::create_directory_symlink("folder", folder.File("link"));
    fs::create_symlink("folder/file", folder.File("file-link"));
    EXPECT_TRUE(LeadsToFolder(folder.File("folder").c_str()));
    EXPECT_TRUE(LeadsToFolder(folder.File("link/").c_str()));
    EXPECT_FALSE(LeadsToFolder(file.c_str()));
    EXPECT_FALSE(LeadsToFolder(folder.File("file-link").c_str()));
    EXPECT_FALSE(LeadsToFolder(folder.File("none").c_str()));
    EXPECT_FALSE(LeadsToFolder(""));
}

TEST(RealFolderPath, HasNoLinksAndNoDetours) {
    const TempDir folder;
    const std::string real = fs::canonical(folder.MakeFolder("folder/inside"));
    fs::create_directory_symlink("folder", folder.File("link"));
    EXPECT_EQ(RealFolderPath(folder.File("link/inside/")), real);
    EXPECT_EQ(RealFolderPath(folder.File("link/../folder/./inside")), real);
}

TEST(RealFolderPath, IsEmptyForWhatIsNoFolder) {
    const TempDir folder;
    EXPECT_EQ(RealFolderPath(folder.Write("file", "")), "");
    EXPECT_EQ(RealFolderPath(folder.File("none")), "");
    EXPECT_EQ(RealFolderPath(""), "");
}

} // namespace
} // namespace vellum::test
