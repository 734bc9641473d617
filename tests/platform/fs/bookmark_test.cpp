// SPDX-License-Identifier: MIT
#include "platform/fs/bookmark.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <climits>
#include <filesystem>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

// The path that bytes lead to; with a slash at its end for a folder, empty for none.
std::string Resolve(const Bytes &bookmark) {
    const auto found = ResolveBookmark(bookmark);
    if (!found) return "";
    return found->is_folder ? found->path + '/' : found->path;
}

Bytes Build(std::string_view path, uint64_t device, uint64_t inode, uint64_t size) {
    ByteWriter bytes;
    bytes.Text("VBkm").U32(1).U64(device).U64(inode).U64(size);
    return bytes.U32(static_cast<uint32_t>(path.size())).Text(path);
}

struct stat StatusOf(const std::string &path) {
    struct stat status = {};
    ::stat(path.c_str(), &status);
    return status;
}

TEST(Bookmark, HasItsDocumentedForm) {
    const TempDir folder;
    const std::string path = folder.Write("Foo \xFF.ttf", "12345");
    const struct stat status = StatusOf(path);
    EXPECT_EQ(CreateBookmark(path), Build(path, status.st_dev, status.st_ino, 5));
}

TEST(Bookmark, OfAFolderHasNoSlashAndNoSize) {
    const TempDir folder;
    const std::string inside = folder.MakeFolder("inside");
    const struct stat status = StatusOf(inside);
    EXPECT_EQ(CreateBookmark(inside + "/"), Build(inside, status.st_dev, status.st_ino, 0));
    EXPECT_EQ(Resolve(CreateBookmark(inside)), inside + "/");
    EXPECT_EQ(Resolve(CreateBookmark("/")), "//");
}

TEST(Bookmark, OfWhatIsNotThereIsNone) {
    const TempDir folder;
    EXPECT_TRUE(CreateBookmark(folder.File("none")).empty());
    EXPECT_TRUE(CreateBookmark("").empty());
    EXPECT_TRUE(CreateBookmark(".").empty());
    EXPECT_TRUE(CreateBookmark(std::string("/\0", 2)).empty());
    EXPECT_TRUE(CreateBookmark(std::string(PATH_MAX + 1, '/') + "x").empty());
}

TEST(Bookmark, LeadsToTheFileAtItsPath) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    EXPECT_EQ(Resolve(CreateBookmark(path)), path);
}

TEST(Bookmark, LeadsToAnotherFileThatTookThePath) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    const Bytes bookmark = CreateBookmark(path);
    fs::rename(path, folder.File("Bar.ttf"));
    folder.Write("Foo.ttf", "something else");
    EXPECT_EQ(Resolve(bookmark), path);
}

TEST(Bookmark, LeadsToTheFileThatWasRenamed) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    folder.Write("Aaa.ttf", "12345");
    folder.Write("Zzz.ttf", "12345");
    const Bytes bookmark = CreateBookmark(path);
    fs::rename(path, folder.File("Now \xFF.ttf"));
    EXPECT_EQ(Resolve(bookmark), folder.File("Now \xFF.ttf"));
}

TEST(Bookmark, LeadsToTheFolderThatWasRenamed) {
    const TempDir folder;
    const Bytes bookmark = CreateBookmark(folder.MakeFolder("Fonts"));
    fs::rename(folder.File("Fonts"), folder.File("Old Fonts"));
    folder.Write("Old Fonts/more", "");
    EXPECT_EQ(Resolve(bookmark), folder.File("Old Fonts/"));
}

TEST(Bookmark, DoesNotLeadToAnotherFolder) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    const Bytes bookmark = CreateBookmark(path);
    folder.MakeFolder("other");
    fs::rename(path, folder.File("other/Foo.ttf"));
    EXPECT_EQ(Resolve(bookmark), "");
}

TEST(Bookmark, OfAFileThatIsGoneLeadsNowhere) {
    const TempDir folder;
    const std::string path = folder.Write("inside/Foo.ttf", "12345");
    const Bytes bookmark = CreateBookmark(path);
    fs::remove(path);
    EXPECT_EQ(Resolve(bookmark), "");
    fs::remove(folder.File("inside"));
    EXPECT_EQ(Resolve(bookmark), "");
}

// A file system gives a new file the inode of one that is gone: only then is the size looked at.
TEST(Bookmark, DoesNotLeadToAFileOfAnotherSizeOrDevice) {
    const TempDir folder;
    const struct stat status = StatusOf(folder.Write("Foo.ttf", "12345"));
    const std::string gone = folder.File("Gone.ttf");
    EXPECT_EQ(Resolve(Build(gone, status.st_dev, status.st_ino, 5)), folder.File("Foo.ttf"));
    EXPECT_EQ(Resolve(Build(gone, status.st_dev, status.st_ino, 6)), "");
    EXPECT_EQ(Resolve(Build(gone, status.st_dev, status.st_ino + 1, 5)), "");
    EXPECT_EQ(Resolve(Build(gone, status.st_dev + 1, status.st_ino, 5)), "");
}

TEST(Bookmark, LeadsToTheFirstOfSeveralNamesOfOneFile) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    fs::create_hard_link(path, folder.File("b"));
    fs::create_hard_link(path, folder.File("a"));
    const Bytes bookmark = CreateBookmark(path);
    fs::remove(path);
    EXPECT_EQ(Resolve(bookmark), folder.File("a"));
}

TEST(Bookmark, ThatIsCutOrGrowsLeadsNowhere) {
    const TempDir folder;
    const Bytes whole = CreateBookmark(folder.Write("Foo.ttf", "12345"));
    for (size_t size = 0; size < whole.size(); ++size) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(Resolve(part), "") << size;
    }
    Bytes more = whole;
    more.push_back('x');
    EXPECT_EQ(Resolve(more), "");
}

TEST(Bookmark, OfAnotherFormOrVersionLeadsNowhere) {
    const TempDir folder;
    const Bytes whole = CreateBookmark(folder.Write("Foo.ttf", "12345"));
    for (size_t at = 0; at < 8; ++at) {
        Bytes changed = whole;
        changed[at] ^= 1;
        EXPECT_EQ(Resolve(changed), "") << at;
    }
}

TEST(Bookmark, WithAnImpossiblePathLeadsNowhere) {
    const TempDir folder;
    const std::string path = folder.Write("Foo.ttf", "12345");
    EXPECT_EQ(Resolve(Build("", 0, 0, 0)), "");
    EXPECT_EQ(Resolve(Build(".", 0, 0, 0)), "");
    EXPECT_EQ(Resolve(Build(path + std::string("\0x", 2), 0, 0, 0)), "");
    EXPECT_EQ(Resolve(Build(std::string(PATH_MAX - 2, '/') + "x", 0, 0, 0)), "");
    EXPECT_EQ(Resolve(Build(std::string(PATH_MAX, '/'), 0, 0, 0)), "");
    Bytes lying = Build(path, 0, 0, 0);
    for (size_t at = 32; at < 36; ++at) lying[at] = 0xFF;
    EXPECT_EQ(Resolve(lying), "");
}

} // namespace
} // namespace vellum::test
