// SPDX-License-Identifier: MIT
// What is saved for the user and for the session: as one, and where it cannot be written.
#include "confined_process.hpp"
#include "running_server.hpp"
#include "server/saved_register.hpp"
#include "server/state_folders.hpp"
#include "support/captured_log.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <vellum/vellum.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;
constexpr std::array kFiles = {"/fonts.db", "/fonts.db-wal"}; // in the state's folder
constexpr char kName[] = "com.orrery.FontServer";

// ---- both databases as one ----

class BothDatabases : public ::testing::Test {
protected:
    BothDatabases() { ::setenv("XDG_STATE_HOME", home.File("state").c_str(), 1); }

    static StateChange Added(const std::string &path, const std::string &disabled) {
        StateChange change;
        change.added.files = {{path, 0}};
        change.added.disabled = {disabled};
        return change;
    }
    static StateChange Removed(const std::string &path, const std::string &disabled) {
        StateChange change;
        std::swap(change.removed, change.added = Added(path, disabled).added);
        return change;
    }
    static bool IsNothing(const SavedState &state) { return state.IsEmpty(); }
    std::string SessionFile() const { return home.File(std::string(kName) + ".session.db"); }

    TempDir home;
};

TEST_F(BothDatabases, AreAsOneAfterACrashBetweenThem) {
    ASSERT_TRUE(StateDatabase(SessionFile()).Apply(Added("/a", "file:///a"), false));
    ASSERT_TRUE(StateDatabase(UserStateFile(kName))
                    .Apply(Added("/b", "file:///b"), false, Added("/a", "file:///a").added));
    EXPECT_FALSE(IsNothing(StateDatabase(SessionFile()).Load())) << "this much is done at the crash";
    const SavedRegister after(kName, home.Path());
    EXPECT_TRUE(IsNothing(after.LoadForSession()));
    EXPECT_THAT(after.LoadForUser().disabled, ElementsAre("file:///b"));
}

TEST_F(BothDatabases, HaveMadeUpForACrashOnceAndForAll) {
    ASSERT_TRUE(StateDatabase(UserStateFile(kName))
                    .Apply(Added("/b", "file:///b"), false, Added("/a", "file:///a").added));
    ASSERT_TRUE(SavedRegister(kName, home.Path()).Save({}, Added("/a", "file:///a"), false));
    EXPECT_THAT(SavedRegister(kName, home.Path()).LoadForSession().disabled, ElementsAre("file:///a"));
}

TEST_F(BothDatabases, NoteNothingWhereAllIsDone) {
    SavedRegister saved(kName, home.Path());
    ASSERT_TRUE(saved.Save({}, Added("/a", "file:///a"), false));
    ASSERT_TRUE(saved.Save(Added("/b", "file:///b"), Removed("/a", "file:///a"), false));
    EXPECT_TRUE(IsNothing(saved.LoadForSession()));
    ASSERT_TRUE(saved.Save({}, Added("/a", "file:///a"), false));
    EXPECT_THAT(saved.LoadForSession().disabled, ElementsAre("file:///a"));
}

// ---- where nothing can be written ----

class UnwritableState : public ::testing::Test {
protected:
    UnwritableState() {
        ::setenv("VELLUM_IGNORE_SERVER", "0", 1);
        kept = folder.Add("kept.ttf", MakeFont({"Kept"}));
        other = folder.Add("other.ttf", MakeFont({"Other"}));
        fonts.Add("deep/inside.ttf", MakeFont({"Inside"}));
        directory =
            Adopt(ValURLCreateWithFileSystemPath(String(fonts.Path().c_str()).Get(), true, nullptr));
    }
    ~UnwritableState() override {
        std::error_code error;
        fs::permissions(StateFolder(), fs::perms::owner_all, error);
    }

    static bool IsFound(const char *name) {
        return bool(Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeUser, kNoActivation)));
    }
    std::string StateFolder() const { return server.Home().File("state/vellum"); }
    std::string Log() const {
        std::ostringstream text;
        text << std::ifstream(server.Home().File("log")).rdbuf();
        return text.str();
    }
    bool Speak() { return SpeakTo(server.Home().File("log")); }

    // A server has run, and left what it saved in its log of changes.
    void RunBefore() {
        const pid_t client = ::fork();
        ASSERT_TRUE(client == 0 || client > 0);
        if (client == 0) {
            RunningServer &before = server;
            ::_exit(before.Start() && VLRegisterFont(kept.Get(), 0, kVLScopeUser) && (before.Kill(), true)
                        ? 0
                        : 1);
        }
        int status = -1;
        ::waitpid(client, &status, 0);
        ASSERT_EQ(status, 0);
        ASSERT_TRUE(fs::exists(StateFolder() + "/fonts.db-wal"));
    }

    void ExpectThatItServesAndRefuses() {
        EXPECT_FALSE(VLRegisterFont(other.Get(), 0, kVLScopeUser));
        EXPECT_FALSE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser));
        EXPECT_FALSE(IsFound("Other-Regular"));
        EXPECT_FALSE(IsFound("Inside-Regular"));
        EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeSession));
        EXPECT_TRUE(IsFound("Other-Regular"));
        const std::string log = Log();
        const size_t first = log.find("Nothing can be registered for the user");
        ASSERT_NE(first, std::string::npos) << log;
        EXPECT_EQ(log.find("Nothing can be registered for the user", first + 1), std::string::npos) << log;
        EXPECT_FALSE(fs::exists(server.Home().File("run/vellum/com.orrery.FontServer.copy")));
    }

    RunningServer server;
    FontFolder folder, fonts;
    Ref<const ValURL> kept, other, directory;
};

