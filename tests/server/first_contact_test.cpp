// SPDX-License-Identifier: MIT
// How a client meets its server, and how often it sends to one that is another life of itself each time.
#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "scripted_server.hpp"
#include "support/captured_log.hpp"
#include "support/stopped_clock.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

using ::testing::Contains;
using namespace std::chrono_literals;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

// Folders without a server.
struct ServicesOfItsOwn {
    RunningServer folders;
    ServicesOfItsOwn() { ServicesFolder(IfMissing::kMake); }
};

TEST(Retries, AreTwoAndThenThereIsNoAnswer) {
    const ServicesOfItsOwn services;
    ScriptedServer server;
    CapturedLog log;
    const TGlobalGlypharyImp proxy;
    EXPECT_FALSE(proxy.CopyFontForName(String("A").Get(), kVLScopeUser));
    EXPECT_EQ(server.Count(kCopyFontWithName), 3u);
    for (const char *number : {"(0)", "(1)"})
        EXPECT_THAT(log.Lines(),
                    Contains("Invalid font server IPC destination! Namespace changed? Retrying " +
                             std::string(number) + "...")
                        .Times(1));
    EXPECT_THAT(
        log.Lines(),
        Contains("Laydown CopyFontForName received mig IPC error (10000003) from font server").Times(3));
}

TEST(Retries, BeginAnewWithTheNextQuestion) {
    const ServicesOfItsOwn services;
    ScriptedServer server;
    CapturedLog log;
    const TGlobalGlypharyImp proxy;
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(proxy.EnableFont(MakeURL("file:///a.ttf").Get(), kVLScopeUser));
    // Three, and two: the life that refused the third is known to be over, and is not sent to.
    EXPECT_EQ(server.Count(kEnableFont), 5u);
}

TEST(FirstContact, ComesAfterTheClientBeginsToHearOfChanges) {
    const ServicesOfItsOwn services;
    ScriptedServer server;
    CapturedLog log;
    const auto found = Adopt(VLCopyFontWithName(String("A").Get(), kVLScopeUser, kNoActivation));
    const auto received = server.Received();
    ASSERT_GE(received.size(), 2u);
    EXPECT_EQ(received[0], kObserveRow.id);
    EXPECT_EQ(received[1], kRendezvous);
}

TEST(FirstContact, BringsAnswersThatNeedNoMessage) {
    const ServicesOfItsOwn services;
    ScriptedServer server;
    server.common_font = "A";
    const auto found = Adopt(VLCopyFontWithName(String("A").Get(), kVLScopeUser, kNoActivation));
    EXPECT_TRUE(found);
    EXPECT_EQ(server.Count(kCopyFontWithName), 0u);
}

TEST(FirstContact, BringsNoAnswersFromBeforeAChange) {
    const ServicesOfItsOwn services;
    ScriptedServer server;
    server.common_font = "A";
    server.changes_at_first_contact = true;
    CapturedLog log;
    const auto found = Adopt(VLCopyFontWithName(String("A").Get(), kVLScopeUser, kNoActivation));
    EXPECT_FALSE(found);
    EXPECT_GT(server.Count(kCopyFontWithName), 0u);
}

// ---- a server that says that it cannot answer yet ----

TEST(ServerThatOnlyStarts, IsAskedAgainForAMinute) {
    const ServicesOfItsOwn services;
    CapturedLog log;
    const StoppedClock clock;
    int times = 0;
    ScriptedServer server;
    server.code = [&] {
        if (++times == 5) clock.Pass(60s - 1ns);
        if (times == 10) clock.Pass(1ns);
        return kMachAskAgain;
    };
    const TGlobalGlypharyImp proxy;
    EXPECT_FALSE(proxy.CopyFontForName(String("A").Get(), kVLScopeUser));
    EXPECT_EQ(server.Count(kCopyFontWithName), 10u);
    EXPECT_THAT(log.Lines(),
                Contains("Laydown CopyFontForName received mig IPC error (E) from font server"));
}

TEST(ServerThatOnlyStarts, IsNotWaitedForOnceMore) {
    const ServicesOfItsOwn services;
    CapturedLog log;
    const StoppedClock clock;
    ScriptedServer server;
    server.code = [&] {
        clock.Pass(30s);
        return kMachAskAgain;
    };
    const TGlobalGlypharyImp proxy;
    EXPECT_FALSE(proxy.CopyFontForName(String("A").Get(), kVLScopeUser)); // at 30, 60 and 90 seconds
    EXPECT_FALSE(proxy.CopyFontForName(String("B").Get(), kVLScopeUser));
    EXPECT_FALSE(proxy.EnableFont(MakeURL("file:///a.ttf").Get(), kVLScopeUser));
    const auto received = server.Received();
    EXPECT_EQ(std::ranges::count(received, kCopyFontWithName), 3 + 1);
    EXPECT_EQ(std::ranges::count(received, kEnableFont), 1);
}

TEST(ServerThatOnlyStarts, IsWaitedForAgainOnceItHasAnswered) {
    const ServicesOfItsOwn services;
    CapturedLog log;
    const StoppedClock clock;
    int times = 0;
    ScriptedServer server;
    server.code = [&]() -> MachCode {
        clock.Pass(40s);
        return ++times == 5 ? kMachBadID : kMachAskAgain;
    };
    const TGlobalGlypharyImp proxy;
    const auto ask = [&] { EXPECT_FALSE(proxy.CopyFontForName(String("A").Get(), kVLScopeUser)); };
    ask(); // at 40, 80 and 120 seconds
    ask(); // at 160
    ask(); // is answered
    ask(); // three times again
    EXPECT_EQ(server.Count(kCopyFontWithName), 3u + 1 + 1 + 3);
}

} // namespace
} // namespace vellum::test
