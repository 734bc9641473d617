// SPDX-License-Identifier: MIT
// What happens in watched folders: of each font once, whatever else goes on, and where nothing can be
// watched.
#include "confined_process.hpp"
#include "ipc/client/global_glyphary_imp.hpp"
#include "watched_folders.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class FolderChanges : public WatchedFoldersTest {
protected:
    // A server that the system lets have so many watches, and that looks often instead.
    bool HasRoomFor(const char *limit, int count) {
        LookEvery(20);
        const auto confine = [=] {
            if (!LiveApart(0)) return false;
            std::ofstream file(std::string("/proc/sys/user/") + limit);
            file << count << std::flush;
            return bool(file);
        };
        server.Prepare(confine);
        const pid_t attempt = ::fork();
        if (attempt == 0) ::_exit(confine() ? 0 : 1);
        int status = -1;
        ::waitpid(attempt, &status, 0);
        return status == 0;
    }

    void ExpectThatFoldersAreFollowed() {
        WriteFont(User("old/a.ttf"), "A");
        WriteFont(User("old/gone.ttf"), "Gone");
        WriteFont(User("old/same.ttf"), "Same");
        Start();
        EXPECT_TRUE(IsFound("A"));
        WriteFont(User("old/b.ttf"), "B");
        EXPECT_THAT(HearUpTo("+old/b.ttf").back(), "+old/b.ttf");
        fs::remove(User("old/gone.ttf"));
        EXPECT_THAT(HearUpTo("-old/gone.ttf"), ElementsAre("-old/gone.ttf"));
        fs::rename(WriteFont(User("old/new"), "Changed"), User("old/a.ttf"));
        HearUpTo("+old/a.ttf");
        EXPECT_TRUE(IsFound("Changed"));
        WriteFont(User("new/deep/c.ttf"), "C");
        EXPECT_THAT(HearUpTo("+deep/c.ttf").back(), "+deep/c.ttf");
        fs::remove_all(User("new"));
        EXPECT_THAT(HearUpTo("-deep/c.ttf"), ElementsAre("-deep/c.ttf"));
        EXPECT_TRUE(IsFound("Same"));
    }
};

TEST_F(FolderChanges, AreSeenWithoutRoomForAllWatches) {
    if (!HasRoomFor("max_inotify_watches", 1)) GTEST_SKIP() << "no namespaces are to be had here";
    ExpectThatFoldersAreFollowed();
}

TEST_F(FolderChanges, AreSeenWithoutRoomForAnyWatch) {
    if (!HasRoomFor("max_inotify_instances", 0)) GTEST_SKIP() << "no namespaces are to be had here";
    ExpectThatFoldersAreFollowed();
}

TEST_F(FolderChanges, OfWhoMayReadAreSeen) {
    WriteFont(User("a.ttf"), "A");
    ::chmod(User("a.ttf").c_str(), 0);
    server.Prepare(BeBoundByModes);
    Start();
    EXPECT_FALSE(IsFound("A"));
    ::chmod(User("a.ttf").c_str(), 0600);
    EXPECT_THAT(HearUpTo("+fonts/a.ttf"), ElementsAre("+fonts/a.ttf"));
    EXPECT_TRUE(IsFound("A"));
    ::chmod(User("a.ttf").c_str(), 0);
    EXPECT_THAT(HearUpTo("-fonts/a.ttf"), ElementsAre("-fonts/a.ttf"));
}

TEST_F(FolderChanges, OfWhoMayReadAFolderAreSeen) {
    WriteFont(User("deep/a.ttf"), "A");
    ::chmod(User("deep").c_str(), 0);
    server.Prepare(BeBoundByModes);
    Start();
    EXPECT_FALSE(IsFound("A"));
    ::chmod(User("deep").c_str(), 0700);
    EXPECT_THAT(HearUpTo("+deep/a.ttf"), ElementsAre("+deep/a.ttf"));
    fs::remove(User("deep/a.ttf"));
    EXPECT_THAT(HearUpTo("-deep/a.ttf"), ElementsAre("-deep/a.ttf"));
}

