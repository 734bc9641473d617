// SPDX-License-Identifier: MIT
#include "platform/fs/copy_file.hpp"
#include "support/temp_dir.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

std::string Content(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

struct stat StatusOf(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

std::vector<std::string> NamesIn(const std::string &folder) {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

class CopyingFiles : public ::testing::Test {
protected:
    TempDir folder;
};

TEST_F(CopyingFiles, KeepsTheBytesWhateverTheSize) {
    for (const size_t size : {0ul, 1ul, 65535ul, 65536ul, 65537ul, 300000ul}) {
        std::string bytes(size, 'x');
        for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
        const std::string source = folder.Write("source", bytes);
        EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
        EXPECT_EQ(Content(folder.File("copy")), bytes) << size;
    }
}

TEST_F(CopyingFiles, KeepsModeAndTimes) {
    const std::string source = folder.Write("source", "x");
    ASSERT_EQ(::chmod(source.c_str(), 0451), 0);
    const timespec times[] = {{1000000000, 123456789}, {900000000, 987654321}};
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    const struct stat status = StatusOf(folder.File("copy"));
    EXPECT_EQ(status.st_mode & 07777, 0451u);
    EXPECT_EQ(status.st_mtim.tv_sec, 900000000);
    EXPECT_EQ(status.st_mtim.tv_nsec, 987654321);
    EXPECT_EQ(status.st_atim.tv_sec, 1000000000);
}

TEST_F(CopyingFiles, GivesNobodysRightsAway) {
    const std::string source = folder.Write("source", "x");
    ASSERT_EQ(::chmod(source.c_str(), 06755), 0);
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    EXPECT_EQ(StatusOf(folder.File("copy")).st_mode & 07777, 0755u);
    EXPECT_EQ(StatusOf(folder.File("copy")).st_uid, ::geteuid());
}

TEST_F(CopyingFiles, KeepsExtendedAttributes) {
    const std::string source = folder.Write("source", "x");
    const std::string value(1000, 'v');
    if (::setxattr(source.c_str(), "user.first", value.data(), value.size(), 0) != 0)
        GTEST_SKIP() << "the file system of temporary files has no attributes";
    ASSERT_EQ(::setxattr(source.c_str(), "user.empty", "", 0, 0), 0);
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    char read[2000];
    const ssize_t size = ::getxattr(folder.File("copy").c_str(), "user.first", read, sizeof read);
    ASSERT_EQ(size, 1000);
    EXPECT_EQ(std::string(read, 1000), value);
    EXPECT_EQ(::getxattr(folder.File("copy").c_str(), "user.empty", read, sizeof read), 0);
}

// As the file system keeps it: version 2; owner rw, user 1234 r, group r, mask r, others nothing.
constexpr unsigned char kAccessList[] = {
    2,  0, 0, 0,                         //
    1,  0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF, //
    2,  0, 4, 0, 0xD2, 0x04, 0,    0,    //
    4,  0, 4, 0, 0xFF, 0xFF, 0xFF, 0xFF, //
    16, 0, 4, 0, 0xFF, 0xFF, 0xFF, 0xFF, //
    32, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,
};

TEST_F(CopyingFiles, KeepsAccessControlLists) {
    const std::string source = folder.Write("source", "x");
    if (::setxattr(source.c_str(), "system.posix_acl_access", kAccessList, sizeof kAccessList, 0) != 0)
        GTEST_SKIP() << "the file system of temporary files has no access control lists";
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    unsigned char read[200];
    ASSERT_EQ(::getxattr(folder.File("copy").c_str(), "system.posix_acl_access", read, sizeof read),
              static_cast<ssize_t>(sizeof kAccessList));
    EXPECT_TRUE(std::equal(std::begin(kAccessList), std::end(kAccessList), read));
}

// ---- the second fork ----

TEST_F(CopyingFiles, KeepsAForkThatIsAFile) {
    const std::string source = folder.Write("source", "x");
    folder.Write(".rsrc/source", "fork");
    EXPECT_EQ(CopyFile(source, folder.MakeFolder("other") + "/copy"), 0);
    EXPECT_EQ(Content(folder.File("other/copy")), "x");
    EXPECT_EQ(Content(folder.File("other/.rsrc/copy")), "fork");
    EXPECT_THAT(NamesIn(folder.File("other/.rsrc")), ElementsAre("copy"));
    EXPECT_EQ(StatusOf(folder.File("other/.rsrc/copy")).st_mode & 07777, StatusOf(source).st_mode & 07777);
}

TEST_F(CopyingFiles, KeepsAForkThatIsAnAttributeAsOne) {
    const std::string source = folder.Write("source", "");
    if (::setxattr(source.c_str(), "user.ResourceFork", "fork", 4, 0) != 0)
        GTEST_SKIP() << "the file system of temporary files has no attributes";
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    char read[10];
    ASSERT_EQ(::getxattr(folder.File("copy").c_str(), "user.ResourceFork", read, sizeof read), 4);
    EXPECT_EQ(std::string(read, 4), "fork");
    EXPECT_FALSE(std::filesystem::exists(folder.File(".rsrc")));
}

// Shared memory is a file system on which files have no attributes of users, on most machines.
TEST_F(CopyingFiles, KeepsAForkAsAFileWhereItCanBeNoAttribute) {
    const std::string source = folder.Write("source", "x");
    if (::setxattr(source.c_str(), "user.ResourceFork", "fork", 4, 0) != 0)
        GTEST_SKIP() << "the file system of temporary files has no attributes";
    ::setenv("TMPDIR", "/dev/shm", 1);
    const TempDir shared_memory;
    ::unsetenv("TMPDIR");
    if (::setxattr(shared_memory.Write("try", "x").c_str(), "user.try", "x", 1, 0) == 0)
        GTEST_SKIP() << "shared memory has attributes";
    EXPECT_EQ(CopyFile(source, shared_memory.File("copy")), 0);
    EXPECT_EQ(Content(shared_memory.File(".rsrc/copy")), "fork");
}

TEST_F(CopyingFiles, LeavesNoForkOfWhatLayThereBefore) {
    const std::string source = folder.Write("source", "x");
    folder.Write("other/copy", "old");
    folder.Write("other/.rsrc/copy", "old fork");
    EXPECT_EQ(CopyFile(source, folder.File("other/copy")), 0);
    EXPECT_FALSE(std::filesystem::exists(folder.File("other/.rsrc/copy")));
    folder.Write(".rsrc/source", "new fork");
    EXPECT_EQ(CopyFile(source, folder.File("other/copy")), 0);
    EXPECT_EQ(Content(folder.File("other/.rsrc/copy")), "new fork");
}

TEST_F(CopyingFiles, FailsWhereTheForkHasNoPlace) {
    const std::string source = folder.Write("source", "x");
    folder.Write(".rsrc/source", "fork");
    folder.Write("other/.rsrc", "a file in the folder's place");
    const std::string copy = folder.Write("other/copy", "old");
    EXPECT_NE(CopyFile(source, copy), 0);
    EXPECT_EQ(Content(copy), "old");
    EXPECT_THAT(NamesIn(folder.File("other")), ElementsAre(".rsrc", "copy"));
}

TEST_F(CopyingFiles, FollowsALinkToTheFile) {
    folder.Write("source", "x");
    std::filesystem::create_symlink("source", folder.File("link"));
    EXPECT_EQ(CopyFile(folder.File("link"), folder.File("copy")), 0);
    EXPECT_FALSE(std::filesystem::is_symlink(folder.File("copy")));
    EXPECT_EQ(Content(folder.File("copy")), "x");
}

TEST_F(CopyingFiles, ReplacesWhatLiesThereAtOnceAndNotThroughALink) {
    folder.Write("other", "other");
    std::filesystem::create_symlink("other", folder.File("copy"));
    const std::string source = folder.Write("source", "x");
    EXPECT_EQ(CopyFile(source, folder.File("copy")), 0);
    EXPECT_EQ(Content(folder.File("copy")), "x");
    EXPECT_EQ(Content(folder.File("other")), "other");
}

TEST_F(CopyingFiles, FailsForWhatIsNoFile) {
    EXPECT_EQ(CopyFile(folder.File("absent"), folder.File("copy")), ENOENT);
    EXPECT_EQ(CopyFile(folder.Path(), folder.File("copy")), EISDIR);
    ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(CopyFile(folder.File("pipe"), folder.File("copy")), EINVAL);
    const std::string source = folder.Write("source", "x");
    EXPECT_EQ(CopyFile(source, folder.File("absent/copy")), ENOENT);
    EXPECT_EQ(CopyFile(source, folder.Path()), EISDIR);
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("pipe", "source"));
}

// Stands for a full disk: what is written stops in the middle of the file.
TEST_F(CopyingFiles, LeavesNothingHalfWrittenWhenThereIsNoRoom) {
    const std::string source = folder.Write("source", std::string(200000, 'x'));
    const std::string copy = folder.Write("copy", "old");
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{100000, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    const int error = CopyFile(source, copy);
    const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(Content(copy), "old");
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("copy", "source"));
}

TEST_F(CopyingFiles, TellsOneFileOfTwoPathsFromTwoFiles) {
    const std::string a = folder.Write("a", "x"), b = folder.Write("b", "x");
    std::filesystem::create_symlink("a", folder.File("link"));
    EXPECT_TRUE(AreSameFile(a, folder.Path() + "/./a"));
    EXPECT_TRUE(AreSameFile(a, folder.File("link")));
    EXPECT_FALSE(AreSameFile(a, b));
    EXPECT_FALSE(AreSameFile(folder.File("absent"), folder.File("absent")));
}

TEST_F(CopyingFiles, TellsEqualFilesFromOthers) {
    const std::string a = folder.Write("a", std::string(70000, 'x'));
    const std::string b = folder.Write("b", std::string(70000, 'x'));
    EXPECT_TRUE(HaveEqualBytes(a, b));
    EXPECT_FALSE(HaveEqualBytes(a, folder.Write("c", std::string(69999, 'x') + "y")));
    EXPECT_FALSE(HaveEqualBytes(a, folder.Write("d", std::string(69999, 'x'))));
    EXPECT_FALSE(HaveEqualBytes(a, folder.File("absent")));
}

TEST_F(CopyingFiles, RemovesAFileOrFindsNone) {
    const std::string a = folder.Write("a", "x");
    EXPECT_EQ(RemoveFile(a), 0);
    EXPECT_FALSE(std::filesystem::exists(a));
    EXPECT_EQ(RemoveFile(a), 0);
    EXPECT_NE(RemoveFile(folder.Path()), 0);
}

} // namespace
} // namespace vellum::test
