// SPDX-License-Identifier: MIT
#include "platform/fs/private_folder.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace vellum::test {
namespace {

mode_t ModeOf(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST(PrivateFolders, AreMadeForTheUserAlone) {
    const TempDir folder;
    ::umask(0);
    EXPECT_EQ(MakePrivateFolder(folder.File("own")), 0);
    EXPECT_EQ(ModeOf(folder.File("own")), 0700u);
    EXPECT_EQ(MakePrivateFolder(folder.File("own")), 0); // it is there by now
}

TEST(PrivateFolders, AreRefusedWhereOthersMayEnter) {
    const TempDir folder;
    for (const mode_t mode : {0755u, 0770u, 0701u, 0500u}) {
        const std::string path = folder.File("of-" + std::to_string(mode));
        ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        EXPECT_EQ(MakePrivateFolder(path), EPERM) << mode;
    }
}

TEST(PrivateFolders, AreRefusedWhenTheyAreSomebodyElses) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    const TempDir folder;
    const std::string path = folder.MakeFolder("other");
    ASSERT_EQ(::chmod(path.c_str(), 0700), 0);
    ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
    EXPECT_EQ(MakePrivateFolder(path), EPERM);
}

TEST(PrivateFolders, AreNeitherFilesNorLinks) {
    const TempDir folder;
    EXPECT_EQ(MakePrivateFolder(folder.Write("file", "x")), ENOTDIR);
    ASSERT_EQ(MakePrivateFolder(folder.File("own")), 0);
    std::filesystem::create_symlink("own", folder.File("link"));
    EXPECT_EQ(MakePrivateFolder(folder.File("link")), ENOTDIR);
    EXPECT_EQ(MakePrivateFolder(folder.File("absent/own")), ENOENT);
}

TEST(UserTemporaryFolders, LieInTheRuntimeFolder) {
    const TempDir folder;
    ::setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
    EXPECT_EQ(UserTemporaryFolder(), folder.File("vellum"));
    EXPECT_EQ(ModeOf(folder.File("vellum")), 0700u);
    ASSERT_EQ(::chmod(folder.File("vellum").c_str(), 0755), 0);
    EXPECT_EQ(UserTemporaryFolder(), "");
}

TEST(UserTemporaryFolders, AreFoundWithoutBeingMade) {
    const TempDir folder;
    ::setenv("XDG_RUNTIME_DIR", (folder.Path() + "/").c_str(), 1);
    EXPECT_EQ(UserTemporaryFolder(CheckPrivateFolder), "");
    EXPECT_FALSE(std::filesystem::exists(folder.File("vellum")));
    EXPECT_EQ(UserTemporaryFolder(), folder.File("vellum"));
    EXPECT_EQ(UserTemporaryFolder(CheckPrivateFolder), folder.File("vellum"));
}

// As for a program that was started with another user's rights and the caller's environment.
TEST(UserTemporaryFolders, AreNotMadeInARuntimeFolderOfSomebodyElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    const TempDir folder;
    const std::string other = folder.MakeFolder("other");
    ASSERT_EQ(::chmod(other.c_str(), 0700), 0);
    ASSERT_EQ(::chown(other.c_str(), 65534, 65534), 0);
    ::setenv("XDG_RUNTIME_DIR", other.c_str(), 1);
    EXPECT_EQ(UserTemporaryFolder(), "");
    EXPECT_TRUE(std::filesystem::is_empty(other));
}

TEST(UserTemporaryFolders, AreNotMadeWhereOthersMayWriteOrBehindALink) {
    const TempDir folder;
    for (const mode_t mode : {0770u, 0702u, 01777u}) {
        const std::string open = folder.MakeFolder("open-" + std::to_string(mode));
        ASSERT_EQ(::chmod(open.c_str(), mode), 0);
        ::setenv("XDG_RUNTIME_DIR", open.c_str(), 1);
        EXPECT_EQ(UserTemporaryFolder(), "") << mode;
        EXPECT_TRUE(std::filesystem::is_empty(open));
    }
    const std::string own = folder.MakeFolder("own");
    ASSERT_EQ(::chmod(own.c_str(), 0700), 0);
    std::filesystem::create_symlink("own", folder.File("link"));
    for (const char *slashes : {"", "/", "//"}) {
        ::setenv("XDG_RUNTIME_DIR", (folder.File("link") + slashes).c_str(), 1);
        EXPECT_EQ(UserTemporaryFolder(), "") << slashes;
    }
    EXPECT_TRUE(std::filesystem::is_empty(own));
}

TEST(UserTemporaryFolders, AreNoneWithoutARuntimeFolder) {
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(UserTemporaryFolder(), "");
    ::setenv("XDG_RUNTIME_DIR", "", 1);
    EXPECT_EQ(UserTemporaryFolder(), "");
    ::setenv("XDG_RUNTIME_DIR", "relative", 1);
    EXPECT_EQ(UserTemporaryFolder(), "");
    ::setenv("XDG_RUNTIME_DIR", "/nowhere/at/all", 1);
    EXPECT_EQ(UserTemporaryFolder(), "");
}

} // namespace
} // namespace vellum::test
