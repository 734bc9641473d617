// SPDX-License-Identifier: MIT
// The user's preferences: what is read and written, by many, by those that are killed, and on full disks.
#include "platform/app/preferences.hpp"
#include "support/captured_log.hpp"
#include "support/temp_dir.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Preferences : public ::testing::Test {
protected:
    Preferences() { ::setenv("XDG_CONFIG_HOME", config.Path().c_str(), 1); }

    std::string PathOf(const std::string &name = "domain.vlist") const {
        return config.File("vellum/" + name);
    }
    static std::string Get(const std::string &key) {
        return TextOf(TPreferences("domain").CopyValue(String(key).Get()));
    }
    static int Set(const std::string &key, const std::string &value) {
        return TPreferences("domain").SetValue(String(key).Get(), String(value).Get());
    }
    static std::string ContentOf(const std::string &path) {
        std::ifstream stream(path);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(config.File("vellum")))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    TempDir config;
    CapturedLog log;
};

// Runs `work` in a child, which ends with its result.
template <class Work>
pid_t InChild(Work work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work());
    return child;
}

int ResultOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(Preferences, AreNoneWhereThereIsNoFile) {
    EXPECT_EQ(Get("a"), "(null)");
    EXPECT_FALSE(std::filesystem::exists(config.File("vellum")));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Preferences, AreKeptInAFileOfTheUsersAlone) {
    ASSERT_EQ(Set("a", "x"), 0);
    ASSERT_EQ(Set("b", "y"), 0);
    EXPECT_EQ(Get("a"), "x");
    EXPECT_EQ(Get("b"), "y");
    struct stat status {};
    ASSERT_EQ(::stat(config.File("vellum").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    ASSERT_EQ(::stat(PathOf().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_THAT(Files(), ElementsAre("domain.vlist", "domain.vlist.lock"));
    ASSERT_EQ(TPreferences("domain").SetValue(String("a").Get(), nullptr), 0);
    EXPECT_EQ(Get("a"), "(null)");
    EXPECT_EQ(Get("b"), "y");
}

TEST_F(Preferences, LieBelowHomeWhereNothingElseIsSaid) {
    const TempDir home;
    ::setenv("HOME", home.Path().c_str(), 1);
    for (const char *config_home : {"", "relative"}) {
        ::setenv("XDG_CONFIG_HOME", config_home, 1);
        EXPECT_EQ(TPreferences("domain").Path(), home.File(".config/vellum/domain.vlist"));
    }
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(Set("a", "x"), 0);
    EXPECT_TRUE(std::filesystem::exists(home.File(".config/vellum/domain.vlist")));
    ::unsetenv("HOME");
    EXPECT_EQ(Set("a", "x"), ENOENT);
    EXPECT_EQ(Get("a"), "(null)");
}

TEST_F(Preferences, AreReadAnewEachTime) {
    const TPreferences preferences("domain");
    const auto write = [&](const std::string &value) {
        config.Write("vellum/domain.vlist",
                     "<vlist><dict><key>a</key><string>" + value + "</string></dict></vlist>");
    };
    write("x");
    EXPECT_EQ(TextOf(preferences.CopyValue(String("a").Get())), "x");
    write("y");
    EXPECT_EQ(TextOf(preferences.CopyValue(String("a").Get())), "y");
}

TEST_F(Preferences, ReplaceTheFileThatALinkLeadsToAndKeepTheLink) {
    const TempDir elsewhere;
    elsewhere.Write("mine", "<vlist><dict/></vlist>");
    config.MakeFolder("vellum");
    std::filesystem::create_symlink(elsewhere.File("mine"), PathOf());
    ASSERT_EQ(Set("a", "x"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(PathOf()));
    EXPECT_THAT(ContentOf(elsewhere.File("mine")), HasSubstr("<string>x</string>"));
}

TEST_F(Preferences, LeaveTheFileAloneWhenNothingChanges) {
    ASSERT_EQ(Set("a", "x"), 0);
    struct stat before {
    }, after{};
    ASSERT_EQ(::stat(PathOf().c_str(), &before), 0);
    ASSERT_EQ(Set("a", "x"), 0);
    ASSERT_EQ(::stat(PathOf().c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(Preferences, KeepABrokenFileAndSaySo) {
    config.Write("vellum/domain.vlist", "not a list");
    EXPECT_EQ(Get("a"), "(null)");
    ASSERT_EQ(Set("a", "x"), 0);
    EXPECT_EQ(Get("a"), "x");
    EXPECT_EQ(ContentOf(PathOf("domain.vlist.broken-1")), "not a list");
    EXPECT_THAT(log.Lines(),
                ElementsAre("The preferences <" + PathOf() + "> were no property list; they are kept as <" +
                            PathOf("domain.vlist.broken-1") + ">"));
    config.Write("vellum/domain.vlist", "<vlist><array/></vlist>");
    ASSERT_EQ(Set("a", "y"), 0);
    EXPECT_EQ(ContentOf(PathOf("domain.vlist.broken-1")), "not a list");
    EXPECT_EQ(ContentOf(PathOf("domain.vlist.broken-2")), "<vlist><array/></vlist>");
}

TEST_F(Preferences, RefuseWhatHasNoFormAndKeepWhatThereWas) {
    ASSERT_EQ(Set("a", "x"), 0);
    const auto uuid = Adopt(ValUUIDCreate());
    EXPECT_EQ(TPreferences("domain").SetValue(String("a").Get(), uuid.Get()), EINVAL);
    EXPECT_EQ(Set("a", "\x01"), EINVAL);
    EXPECT_EQ(Get("a"), "x");
}

TEST_F(Preferences, LoseNothingOnAFullDisk) {
    ASSERT_EQ(Set("a", "x"), 0);
    const std::string before = ContentOf(PathOf());
    const rlimit little{100, RLIM_INFINITY}, all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0); // SIGXFSZ would end the test here
    const int error = Set("b", std::string(200, 'y'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(ContentOf(PathOf()), before);
    EXPECT_THAT(Files(), ElementsAre("domain.vlist", "domain.vlist.lock"));
    EXPECT_THAT(log.Lines(),
                ElementsAre("The preferences <" + PathOf() + "> can't be changed (27 -- File too large)"));
}

TEST_F(Preferences, DoNotSetABrokenFileAsideOnAFullDisk) {
    const std::string broken(50, 'x');
    config.Write("vellum/domain.vlist", broken);
    const rlimit little{60, RLIM_INFINITY}, all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    const int error = Set("a", "x");
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(ContentOf(PathOf()), broken);
    EXPECT_THAT(Files(), ElementsAre("domain.vlist", "domain.vlist.lock"));
}

TEST_F(Preferences, SayThatTheirFolderCannotBeWrittenTo) {
    ASSERT_EQ(Set("a", "x"), 0);
    ASSERT_EQ(::chmod(config.Path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(config.File("vellum").c_str(), 0555), 0);
    ASSERT_EQ(::chmod(PathOf().c_str(), 0644), 0);
    const pid_t child = InChild([] {
        if (::geteuid() == 0 && ::setuid(65534) != 0) return 1;
        if (Set("b", "y") != EACCES) return 2;
        return Get("a") == "x" ? 0 : 3;
    });
    EXPECT_EQ(ResultOf(child), 0);
    EXPECT_EQ(Get("b"), "(null)");
    ASSERT_EQ(::chmod(config.File("vellum").c_str(), 0700), 0);
}

TEST_F(Preferences, DoNotOverwriteAFileThatCannotBeRead) {
    config.MakeFolder("vellum/domain.vlist");
    EXPECT_EQ(Set("a", "x"), EISDIR);
    EXPECT_TRUE(std::filesystem::is_directory(PathOf()));
    EXPECT_EQ(Get("a"), "(null)");
}

TEST_F(Preferences, AreNotChangedBehindTheBackOfWhoeverHasTheLock) {
    ASSERT_EQ(Set("a", "x"), 0);
    const int lock = ::open(PathOf("domain.vlist.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = InChild([&] {
        ::close(lock);
        if (::write(ready[1], "r", 1) != 1) return 1;
        return Set("b", "y");
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(Get("b"), "(null)");
    config.Write("vellum/domain.vlist", "<vlist><dict><key>c</key><string>z</string></dict></vlist>");
    ::close(lock);
    EXPECT_EQ(ResultOf(child), 0);
    EXPECT_EQ(Get("b"), "y");
    EXPECT_EQ(Get("c"), "z");
}

TEST_F(Preferences, LoseNothingOfWhatManyProcessesWrite) {
    constexpr int kProcesses = 6, kKeys = 8;
    std::vector<pid_t> children;
    for (int n = 0; n < kProcesses; ++n) {
        children.push_back(InChild([n] {
            for (int key = 0; key < kKeys; ++key) {
                if (Set(std::to_string(n) + "/" + std::to_string(key), "x")) return 1;
            }
            return 0;
        }));
    }
    for (const pid_t child : children) EXPECT_EQ(ResultOf(child), 0);
    for (int n = 0; n < kProcesses; ++n) {
        for (int key = 0; key < kKeys; ++key)
            EXPECT_EQ(Get(std::to_string(n) + "/" + std::to_string(key)), "x");
    }
}

// The child says when each change has begun; where in it the signal strikes, chance decides.
TEST_F(Preferences, SurviveAWriterThatIsKilled) {
    ASSERT_EQ(Set("kept", "x"), 0);
    for (int round = 0; round < 25; ++round) {
        int begun[2];
        ASSERT_EQ(::pipe(begun), 0);
        const pid_t child = InChild([&] {
            for (int n = 0;; ++n) {
                if (::write(begun[1], "b", 1) != 1) return 1;
                if (Set("n", std::string(size_t(n % 50) * 1000, 'n'))) return 2;
            }
        });
        ::close(begun[1]);
        char byte = 0;
        for (int n = 0; n <= round % 4; ++n) ASSERT_EQ(::read(begun[0], &byte, 1), 1);
        ::kill(child, SIGKILL);
        EXPECT_EQ(ResultOf(child), -SIGKILL);
        ::close(begun[0]);
        ASSERT_EQ(Get("kept"), "x") << round;
    }
    ASSERT_EQ(Set("after", "y"), 0);
    EXPECT_EQ(Get("after"), "y");
    EXPECT_THAT(Files(), ElementsAre("domain.vlist", "domain.vlist.lock"));
}

TEST_F(Preferences, ConcurrentThreadsLoseNothing) {
    OnEveryThread([](size_t thread) {
        for (int key = 0; key < 4; ++key)
            EXPECT_EQ(Set(std::to_string(thread) + "/" + std::to_string(key), "x"), 0);
    });
    for (size_t thread = 0; thread < kThreads; ++thread) {
        for (int key = 0; key < 4; ++key)
            EXPECT_EQ(Get(std::to_string(thread) + "/" + std::to_string(key)), "x");
    }
}

} // namespace
} // namespace vellum::test
