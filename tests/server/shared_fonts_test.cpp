// SPDX-License-Identifier: MIT
// The register that processes share, as a program sees it: this process asks, the font server answers.
#include "ipc/client/global_glyphary_imp.hpp"
#include "platform/late/expat.hpp"
#include "platform/late/freetype.hpp"
#include "platform/late/glib.hpp"
#include "platform/late/harfbuzz.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/captured_log.hpp"
#include "support/named_font.hpp"
#include "support/openings.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr VLActivationOptions kNoActivation = kVLActivationNotFromProviders | kVLActivationNotFromSearch;

class SharedFonts : public ::testing::Test {
protected:
    Bytes FontNamed(const char *family) { return MakeFont({family}); }

    void AddSystemFont(const std::string &name, const char *family) {
        server.System().Write(RunningServer::SystemFolder() + "/" + name, FontNamed(family));
    }
    Ref<const ValURL> AddFile(const std::string &name, const char *family) {
        return FileURL(folder.Write(name, FontNamed(family)));
    }
    static std::string Find(const char *name) {
        const auto url = Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeUser, kNoActivation));
        return url ? std::filesystem::path(TextOf(ValURLGetString(url.Get()))).filename().string() : "";
    }
    static std::vector<std::string> Families() {
        return Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeUser)));
    }

    RunningServer server;
    TempDir folder;
};

TEST_F(SharedFonts, AreFoundByName) {
    AddSystemFont("a.ttf", "A");
    ASSERT_TRUE(server.Start());
    EXPECT_EQ(Find("A-Regular"), "a.ttf");
    EXPECT_EQ(Find("B-Regular"), "");
}

TEST_F(SharedFonts, AreFoundWithoutAnyLibraryThatIsOpenedLate) {
    AddSystemFont("a.ttf", "A");
    ASSERT_TRUE(server.Start());
    EXPECT_EQ(Find("A-Regular"), "a.ttf");
    EXPECT_FALSE(sHarfBuzz.IsOpen());
    EXPECT_FALSE(sFreeType.IsOpen());
    EXPECT_FALSE(sExpat.IsOpen());
    EXPECT_FALSE(sGLib.IsOpen());
}

TEST_F(SharedFonts, AreFoundByNameInFilesThatWereOpenedOnce) {
    AddSystemFont("a.ttf", "A");
    Openings openings(server.System().File(RunningServer::SystemFolder() + "/a.ttf"));
    ASSERT_TRUE(server.Start());
    EXPECT_EQ(Find("A-Regular"), "a.ttf");
    EXPECT_EQ(openings.Count(), 1u);
}

TEST_F(SharedFonts, AreListed) {
    AddSystemFont("a.ttf", "A");
    AddSystemFont("b.ttf", "B");
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Families(), ElementsAre("A", "B"));
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFontNames(kVLScopeUser))),
                ElementsAre("A-Regular", "B-Regular"));
}

TEST_F(SharedFonts, AreRegisteredByOneProcessForAll) {
    AddSystemFont("a.ttf", "A");
    ASSERT_TRUE(server.Start());
    const auto url = AddFile("b.ttf", "B");
    const pid_t other = ::fork();
    if (other == 0) ::_exit(VLRegisterFont(url.Get(), 0, kVLScopeUser) ? 0 : 1);
    int status = -1;
    ::waitpid(other, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Find("B-Regular"), "b.ttf");
    EXPECT_EQ(VLGetScopeForFont(url.Get()), VLScope{kVLScopeUser});
}

TEST_F(SharedFonts, ThatWereRegisteredForTheUserAreThereAfterACrash) {
    ASSERT_TRUE(server.Start());
    const auto kept = AddFile("kept.ttf", "Kept"), hidden = AddFile("hidden.ttf", "Hidden");
    ASSERT_TRUE(VLRegisterFont(kept.Get(), 0, kVLScopeUser));
    ASSERT_TRUE(VLRegisterFont(hidden.Get(), 0, kVLScopeUser));
    VLDisableFonts(Array({hidden}).Get(), 0, kVLScopeUser);
    server.Kill();
    ASSERT_TRUE(server.Start());
    CapturedLog log; // of the retry
    EXPECT_EQ(Find("Kept-Regular"), "kept.ttf");
    EXPECT_EQ(Find("Hidden-Regular"), "");
    VLEnableFonts(Array({hidden}).Get(), 0, kVLScopeUser);
    EXPECT_EQ(Find("Hidden-Regular"), "hidden.ttf");
}

