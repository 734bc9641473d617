// SPDX-License-Identifier: MIT
// How a client meets its server, and how often it sends to one that is another life of itself each time.
#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "scripted_server.hpp"
#include "support/captured_log.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::Contains;

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

} // namespace
} // namespace vellum::test