TEST_F(FolderChanges, ThatChangeNoFontAreNotTold) {
    WriteFont(User("a.ttf"), "A");
    Start();
    ::chmod(User("a.ttf").c_str(), 0640);
    ASSERT_EQ(::chown(User("a.ttf").c_str(), ::geteuid(), ::getegid()), 0);
    fs::create_hard_link(User("a.ttf"), elsewhere.File("other-name"));
    WriteFont(User("b.ttf"), "B");
    EXPECT_THAT(HearUpTo("+fonts/b.ttf"), ElementsAre("+fonts/b.ttf"));
}

// More happens than the system remembers.
TEST_F(FolderChanges, OfWhichTheSystemLosesTrackAreToldOnceForEachFontThatChanged) {
    for (const char *name : {"a", "b", "c", "d"}) WriteFont(User(std::string(name) + ".ttf"), name);
    WriteFont(User("moved/e.ttf"), "e");
    Start();
    size_t most = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
    ASSERT_GT(most, 0u);
    ::kill(server.Process(), SIGSTOP);
    int status = 0;
    ::waitpid(server.Process(), &status, WUNTRACED);
    for (size_t i = 0; i <= most; ++i) // two names: the like of the last event would be no event
        ASSERT_EQ(::chmod(User(i % 2 ? "a.ttf" : "d.ttf").c_str(), 0600), 0);
    fs::remove(User("b.ttf"));
    WriteFont(User("new.ttf"), "New");
    fs::rename(WriteFont(User("other"), "Other"), User("c.ttf"));
    fs::rename(User("moved"), User("further"));
    ::kill(server.Process(), SIGCONT);
    auto changes = HearUpTo("+fonts/new.ttf");
    if (std::ranges::find(changes, "+further/e.ttf") == changes.end())
        std::ranges::copy(HearUpTo("+further/e.ttf"), std::back_inserter(changes));
    EXPECT_THAT(changes, UnorderedElementsAre("-fonts/b.ttf", "+fonts/new.ttf", "-fonts/c.ttf",
                                              "+fonts/c.ttf", "-moved/e.ttf", "+further/e.ttf"));
    EXPECT_TRUE(IsFound("Other"));
    WriteFont(User("further/after.ttf"), "After");
    EXPECT_THAT(HearUpTo("+further/after.ttf"), ElementsAre("+further/after.ttf"));
}

// A folder where files are made fast.
class FolderInMemory {
public:
    FolderInMemory() : path_(fs::exists("/dev/shm") ? "/dev/shm/vellum-XXXXXX" : "/tmp/vellum-XXXXXX") {
        if (!::mkdtemp(path_.data())) std::abort();
    }
    ~FolderInMemory() { fs::remove_all(path_); }
    FolderInMemory(const FolderInMemory &) = delete;
    FolderInMemory &operator=(const FolderInMemory &) = delete;

    const std::string &Path() const { return path_; }

private:
    std::string path_;
};

// Nobody waits for much of the time that it takes. The best of some attempts: others have the processor,
// too.
TEST_F(FolderChanges, InAHugeFolderKeepNobodyWaiting) {
    using Clock = std::chrono::steady_clock;
    const FolderInMemory huge;
    for (int i = 0; i < 50'000; ++i) // no files: nothing but the folder itself takes time
        ASSERT_EQ(::mkfifo((huge.Path() + "/" + std::to_string(i)).c_str(), 0600), 0);
    WriteFont(User("a.ttf"), "A");
    Start();
    const auto folder = FolderURL(huge.Path());
    constexpr double kPart = 0.15;
    double best = 1;
    for (int attempt = 0; attempt < 10 && best > kPart; ++attempt) {
        std::atomic<bool> is_done = false;
        const auto start = Clock::now();
        std::thread changer([&] {
            EXPECT_TRUE(VLRegisterFontDirectory(folder.Get(), 0, 0, kVLScopeUser));
            is_done = true;
        });
        const TGlobalGlypharyImp proxy; // asks the server each time
        const auto name = String("A-Regular");
        Clock::duration slowest = {};
        while (!is_done) {
            const auto begin = Clock::now();
            EXPECT_TRUE(proxy.CopyFontForName(name.Get(), kVLScopeUser));
            slowest = std::max(slowest, Clock::now() - begin);
        }
        changer.join();
        best = std::min(best, static_cast<double>(slowest.count()) /
                                  static_cast<double>((Clock::now() - start).count()));
        EXPECT_TRUE(VLUnregisterFontDirectory(folder.Get(), 0, kVLScopeUser));
    }
    EXPECT_LE(best, kPart);
}

} // namespace
} // namespace vellum::test
