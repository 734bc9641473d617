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
