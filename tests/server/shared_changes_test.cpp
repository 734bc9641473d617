// SPDX-License-Identifier: MIT
// What processes hear of each other's changes of the shared register, by way of the font server's hub.
#include "frame/registry/generation_seed.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "ipc/notify/change_notifications.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/captured_log.hpp"
#include "support/heard_changes.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A server that runs before the process hears of anything.
struct StartedServer : RunningServer {
    StartedServer() { EXPECT_TRUE(Start()); }
};

class SharedChanges : public ::testing::Test {
protected:
    // Does something in another process and waits for its end; before the library is asked for anything
    // here.
    static bool InAnotherProcess(const std::function<bool()> &work) {
        const pid_t process = ::fork();
        if (process == 0) ::_exit(work() ? 0 : 1);
        int status = -1;
        ::waitpid(process, &status, 0);
        return status == 0;
    }

    // What is heard next; the test's time limit ends this when nothing comes.
    std::vector<HeardChange> Next() {
        pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
        while (::poll(&ready, 1, -1) != 1) {
        }
        return heard.Next();
    }

    StartedServer server;
    FontFolder folder;
    HeardChanges heard;
};

TEST_F(SharedChanges, OfOneProcessAreHeardInAnother) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    const uint32_t before = TGenerationSeed::GetGeneration();
    ASSERT_TRUE(InAnotherProcess([&] { return VLRegisterFont(url.Get(), 0, kVLScopeUser); }));
    EXPECT_THAT(Next(), ElementsAre(Added({TextOf(ValURLGetString(url.Get()))})));
    EXPECT_EQ(TGenerationSeed::GetGeneration(), before + 1);
}

TEST_F(SharedChanges, MoveTheGenerationBeforeTheyAreDelivered) {
    struct Delivery {
        const uint32_t before = TGenerationSeed::GetGeneration();
        std::vector<uint32_t> moved;
        static void Hear(void *, void *observer, const ValString *, const void *, const ValDictionary *) {
            auto *self = static_cast<Delivery *>(observer);
            self->moved.push_back(TGenerationSeed::GetGeneration() - self->before);
        }
    } delivery;
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    VLAddFontsChangedObserver(&delivery, Delivery::Hear);
    ASSERT_TRUE(InAnotherProcess([&] { return VLRegisterFont(url.Get(), 0, kVLScopeUser); }));
    Next();
    VLRemoveFontsChangedObserver(&delivery);
    EXPECT_THAT(delivery.moved, ElementsAre(1u));
}

TEST_F(SharedChanges, AreHeardOnceByTheProcessThatMadeThem) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeUser));
    EXPECT_THAT(Next(), ElementsAre(Added({TextOf(ValURLGetString(url.Get()))})));
    EXPECT_THAT(heard.Next(), IsEmpty());
}

TEST_F(SharedChanges, OfAFolderThatIsWatchedAreHeard) {
    std::filesystem::create_directories(server.UserFolder());
    const auto source = folder.Write("u.ttf", MakeFont({"U"}));
    std::filesystem::copy_file(source, server.UserFolder() + "/u.ttf");
    const auto changes = Next();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0], Added({"file://" + server.UserFolder() + "/u.ttf"}));
    std::filesystem::remove(server.UserFolder() + "/u.ttf");
    EXPECT_THAT(Next(), ElementsAre(Removed({"file://" + server.UserFolder() + "/u.ttf"})));
}

TEST_F(SharedChanges, ThatMayHaveBeenMissedAreToldAsAnArrayWithoutAny) {
    server.Kill();
    CapturedLog log;
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Next(), ElementsAre(Added({})));
}

// Who has been without a hub for a while looks for one rarely.
TEST_F(SharedChanges, ThatMayHaveBeenMissedAreToldAsSoonAsAServerIsThereAgain) {
    server.Kill();
    CapturedLog log;
    {
        const TDescriptor hub = ListenAsService(kNotificationHubName);
        for (int i = 0; i < 3; ++i) { // the next time is some seconds off
            pollfd somebody = {hub.Get(), POLLIN, 0};
            ASSERT_EQ(::poll(&somebody, 1, -1), 1);
            AcceptFromOwnUser(hub.Get());
        }
    }
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Next(), ElementsAre(Added({})));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
}

TEST_F(SharedChanges, ThatAreTooLongToTellAreToldAsAnArrayWithoutAny) {
    const uint32_t before = TGenerationSeed::GetGeneration();
    std::vector<Ref<const ValURL>> fonts;
    for (int i = 0; i < 2000; ++i)
        fonts.push_back(MakeURL("file:///" + std::string(1500, 'x') + std::to_string(i)));
    PostNotification(kVLScopeUser, kAvailableFontURLsAddedKey, Array(fonts).Get());
    EXPECT_THAT(Next(), ElementsAre(Added({})));
    EXPECT_EQ(TGenerationSeed::GetGeneration(), before + 1);
}

// A hub that has it will tell it; it must not be heard twice.
TEST_F(SharedChanges, AreHeardOnceByTheProcessThatMadeThemThoughTheHubIsSlowToAnswer) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    ::kill(server.Process(), SIGSTOP);
    PostNotification(kVLScopeUser, kAvailableFontURLsAddedKey, Array({url}).Get());
    ::kill(server.Process(), SIGCONT);
    EXPECT_THAT(Next(), ElementsAre(Added({TextOf(ValURLGetString(url.Get()))})));
    ASSERT_TRUE(InAnotherProcess([&] { return VLRegisterFont(url.Get(), 0, kVLScopeUser); }));
    EXPECT_THAT(Next(), ElementsAre(Added({TextOf(ValURLGetString(url.Get()))}))); // and nothing before
}

TEST_F(SharedChanges, AreHeardByTheProcessThatMadeThemWhereNoHubIs) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    server.Stop();
    CapturedLog log;
    PostNotification(kVLScopeUser, kAvailableFontURLsAddedKey, Array({url}).Get());
    EXPECT_THAT(Next(), ElementsAre(Added({TextOf(ValURLGetString(url.Get()))})));
}

} // namespace
} // namespace vellum::test
