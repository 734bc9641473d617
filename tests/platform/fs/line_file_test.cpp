// SPDX-License-Identifier: MIT
#include "platform/fs/line_file.hpp"
#include "support/temp_dir.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>

namespace vellum::test {
namespace {

class LineFile : public ::testing::Test {
protected:
    std::string Content() const {
        std::ifstream stream(path);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    TempDir folder;
    const std::string path = folder.File("lines");
    TLineFile file;
};

TEST_F(LineFile, IsMadeForItsOwnerAloneAndAppendedTo) {
    ASSERT_TRUE(file.Open(path.c_str()));
    EXPECT_TRUE(file.Append("a"));
    EXPECT_TRUE(file.Append("b"));
    EXPECT_EQ(Content(), "a\nb\n");
    struct stat status;
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(LineFile, IsARegularOne) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_FALSE(file.Open(path.c_str()));
    EXPECT_EQ(errno, ENOTSUP);
    EXPECT_FALSE(TLineFile().Open(folder.Path().c_str()));
    ::close(reader);
}

TEST_F(LineFile, AtItsLimitLosesLinesAndBeginsTheNextOneAnew) {
    ASSERT_TRUE(file.Open(path.c_str()));
    rlimit former;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{4, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_TRUE(file.Append("abcdef")); // no signal ends this test
    EXPECT_TRUE(file.Append("ghi"));
    ::setrlimit(RLIMIT_FSIZE, &former);
    EXPECT_TRUE(file.Append("jkl"));
    EXPECT_EQ(Content(), "abcd\njkl\n");
}

TEST_F(LineFile, WhoseDescriptorIsAnotherFilesIsLeftAlone) {
    const int next = ::dup(STDIN_FILENO); // the descriptor that the file will get
    ASSERT_GE(next, 0);
    ::close(next);
    ASSERT_TRUE(file.Open(path.c_str()));
    ::close(next);
    const int other = ::open(folder.File("other").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(other, next);
    EXPECT_FALSE(file.Append("a"));
    struct stat status;
    ASSERT_EQ(::fstat(other, &status), 0);
    EXPECT_EQ(status.st_size, 0);
    ::close(other);
    EXPECT_FALSE(file.Append("a"));
}

} // namespace
} // namespace vellum::test
