// SPDX-License-Identifier: MIT
#include "platform/fs/directory.hpp"
#include "support/temp_dir.hpp"

#include <gmock/gmock.h>
#include <unistd.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> NamesIn(const std::string &path) {
    std::vector<std::string> names;
    for (const DirectoryEntry &entry : ListDirectory(path.c_str()))
        names.push_back(entry.name + (entry.is_directory ? "/" : ""));
    return names;
}

TEST(ListDirectory, ListsByTheBytesOfTheNames) {
    const TempDir folder;
    for (const char *name : {"b", "a", "Z", "\xFF", "10", "9"}) folder.Write(name, "");
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("10", "9", "Z", "a", "b", "\xFF"));
}

TEST(ListDirectory, TellsFoldersFromFilesAndFollowsNoLink) {
    const TempDir folder;
    folder.MakeFolder("folder");
    folder.Write("file", "");
    ASSERT_EQ(::symlink("folder", folder.File("link").c_str()), 0);
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("file", "folder/", "link"));
}

TEST(ListDirectory, IsEmptyForWhatCanNotBeRead) {
    const TempDir folder;
    const std::string file = folder.Write("file", "");
    EXPECT_THAT(NamesIn(folder.Path() + "/none"), IsEmpty());
    EXPECT_THAT(NamesIn(file), IsEmpty());
}

TEST(CanOpenDirectory, IsTrueForFoldersAlone) {
    const TempDir folder;
    const std::string file = folder.Write("file", "");
    EXPECT_TRUE(CanOpenDirectory(folder.Path().c_str()));
    EXPECT_FALSE(CanOpenDirectory(file.c_str()));
    EXPECT_FALSE(CanOpenDirectory(folder.File("none").c_str()));
}

} // namespace
} // namespace vellum::test