TEST_F(UnwritableState, InAFolderThatMayNotBeWrittenIsServedAsItWasSaved) {
    RunBefore();
    fs::permissions(StateFolder(), fs::perms::owner_read | fs::perms::owner_exec);
    for (const char *file : kFiles) fs::permissions(StateFolder() + file, fs::perms::owner_read);
    server.Prepare([this] { return Speak() && BeBoundByModes(); });
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(IsFound("Kept-Regular"));
    ExpectThatItServesAndRefuses();
}

TEST_F(UnwritableState, OnAReadOnlyFileSystemIsServedAsItWasSaved) {
    RunBefore();
    const pid_t attempt = ::fork();
    if (attempt == 0) ::_exit(LiveApart(CLONE_NEWNS) ? 0 : 1);
    int status = -1;
    ::waitpid(attempt, &status, 0);
    if (status != 0) GTEST_SKIP() << "no namespaces are to be had here";
    server.Prepare([this] { return Speak() && LiveApart(CLONE_NEWNS) && MakeReadOnly(StateFolder()); });
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(IsFound("Kept-Regular"));
    ExpectThatItServesAndRefuses();
}

TEST_F(UnwritableState, InAFolderThatMayNotBeEnteredIsEmpty) {
    RunBefore();
    fs::permissions(StateFolder(), fs::perms::none);
    server.Prepare([this] { return Speak() && BeBoundByModes(); });
    ASSERT_TRUE(server.Start());
    EXPECT_FALSE(IsFound("Kept-Regular"));
    ExpectThatItServesAndRefuses();
}

TEST_F(UnwritableState, WithoutAFolderIsEmpty) {
    server.Home().Write("state", "no folder");
    server.Prepare([this] { return Speak(); });
    ASSERT_TRUE(server.Start());
    ExpectThatItServesAndRefuses();
}

TEST_F(UnwritableState, ThatCanBeWrittenAgainTakesTheNextChange) {
    RunBefore();
    fs::permissions(StateFolder(), fs::perms::owner_read | fs::perms::owner_exec);
    for (const char *file : kFiles) fs::permissions(StateFolder() + file, fs::perms::owner_read);
    server.Prepare([this] { return Speak() && BeBoundByModes(); });
    ASSERT_TRUE(server.Start());
    ExpectThatItServesAndRefuses();
    fs::permissions(StateFolder(), fs::perms::owner_all);
    EXPECT_FALSE(VLRegisterFont(other.Get(), 0, kVLScopeUser)) << "its files cannot be written yet";
    for (const char *file : kFiles)
        fs::permissions(StateFolder() + file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeUser));
    EXPECT_TRUE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("Inside-Regular"));
    server.Kill();
    fs::remove_all(server.Home().File("run/vellum")); // what was for the session
    ASSERT_TRUE(server.Start());
    CapturedLog log; // of the retry
    for (const char *name : {"Kept-Regular", "Other-Regular", "Inside-Regular"})
        EXPECT_TRUE(IsFound(name)) << name;
}

TEST_F(UnwritableState, ThatCanBeReadAgainIsTakenInWithTheNextChange) {
    RunBefore();
    fonts.Add("late.ttf", MakeFont({"Late"}));
    {
        StateDatabase database(StateFolder() + "/fonts.db");
        StateChange change;
        change.added.directories = {{fonts.Path(), 0, 0}};
        change.added.disabled = {TextOf(ValURLGetString(other.Get()))};
        ASSERT_TRUE(database.Apply(change, false));
    }
    fs::permissions(StateFolder(), fs::perms::none);
    server.Prepare([this] { return Speak() && BeBoundByModes(); });
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeSession));
    EXPECT_TRUE(IsFound("Other-Regular"));
    EXPECT_FALSE(IsFound("Kept-Regular"));
    fs::permissions(StateFolder(), fs::perms::owner_all);
    const auto third = folder.Add("third.ttf", MakeFont({"Third"}));
    EXPECT_TRUE(VLRegisterFont(third.Get(), 0, kVLScopeUser));
    while (!IsFound("Late-Regular")) std::this_thread::yield(); // the test's time limit ends this
    EXPECT_TRUE(IsFound("Kept-Regular"));
    EXPECT_TRUE(IsFound("Third-Regular"));
    EXPECT_FALSE(IsFound("Other-Regular")) << "it is disabled for the user";
    EXPECT_TRUE(VLUnregisterFont(kept.Get(), 0, kVLScopeUser));
    server.Kill();
    ASSERT_TRUE(server.Start());
    CapturedLog log; // of the retry
    EXPECT_TRUE(IsFound("Late-Regular"));
    EXPECT_TRUE(IsFound("Third-Regular"));
    EXPECT_FALSE(IsFound("Kept-Regular"));
}

