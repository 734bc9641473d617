// SPDX-License-Identifier: MIT
// Those whom a search depends on hang, die or lie: nobody waits longer than is said, and nothing is
// activated that does not fit.
#include "machine.hpp"
#include "scripted_index.hpp"
#include "support/other_process.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <chrono>
#include <string>

namespace vellum::test {
namespace {

constexpr char kApp[] = "org.example.App";

using Clock = std::chrono::steady_clock;
using std::chrono_literals::operator""s;
using std::chrono_literals::operator""ms;

// Far more than anybody waits here, and far less than anybody would without being told to wait less long.
constexpr auto kSoon = 30s;

// ---- the index of font files ----

class UnhelpfulIndex : public ::testing::Test {
protected:
    UnhelpfulIndex() { EXPECT_TRUE(machine.Server().Start()); }

    // Asks for a font that is nowhere, so often; none may take long.
    static void FindNothing(Application &application, int times) {
        for (int i = 0; i < times; ++i) {
            const auto start = Clock::now();
            EXPECT_EQ(application.Do("find Nobody"), "none");
            EXPECT_LT(Clock::now() - start, kSoon);
        }
    }

    Machine machine;
};

TEST_F(UnhelpfulIndex, ThatIsSilentIsWaitedForFiveSeconds) {
    const ScriptedIndex index(ScriptedIndex::Silence);
    Application application(kApp);
    const auto start = Clock::now();
    FindNothing(application, 1);
    EXPECT_GE(Clock::now() - start, 4900ms);
    EXPECT_EQ(index.Queries(), 1);
}

TEST_F(UnhelpfulIndex, IsAskedNoMoreAfterThreeFailuresUntilASettingChanges) {
    const ScriptedIndex index(ScriptedIndex::Silence);
    Application application(kApp);
    application.Do("patience 50");
    FindNothing(application, 2);
    EXPECT_EQ(application.Do("disabled"), "no");
    FindNothing(application, 1);
    EXPECT_EQ(application.Do("disabled"), "yes");
    FindNothing(application, 3);
    EXPECT_EQ(index.Queries(), 3);
    application.Do("own 2");
    FindNothing(application, 1);
    EXPECT_EQ(index.Queries(), 4) << "a setting has changed";
    EXPECT_EQ(application.Do("disabled"), "yes") << "failures are still counted together";
    FindNothing(application, 1);
    EXPECT_EQ(index.Queries(), 4);
}

TEST_F(UnhelpfulIndex, ThatAnswersAgainIsTrustedAgain) {
    Application application(kApp);
    application.Do("patience 50");
    for (int i = 0; i < 3; ++i) {
        FindNothing(application, 2); // nobody is there
        application.Do("patience 30000");
        const ScriptedIndex index(ScriptedIndex::Finding({}));
        FindNothing(application, 1);
        EXPECT_EQ(index.Queries(), 1);
        application.Do("patience 50");
    }
    EXPECT_EQ(application.Do("disabled"), "no");
}

TEST_F(UnhelpfulIndex, ThatIsAbsentFailsAtOnce) {
    Application application(kApp);
    FindNothing(application, 3);
    EXPECT_EQ(application.Do("disabled"), "yes");
}

TEST_F(UnhelpfulIndex, ThatTakesNobodyInIsWaitedForLikeASilentOne) {
    const TDescriptor listener = ListenAsService(ServerName(kBeaconName).Get());
    ASSERT_TRUE(listener.IsOpen());
    Application application(kApp);
    application.Do("patience 50");
    FindNothing(application, 3);
    EXPECT_EQ(application.Do("disabled"), "yes");
}

TEST_F(UnhelpfulIndex, ThatEndsOrSpeaksNonsenseHasFoundNothing) {
    const ScriptedIndex::Script scripts[] = {
        [](const TDescriptor &peer) { ::shutdown(peer.Get(), SHUT_RDWR); },
        [](const TDescriptor &peer) { ::send(peer.Get(), "nonsense", 8, MSG_NOSIGNAL); },
        ScriptedIndex::Saying({}),
        ScriptedIndex::Saying({255, 255, 255, 255}),
        ScriptedIndex::Saying(std::vector<uint8_t>(100'000, 1)),
        ScriptedIndex::Finding({"relative/path.ttf"}),
    };
    Application application(kApp);
    for (const auto &script : scripts) {
        const ScriptedIndex index(script);
        FindNothing(application, 1);
        EXPECT_EQ(index.Queries(), 1);
    }
    EXPECT_EQ(application.Do("disabled"), "no");
}

TEST_F(UnhelpfulIndex, ThatFindsWhatIsNoFontIsBelievedOfNoFile) {
    const FontFolder &files = machine.Files();
    files.Write("text", "no font");
    files.Write("empty", "");
    files.MakeFolder("folder");
    ASSERT_EQ(::mkfifo(files.File("pipe").c_str(), 0600), 0);
    files.Add("other.ttf", NamedFace{"Other"});
    files.Add("zzz/foo.ttf", NamedFace{"Foo"});
    std::vector<std::string> paths = {"/dev/zero", "/dev/null", "/proc/self/mem", "/", "/proc/kmsg"};
    for (const char *name : {"absent", "text", "empty", "folder", "pipe", "other.ttf", "text/below"})
        paths.push_back(files.File(name));
    paths.push_back(files.File("zzz/foo.ttf"));
    paths.push_back(files.File("zzz/foo.ttf"));
    const ScriptedIndex index(ScriptedIndex::Finding(paths));
    Application application(kApp);
    const auto start = Clock::now();
    EXPECT_EQ(application.Do("find Foo-Regular"), files.File("zzz/foo.ttf"));
    EXPECT_LT(Clock::now() - start, kSoon);
    EXPECT_EQ(application.Do("heard"), "added " + files.File("zzz/foo.ttf"));
}

// ---- providers ----

class UnhelpfulProviders : public ::testing::Test {
protected:
    UnhelpfulProviders() {
        machine.Files().Add("foo.ttf", NamedFace{"Foo"});
        machine.Start();
    }

    // With a provider, whatever it is like, the font is found in the index.
    void ExpectFoundInIndex(const std::string &patience = "300") {
        Application application(kApp);
        application.Do("patience " + patience);
        const auto start = Clock::now();
        EXPECT_EQ(application.Do("find Foo-Regular"), machine.Files().File("foo.ttf"));
        EXPECT_LT(Clock::now() - start, kSoon);
    }

    Machine machine;
};

// A provider that answers what `answer` gives, owned.
template <class Answer>
OtherProcess Offering(Answer) {
    return OtherProcess([] {
        const VLFontProviderCallback callback = [](void *, const ValDictionary *, int32_t) -> const void * {
            return Answer()();
        };
        const auto port = Adopt(VLCreateFontProviderLocalPort(callback, nullptr, nullptr));
        if (port) OtherProcess::IsReady();
        for (;;) {
            pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
            ::poll(&ready, 1, -1);
            VLDeliverNotifications();
        }
    });
}

TEST_F(UnhelpfulProviders, ThatHangAreWaitedForAsLongAsIsSaid) {
    const OtherProcess hung([] {
        const VLFontProviderCallback callback = [](void *, const ValDictionary *, int32_t) -> const void * {
            return nullptr;
        };
        const auto port = Adopt(VLCreateFontProviderLocalPort(callback, nullptr, nullptr));
        OtherProcess::IsReady();
        for (;;) ::pause(); // its main loop never turns
    });
    ExpectFoundInIndex();
}

TEST_F(UnhelpfulProviders, ThatDieWhileTheyAreAskedHaveNothing) {
    const OtherProcess dying = Offering([]() -> const void * { ::_exit(1); });
    ExpectFoundInIndex();
}

TEST_F(UnhelpfulProviders, ThatAnswerNothingOrNonsenseHaveNothing) {
    const OtherProcess silent = Offering([]() -> const void * { return nullptr; });
    const OtherProcess text = Offering([]() -> const void * { return String("fonts").Release(); });
    const OtherProcess empty = Offering([]() -> const void * { return Array({}).Release(); });
    const OtherProcess texts =
        Offering([]() -> const void * { return OneElement(String("file:///foo.ttf").Get()).Release(); });
    const OtherProcess no_files = Offering([]() -> const void * {
        return Array({FileURL("/absent.ttf"), FileURL("/dev/zero"), FileURL("/"),
                      MakeURL("https://example.org/foo.ttf")})
            .Release();
    });
    ExpectFoundInIndex();
}

TEST_F(UnhelpfulProviders, ThatOfferMoreThanAnybodyWantsAreTakenAtTheirFirstWords) {
    const TempDir elsewhere;
    const std::string last = elsewhere.Write("foo.ttf", MakeFont({"Foo"}));
    static std::string offered;
    offered = last;
    const OtherProcess lavish = Offering([]() -> const void * {
        TValMutableArray urls;
        for (int i = 0; i < 10'000; ++i) urls.Append(FileURL("/absent" + std::to_string(i)).Get());
        urls.Append(FileURL(offered).Get());
        return urls.Publish().Release();
    });
    ExpectFoundInIndex("30000");
}

// A program that asks on its main thread can't answer itself there.
TEST_F(UnhelpfulProviders, AreNotTheAskingProgramItself) {
    Application application(kApp);
    EXPECT_EQ(application.Do("offer"), "offering");
    const auto start = Clock::now();
    EXPECT_EQ(application.Do("find Foo-Regular"), machine.Files().File("foo.ttf"));
    EXPECT_LT(Clock::now() - start, kSoon);
}

// ---- the companion ----

class UnhelpfulCompanions : public UnhelpfulProviders {
protected:
    UnhelpfulCompanions() {
        machine.Prefer("<key>FountAutoActivation</key><string>FountAutoActivationAsk</string>");
    }
};

TEST_F(UnhelpfulCompanions, WhoseDialogueHangsIsTakenForANo) {
    machine.AnswerWith("exec sleep 1000");
    Application application(kApp);
    const auto start = Clock::now();
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_LT(Clock::now() - start, kSoon);
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_EQ(machine.Questions(), 1);
}

TEST_F(UnhelpfulCompanions, WhoseDialogueDiesIsTakenForANo) {
    machine.AnswerWith("kill -9 $$");
    Application application(kApp);
    EXPECT_EQ(application.Do("find Foo-Regular"), "none");
    EXPECT_EQ(application.Do("own?"), "0");
}

} // namespace
} // namespace vellum::test
