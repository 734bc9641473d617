// SPDX-License-Identifier: MIT
#include "platform/fs/file.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace vellum::test {
namespace {

constexpr uint64_t kLimit = 1000;

std::string TextOf(const std::optional<TBuffer> &content) {
    if (!content) return "(none)";
    return std::string(content->View().begin(), content->View().end());
}

std::string Read(const std::string &path, uint64_t limit = kLimit) {
    return TextOf(ReadWholeFile(path.c_str(), limit));
}

TEST(ReadWholeFile, GivesTheBytesOfARegularFile) {
    const TempDir folder;
    EXPECT_EQ(Read(folder.Write("a", "some text")), "some text");
    EXPECT_EQ(Read(folder.Write("empty", "")), "");
    std::filesystem::create_symlink("a", folder.File("link"));
    EXPECT_EQ(Read(folder.File("link")), "some text");
}

TEST(ReadWholeFile, ReadsUpToItsLimitAndRefusesWhatIsLarger) {
    const TempDir folder;
    const std::string path = folder.Write("a", "12345");
    EXPECT_EQ(Read(path, 5), "12345");
    EXPECT_EQ(Read(path, 4), "(none)");
}

// An open fifo without O_NONBLOCK would wait for a writer.
TEST(ReadWholeFile, RefusesWhatIsNoRegularFileWithoutWaiting) {
    const TempDir folder;
    ASSERT_EQ(::mkfifo(folder.File("fifo").c_str(), 0600), 0);
    EXPECT_EQ(Read(folder.File("fifo")), "(none)");
    EXPECT_EQ(Read(folder.Path()), "(none)");
    EXPECT_EQ(Read("/dev/null"), "(none)");
    EXPECT_EQ(Read(folder.File("none")), "(none)");
    EXPECT_EQ(Read(""), "(none)");
}

TEST(ReadWholeFile, LeavesNoDescriptorOpen) {
    const TempDir folder;
    const std::string path = folder.Write("a", "some text");
    const int before = ::dup(STDIN_FILENO);
    ASSERT_GE(before, 0);
    ::close(before);
    Read(path);
    Read(path, 1);
    Read(folder.Path());
    const int after = ::dup(STDIN_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

TEST(ReadFully, EndsWhereAFileWasCutShortMeanwhile) {
    const TempDir folder;
    const std::string path = folder.Write("a", "some text");
    TFileIdentity identity;
    const TDescriptor descriptor = OpenRegularFile(path.c_str(), kLimit, &identity);
    ASSERT_EQ(identity.size, 9u);
    std::filesystem::resize_file(path, 4);
    TBuffer content(9);
    const TReadResult result = ReadFully(descriptor.Get(), 0, content.Writable());
    EXPECT_EQ(result.length, 4u);
    EXPECT_FALSE(result.failed);
    content.Cut(result.length);
    EXPECT_EQ(std::string(content.View().begin(), content.View().end()), "some");
}

TEST(ReadFully, SaysWhenAnErrorEndedIt) {
    uint8_t bytes[4];
    const TReadResult result = ReadFully(-1, 0, bytes);
    EXPECT_EQ(result.length, 0u);
    EXPECT_TRUE(result.failed);
}

TEST(OpenRegularFile, TellsWhichStateOfWhichFileItIs) {
    const TempDir folder;
    const std::string path = folder.Write("a", "some text");
    TFileIdentity first, second;
    EXPECT_TRUE(OpenRegularFile(path.c_str(), kLimit, &first).IsOpen());
    EXPECT_TRUE(OpenRegularFile(path.c_str(), kLimit, &second).IsOpen());
    EXPECT_EQ(first, second);
    folder.Write("a", "some more text");
    EXPECT_TRUE(OpenRegularFile(path.c_str(), kLimit, &second).IsOpen());
    EXPECT_NE(first, second);
    EXPECT_EQ(first.inode, second.inode);
}

TEST(OpenRegularFile, LeavesTheIdentityAloneWhenItFails) {
    const TempDir folder;
    TFileIdentity identity;
    identity.size = 77;
    EXPECT_FALSE(OpenRegularFile(folder.File("none").c_str(), kLimit, &identity).IsOpen());
    EXPECT_EQ(identity.size, 77u);
}

} // namespace
} // namespace vellum::test
