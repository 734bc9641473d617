// SPDX-License-Identifier: MIT
// Links in folders that are watched, links to such folders, and folders that come late.
#include "watched_folders.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

using FolderLinks = WatchedFoldersTest;

TEST_F(FolderLinks, AsTheUsersFolderAreFollowed) {
    WriteFont(elsewhere.File("fonts/a.ttf"), "A");
    fs::create_directories(fs::path(server.UserFolder()).parent_path());
    fs::create_directory_symlink(elsewhere.File("fonts"), server.UserFolder());
    Start();
    EXPECT_TRUE(IsFound("A"));
    WriteFont(elsewhere.File("fonts/deep/b.ttf"), "B");
    EXPECT_THAT(HearUpTo("+deep/b.ttf"), ElementsAre("+deep/b.ttf"));
    fs::remove(elsewhere.File("fonts/a.ttf"));
    EXPECT_THAT(HearUpTo("-fonts/a.ttf"), ElementsAre("-fonts/a.ttf"));
}

TEST_F(FolderLinks, AsTheUsersFolderAreFollowedToWhereTheyLeadLater) {
    LookEvery(20);
    WriteFont(elsewhere.File("first/a.ttf"), "A");
    WriteFont(elsewhere.File("second/b.ttf"), "B");
    fs::create_directories(fs::path(server.UserFolder()).parent_path());
    fs::create_directory_symlink(elsewhere.File("first"), server.UserFolder());
    Start();
    fs::create_directory_symlink(elsewhere.File("second"), elsewhere.File("new"));
    fs::rename(elsewhere.File("new"), server.UserFolder());
    EXPECT_THAT(HearUpTo("+fonts/b.ttf"), UnorderedElementsAre("-fonts/a.ttf", "+fonts/b.ttf"));
    fs::remove(server.UserFolder());
    EXPECT_THAT(HearUpTo("-fonts/b.ttf"), ElementsAre("-fonts/b.ttf"));
}

TEST_F(FolderLinks, NameTheFolderThatIsRegistered) {
    Start();
    WriteFont(elsewhere.File("real/a.ttf"), "A");
    fs::create_directory_symlink(elsewhere.File("real"), elsewhere.File("link"));
    EXPECT_TRUE(VLRegisterFontDirectory(FolderURL(elsewhere.File("link")).Get(), 0, 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("A"));
    WriteFont(elsewhere.File("real/b.ttf"), "B");
    HearUpTo("+real/b.ttf");
    EXPECT_FALSE(VLRegisterFontDirectory(FolderURL(elsewhere.File("real")).Get(), 0, 0, kVLScopeUser));
    EXPECT_TRUE(VLUnregisterFontDirectory(FolderURL(elsewhere.File("link")).Get(), 0, kVLScopeUser));
    EXPECT_FALSE(IsFound("A"));
}

TEST_F(FolderLinks, OfTwoNamesForAFolderTellOfBoth) {
    WriteFont(elsewhere.File("real/a.ttf"), "A");
    fs::create_directories(fs::path(server.UserFolder()).parent_path());
    fs::create_directory_symlink(elsewhere.File("real"), server.UserFolder());
    Start();
    ASSERT_TRUE(VLRegisterFontDirectory(FolderURL(elsewhere.File("real")).Get(), 0, 0, kVLScopeUser));
    HearUpTo("+real/a.ttf");
    fs::remove(elsewhere.File("real/a.ttf"));
    EXPECT_THAT(HearUpTo("-fonts/a.ttf"), UnorderedElementsAre("-real/a.ttf", "-fonts/a.ttf"));
    EXPECT_FALSE(IsFound("A"));
}

TEST_F(FolderLinks, ToFilesAreFonts) {
    fs::create_directories(server.UserFolder());
    Start();
    WriteFont(elsewhere.File("a.ttf"), "A");
    fs::create_symlink(elsewhere.File("a.ttf"), User("link.ttf"));
    EXPECT_THAT(HearUpTo("+fonts/link.ttf"), ElementsAre("+fonts/link.ttf"));
    EXPECT_TRUE(IsFound("A"));
    fs::remove(User("link.ttf"));
    EXPECT_THAT(HearUpTo("-fonts/link.ttf"), ElementsAre("-fonts/link.ttf"));
}

TEST_F(FolderLinks, ThatLeadNowhereAreFontsOnceTheyLeadToOne) {
    LookEvery(20);
    fs::create_directories(server.UserFolder());
    fs::create_symlink(elsewhere.File("late/a.ttf"), User("link.ttf"));
    Start();
    EXPECT_FALSE(IsFound("A"));
    WriteFont(elsewhere.File("late/a.ttf"), "A");
    EXPECT_THAT(HearUpTo("+fonts/link.ttf").back(), "+fonts/link.ttf");
    fs::remove(elsewhere.File("late/a.ttf"));
    EXPECT_THAT(HearUpTo("-fonts/link.ttf").back(), "-fonts/link.ttf");
    EXPECT_FALSE(IsFound("A"));
}

TEST_F(FolderLinks, ThatAreHardNameTheFileTwice) {
    fs::create_directories(User("one"));
    fs::create_directories(User("two"));
    Start();
    WriteFont(User("one/a.ttf"), "A");
    EXPECT_THAT(HearUpTo("+one/a.ttf"), ElementsAre("+one/a.ttf"));
    fs::create_hard_link(User("one/a.ttf"), User("two/b.ttf"));
    EXPECT_THAT(HearUpTo("+two/b.ttf"), ElementsAre("+two/b.ttf"));
    fs::remove(User("one/a.ttf"));
    EXPECT_THAT(HearUpTo("-one/a.ttf"), ElementsAre("-one/a.ttf"));
    EXPECT_TRUE(IsFound("A"));
    fs::remove(User("two/b.ttf"));
    EXPECT_THAT(HearUpTo("-two/b.ttf"), ElementsAre("-two/b.ttf"));
    EXPECT_FALSE(IsFound("A"));
}

// However the folders on the way to it come and go.
TEST_F(FolderLinks, AreNotNeededForAFolderThatComesLate) {
    Start();
    for (int i = 0; i < 100; ++i) {
        const std::string name = "a" + std::to_string(i) + ".ttf";
        WriteFont(User("deep/" + name), "A");
        HearUpTo("+deep/" + name);
        fs::remove_all(fs::path(server.UserFolder()).parent_path());
        HearUpTo("-deep/" + name);
    }
}

} // namespace
} // namespace vellum::test