TEST_F(UnwritableState, WhoseFolderIsThereAgainTakesTheNextChange) {
    const std::string in_the_way = server.Home().Write("state", "no folder");
    server.Prepare([this] { return Speak(); });
    ASSERT_TRUE(server.Start());
    ExpectThatItServesAndRefuses();
    fs::remove(in_the_way);
    EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeUser));
    server.Kill();
    fs::remove_all(server.Home().File("run/vellum")); // what was for the session
    ASSERT_TRUE(server.Start());
    CapturedLog log; // of the retry
    EXPECT_TRUE(IsFound("Other-Regular"));
}

TEST_F(UnwritableState, OfTheSessionLastsAsLongAsTheServer) {
    fs::create_directories(server.Home().File("run/vellum/com.orrery.FontServer.session.db"));
    fs::permissions(server.Home().File("run/vellum"), fs::perms::owner_all);
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeSession));
    EXPECT_TRUE(IsFound("Other-Regular"));
    EXPECT_TRUE(VLRegisterFont(kept.Get(), 0, kVLScopeUser));
}

// ---- where there is no room ----

using FullDisk = UnwritableState;

TEST_F(FullDisk, RefusesChangesAndLeavesAllAsItWasUntilThereIsRoom) {
    server.Prepare(OutliveLimits);
    ASSERT_TRUE(server.Start());
    ASSERT_TRUE(VLRegisterFont(kept.Get(), 0, kVLScopeUser));
    ASSERT_TRUE(LimitFiles(server.Process(), 0));
    EXPECT_FALSE(VLRegisterFont(other.Get(), 0, kVLScopeUser));
    EXPECT_FALSE(IsFound("Other-Regular"));
    EXPECT_FALSE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser));
    EXPECT_FALSE(IsFound("Inside-Regular"));
    VLDisableFonts(Array({kept}).Get(), 0, kVLScopeUser);
    EXPECT_TRUE(IsFound("Kept-Regular"));
    EXPECT_FALSE(VLUnregisterFont(kept.Get(), 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("Kept-Regular"));
    ASSERT_TRUE(LimitFiles(server.Process(), RLIM_INFINITY));
    EXPECT_TRUE(VLRegisterFont(other.Get(), 0, kVLScopeUser));
    EXPECT_TRUE(VLRegisterFontDirectory(directory.Get(), 0, 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("Inside-Regular"));
    ASSERT_TRUE(LimitFiles(server.Process(), 0));
    EXPECT_FALSE(VLUnregisterFontDirectory(directory.Get(), 0, kVLScopeUser));
    EXPECT_TRUE(IsFound("Inside-Regular"));
    server.Kill();
    ASSERT_TRUE(server.Start());
    CapturedLog log; // of the retry
    EXPECT_TRUE(IsFound("Kept-Regular"));
    EXPECT_TRUE(IsFound("Other-Regular"));
    EXPECT_TRUE(IsFound("Inside-Regular"));
}

// ---- servers beside each other ----

TEST(ServersOfDifferentNames, RunBesideEachOtherAndSaveForThemselves) {
    RunningServer server;
    FontFolder folder;
    const auto a = folder.Add("a.ttf", MakeFont({"A"})), b = folder.Add("b.ttf", MakeFont({"B"}));
    const auto in_another_process = [](const std::function<bool()> &work) {
        const pid_t process = ::fork();
        if (process == 0) ::_exit(work() ? 0 : 1);
        int status = -1;
        ::waitpid(process, &status, 0);
        return status == 0;
    };
    const auto is_found = [](const char *name) {
        return bool(Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeUser, kNoActivation)));
    };
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(in_another_process([&] { return VLRegisterFont(a.Get(), 0, kVLScopeUser); }));
    ASSERT_TRUE(in_another_process([&] { // the other of two that run
        ::setenv("VL_SERVICE_NAME_SUFFIX", "beside", 1);
        RunningServer &beside = server;
        const bool is_there = beside.Start() && VLRegisterFont(b.Get(), 0, kVLScopeUser) &&
                              is_found("B-Regular") && !is_found("A-Regular");
        return beside.Stop() == 0 && is_there;
    }));
    server.Kill();
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(is_found("A-Regular"));
    EXPECT_FALSE(is_found("B-Regular"));
}

} // namespace
} // namespace vellum::test
