// SPDX-License-Identifier: MIT
// The user's files as they lie in the user's folders: their modes, and what is left of changes that were
// never finished.
#include "service_fixture.hpp"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace vellum::test {
namespace {

using std::filesystem::perms;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class UserFiles : public LegacyTest {
protected:
    const std::string list_ = ConfigFile("vellum/disabled-fonts");
    const std::string configuration_ = ConfigFile("fontconfig/conf.d/50-vellum.conf");

    // Has another process end at the first file that it writes something into.
    void DisableAndDie(const std::string &path) const {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit none{0, 0};
            signal(SIGXFSZ, SIG_DFL);
            if (setrlimit(RLIMIT_CORE, &none) == 0 && setrlimit(RLIMIT_FSIZE, &none) == 0)
                Disable(path, kVLScopeUser);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    }
};

Names NamesIn(const std::filesystem::path &folder) {
    Names names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

perms ModeOf(const std::string &path) {
    return std::filesystem::status(path).permissions();
}

TEST_F(UserFiles, ThatAKilledProcessLeftGoWithTheNextChange) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    DisableAndDie(path);
    EXPECT_THAT(NamesIn(ConfigFile("vellum")), SizeIs(2)); // what it wrote into, and the lock
    Disable(path, kVLScopeUser);
    EXPECT_THAT(NamesIn(ConfigFile("vellum")), ElementsAre("disabled-fonts", "disabled-fonts.lock"));

    std::filesystem::remove(configuration_);
    DisableAndDie(path);
    EXPECT_THAT(NamesIn(ConfigFile("fontconfig/conf.d")), SizeIs(1));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(NamesIn(ConfigFile("fontconfig/conf.d")), ElementsAre("50-vellum.conf"));
}

TEST_F(UserFiles, ThatAKilledProcessLeftGoFromWhereASymbolicLinkLeads) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    const std::string real = home_.Write("elsewhere/.list", "# mine\n");
    home_.MakeFolder("config/vellum");
    std::filesystem::create_symlink(real, list_);
    DisableAndDie(path);
    EXPECT_THAT(NamesIn(home_.File("elsewhere")), SizeIs(2));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(NamesIn(home_.File("elsewhere")), ElementsAre(".list"));
}

TEST_F(UserFiles, KeepTheModesThatTheUserGaveThem) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    const std::string other = WriteSystemFont("b.ttf", "B");
    Disable(path, kVLScopeUser);
    constexpr perms kPrivate = perms::owner_read | perms::owner_write;
    EXPECT_EQ(ModeOf(list_), kPrivate);
    EXPECT_EQ(ModeOf(configuration_), kPrivate);
    constexpr perms kShared = kPrivate | perms::group_read | perms::others_read;
    constexpr perms kReadable = perms::owner_read | perms::group_read;
    std::filesystem::permissions(list_, kShared);
    std::filesystem::permissions(configuration_, kReadable);
    Disable(other, kVLScopeUser);
    EXPECT_THAT(ReadText(list_), ::testing::HasSubstr(other));
    EXPECT_EQ(ModeOf(list_), kShared);
    EXPECT_EQ(ModeOf(configuration_), kReadable);
}

// Others' files beside ours: a copy that somebody made, and one whose name is as long as ours.
TEST_F(UserFiles, LeaveOtherFilesBesideThem) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    DisableAndDie(path);
    const Names others = {"disabled-fonts.backup", "disabled-fonts.saved1", "disabled-fonts.unfinished-",
                          "other.unfinished-abcdef"};
    for (const std::string &name : others) home_.Write("config/vellum/" + name, "mine");
    Disable(path, kVLScopeUser);
    Names expected = others;
    expected.insert(expected.begin(), "disabled-fonts");
    expected.insert(expected.begin() + 2, "disabled-fonts.lock");
    EXPECT_EQ(NamesIn(ConfigFile("vellum")), expected);
}

} // namespace
} // namespace vellum::test