TEST_F(SharedFonts, ThatWereRegisteredForTheSessionOutliveTheServerAndNotTheSession) {
    ASSERT_TRUE(server.Start());
    ASSERT_TRUE(VLRegisterFont(AddFile("s.ttf", "S").Get(), 0, kVLScopeSession));
    server.Stop();
    ASSERT_TRUE(server.Start());
    CapturedLog log;
    const TGlobalGlypharyImp proxy; // which asks the server each time
    const auto name = String("S-Regular");
    EXPECT_TRUE(proxy.CopyFontForName(name.Get(), kVLScopeSession));
    server.Stop();
    std::filesystem::remove_all(server.Home().File("run/vellum"));
    ASSERT_TRUE(server.Start());
    EXPECT_FALSE(proxy.CopyFontForName(name.Get(), kVLScopeSession));
}

TEST_F(SharedFonts, AreRefusedWhenTheyAreNoFonts) {
    ASSERT_TRUE(server.Start());
    const auto good = AddFile("a.ttf", "A"), bad = FileURL(folder.Write("b.ttf", "no font"));
    const ValArray *errors = nullptr;
    EXPECT_FALSE(VLRegisterFonts(Array({good, bad}).Get(), 0, kVLScopeUser, &errors));
    EXPECT_THAT(Texts(Adopt(errors)), ElementsAre(TextOf(ValURLGetString(bad.Get()))));
    EXPECT_EQ(Find("A-Regular"), "a.ttf");
}

TEST_F(SharedFonts, AreTheOtherLifesWhenTheServerHasStartedAnew) {
    AddSystemFont("a.ttf", "A");
    ASSERT_TRUE(server.Start());
    ASSERT_EQ(Find("A-Regular"), "a.ttf");
    server.Kill();
    AddSystemFont("b.ttf", "B");
    ASSERT_TRUE(server.Start());
    CapturedLog log;
    EXPECT_EQ(Find("B-Regular"), "b.ttf");
    EXPECT_THAT(
        log.Lines(),
        Contains("Invalid font server IPC destination! Namespace changed? Retrying (0)...").Times(1));
}

TEST_F(SharedFonts, AreThoseOfTheMachineOnceTheServerListsNone) {
    ASSERT_TRUE(server.Start());
    AddSystemFont("late.ttf", "Late"); // before the server has seen it, perhaps; it is here in any case
    server.Kill();
    CapturedLog log;
    EXPECT_THAT(Families(), ElementsAre("Late"));
    EXPECT_THAT(Families(), ElementsAre("Late"));
    EXPECT_THAT(
        log.Lines(),
        Contains("Could not retrieve fonts from the server! Registering system fonts locally...").Times(1));
}

TEST_F(SharedFonts, AreNotTheServersWhereItIsIgnored) {
    ASSERT_TRUE(server.Start());
    ASSERT_TRUE(VLFontServerAnswers());
    ::setenv("VELLUM_IGNORE_SERVER", "YES", 1);
    EXPECT_FALSE(VLRegisterFont(AddFile("a.ttf", "A").Get(), 0, kVLScopeUser));
    ::unsetenv("VELLUM_IGNORE_SERVER");
}

TEST_F(SharedFonts, NeedNoMessageToFailForNamesAndURLsThatDoNotFit) {
    ASSERT_TRUE(server.Start());
    const TGlobalGlypharyImp proxy;
    server.Kill(); // whoever sends is told so
    CapturedLog log;
    EXPECT_FALSE(proxy.EnableFont(MakeURL("file:///" + std::string(2048 - 8, 'x')).Get(), kVLScopeUser));
    EXPECT_FALSE(proxy.CopyFontForName(String(std::string(1024, 'x')).Get(), kVLScopeUser));
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_FALSE(proxy.EnableFont(MakeURL("file:///" + std::string(2047 - 8, 'x')).Get(), kVLScopeUser));
    EXPECT_THAT(log.Lines(), Contains(HasSubstr("Laydown EnableFont received mig IPC error")));
}

TEST_F(SharedFonts, ComeAndGoWithTheFilesInTheUsersFolder) {
    std::filesystem::create_directories(server.UserFolder());
    ASSERT_TRUE(server.Start());
    const std::string path = server.UserFolder() + "/u.ttf";
    const auto source = folder.Write("u.ttf", FontNamed("U"));
    std::filesystem::copy_file(source, path);
    const TGlobalGlypharyImp proxy; // asks the server each time
    const auto is_there = [&] {
        return bool(proxy.CopyFontForName(String("U-Regular").Get(), kVLScopeUser));
    };
    while (!is_there()) {
    } // the test's time limit ends this when it never comes
    std::filesystem::remove(path);
    while (is_there()) {
    }
}

TEST_F(SharedFonts, AreHeldByAServerThatFindsItsDatabaseSpoiltAndKeepsIt) {
    const std::string path = server.Home().Write("state/vellum/fonts.db", "this was a database once");
    ASSERT_TRUE(server.Start());
    EXPECT_TRUE(std::filesystem::exists(path + ".broken"));
    EXPECT_TRUE(VLRegisterFont(AddFile("a.ttf", "A").Get(), 0, kVLScopeUser));
}

// ---- strangers ----

MachHeader ReplyTo(int32_t id, PortName port) {
    OutgoingMessage request;
    request.Append(MachHeader());
    request.Append(MachDataRepresentation());
    request.SetHeader({kMachSimpleBits, 0, port, mig_get_reply_port(), 0, id});
    IncomingMessage reply;
    EXPECT_EQ(mach_msg(request, reply), kMachSuccess);
    EXPECT_EQ(reply.bytes.size(), 36u);
    MachCode code;
    std::memcpy(&code, reply.bytes.data() + 32, sizeof code);
    MachHeader header = reply.Header();
    header.voucher = code;
    return header;
}

TEST_F(SharedFonts, ServerRefusesMessagesThatNobodySends) {
    ASSERT_TRUE(server.Start());
    PortName port = kPortNull;
    ASSERT_EQ(bootstrap_look_up("com.orrery.FontServer", port), kMachSuccess);
    for (const int32_t id : {13009, 13012, 13013, 13025, 12999, 13031, 0, -1}) {
        const MachHeader reply = ReplyTo(id, port);
        EXPECT_EQ(reply.id, id + 100);
        EXPECT_EQ(static_cast<int32_t>(reply.voucher), -303) << id;
    }
}

TEST_F(SharedFonts, ServerCutsOffWhoSendsNoMessagesAndServesTheOthers) {
    AddSystemFont("a.ttf", "A");
    ASSERT_TRUE(server.Start());
    for (const std::string &nonsense : {std::string("x"), std::string(24, '\0'), std::string(5000, 'V'),
                                        std::string("VLM1") + std::string(20, '\xff')}) {
        const TDescriptor socket = ConnectToService("com.orrery.FontServer");
        ASSERT_TRUE(socket.IsOpen());
        ASSERT_GT(::send(socket.Get(), nonsense.data(), nonsense.size(), MSG_NOSIGNAL), 0);
        char byte;
        EXPECT_EQ(::recv(socket.Get(), &byte, 1, 0), 0) << nonsense.size();
    }
    EXPECT_EQ(Find("A-Regular"), "a.ttf");
}

TEST_F(SharedFonts, HaveOneServerAtATime) {
    ASSERT_TRUE(server.Start());
    RunningServer *const same = &server;
    const pid_t first = same->Process();
    EXPECT_FALSE(server.Start());
    EXPECT_EQ(::kill(first, 0), 0);
    ::kill(first, SIGKILL);
    ::waitpid(first, nullptr, 0);
}

} // namespace
} // namespace vellum::test
