// SPDX-License-Identifier: MIT
// Programs that have fonts to give, and those that find them by way of the font server.
#include "ipc/client/font_provider.hpp"
#include "ipc/client/stubs.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/captured_log.hpp"
#include "support/named_font.hpp"
#include "support/other_process.hpp"
#include "support/sleeping_threads.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_number.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using PortRef = Ref<VLMessagePort>;

// ---- a provider ----

// What a provider's block is called with, counted; its answer says who asked.
struct Block {
    std::atomic<int> calls{0}, releases{0};

    static const void *Answer(void *context, const ValDictionary *, int32_t process) {
        ++static_cast<Block *>(context)->calls;
        return OneElement(String("for " + std::to_string(process)).Get()).Release();
    }
    static void Release(void *context) { ++static_cast<Block *>(context)->releases; }

    PortRef Offer() { return Adopt(VLCreateFontProviderLocalPort(Answer, this, Release)); }
};

void DeliverForEver() {
    for (;;) {
        pollfd ready = {VLGetNotificationDescriptor(), POLLIN, 0};
        ::poll(&ready, 1, -1);
        VLDeliverNotifications();
    }
}

// Offers fonts until it is killed.
void Provide() {
    Block block;
    const auto port = block.Offer();
    if (port) OtherProcess::IsReady();
    DeliverForEver();
}

// ---- who asks ----

std::vector<PortRef> Listed() {
    std::vector<PortRef> ports;
    const auto array = Adopt(VLCopyFontProviderRemotePorts());
    for (size_t i = 0; i < ValArrayGetCount(array.Get()); ++i)
        ports.push_back(
            Retain(static_cast<VLMessagePort *>(const_cast<void *>(ValArrayGetValue(array.Get(), i)))));
    return ports;
}

std::vector<int32_t> ListedProcesses() {
    std::vector<int32_t> processes;
    for (const auto &port : Listed()) processes.push_back(VLGetMessagePortProcess(port.Get()));
    return processes;
}

// As somebody asks who lacks a font.
MessagePortResult Ask(const VLMessagePort *port, double patience, Ref<const void> &answer) {
    TValMutableDict request;
    request.Set(ProviderKey("attributes").Get(), TValMutableDict().Get());
    request.Set(ProviderKey("pid").Get(), MakeNumber(static_cast<int32_t>(::getpid())).Get());
    const auto memory = Flattened(request.Get());
    const auto data = Adopt(ValDataCreate(memory->Bytes().data(), memory->Bytes().size()));
    Ref<const ValData> reply;
    const auto result = RemotePort(port)->Send(1, data.Get(), patience, patience, reply);
    answer = Resurrected({ValDataGetBytes(reply.Get()), ValDataGetLength(reply.Get())});
    return result;
}

class Providers : public ::testing::Test {
protected:
    Providers() { EXPECT_TRUE(server.Start()); }

    RunningServer server;
};

TEST_F(Providers, AreListedInOtherProcessesAndAnswerThem) {
    const OtherProcess one(Provide), two(Provide);
    EXPECT_THAT(ListedProcesses(), UnorderedElementsAre(one.ID(), two.ID()));
    for (const auto &port : Listed()) {
        Ref<const void> answer;
        ASSERT_EQ(Ask(port.Get(), 60, answer), MessagePortResult::kDone);
        EXPECT_THAT(Texts(Retain(Cast<ValArray>(answer.Get()))),
                    ElementsAre("for " + std::to_string(::getpid())));
    }
}

TEST_F(Providers, ThatHangKeepNobodyLongerThanHeSays) {
    const OtherProcess deaf([] {
        Block block;
        const auto port = block.Offer();
        OtherProcess::IsReady();
        for (;;) ::pause();
    });
    const auto ports = Listed();
    ASSERT_EQ(ports.size(), 1u);
    Ref<const void> answer;
    EXPECT_EQ(Ask(ports[0].Get(), 0.05, answer), MessagePortResult::kReceiveTimedOut);
    EXPECT_THAT(ListedProcesses(), ElementsAre(deaf.ID())) << "it may answer the next one";
}

// Announces a provider that takes nobody in until the pipe ends: what comes before waits.
void ProvideOnceToldTo(int told) {
    const std::string uuid = "01234567-89AB-CDEF-0123-456789ABCDEF";
    const std::string name = std::to_string(::getpid()) + "." + uuid;
    const TDescriptor listener = ListenAsService(name.c_str());
    const TDescriptor first =
        ::listen(listener.Get(), 0) == 0 ? ConnectToService(name.c_str()) : TDescriptor();
    PortName server_port = kPortNull;
    if (first.IsOpen() && bootstrap_look_up(kFontServerName, server_port) == kMachSuccess &&
        VLSendAddFontProvider(server_port, uuid) == kMachSuccess)
        OtherProcess::IsReady();
    char byte;
    while (::read(told, &byte, 1) > 0) {
    }
    for (std::vector<TDescriptor> peers;; peers.push_back(AcceptFromOwnUser(listener.Get()))) {
        pollfd peer = {listener.Get(), POLLIN, 0};
        ::poll(&peer, 1, -1);
    }
}

// Whether a thread of this process waits in that call of the system's.
bool IsIn(long call, pid_t thread) {
    long number = -1;
    std::ifstream("/proc/self/task/" + std::to_string(thread) + "/syscall") >> number;
    return number == call;
}

std::string FileCalled(const char *name) {
    const auto url = Adopt(VLCopyFontWithName(String(name).Get(), kVLScopeSession,
                                              kVLActivationNotFromProviders | kVLActivationNotFromSearch));
    return url ? std::filesystem::path(TextOf(ValURLGetString(url.Get()))).filename().string() : "";
}

TEST_F(Providers, ThatTakeNobodyInKeepNoOtherThreadWaiting) {
    std::array<int, 2> ends;
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const OtherProcess busy([&] {
        ::close(ends[1]);
        ProvideOnceToldTo(ends[0]);
    });
    FontFolder folder;
    ASSERT_TRUE(VLRegisterFont(folder.Add("font.ttf", MakeFont({"Font"})).Get(), 0, kVLScopeSession));
    std::atomic<pid_t> lister{0};
    std::vector<int32_t> listed;
    std::thread listing([&] {
        EXPECT_EQ(FileCalled("None"), ""); // it is connected with the server from here on
        lister = ::gettid();
        listed = ListedProcesses();
    });
    while (lister == 0 || !IsIn(SYS_connect, lister)) std::this_thread::yield();
    EXPECT_EQ(FileCalled("Font-Regular"), "font.ttf");
    ::close(ends[1]);
    listing.join();
    EXPECT_THAT(listed, ElementsAre(busy.ID())) << "it was given up before the other thread had its answer";
}

TEST_F(Providers, ThatHaveDiedAreNotListed) {
    OtherProcess one(Provide);
    const OtherProcess two(Provide);
    const auto ports = Listed();
    one.Kill();
    EXPECT_THAT(ListedProcesses(), ElementsAre(two.ID()));
    for (const auto &port : ports) {
        Ref<const void> answer;
        if (VLGetMessagePortProcess(port.Get()) != one.ID()) continue;
        EXPECT_EQ(Ask(port.Get(), 60, answer), MessagePortResult::kGone);
    }
}

TEST_F(Providers, AreListedBySeveralServersOneAfterTheOther) {
    const OtherProcess one(Provide);
    ASSERT_THAT(ListedProcesses(), ElementsAre(one.ID()));
    CapturedLog log;
    for (int i = 0; i < 2; ++i) {
        i == 0 ? server.Kill() : server.Stop();
        ASSERT_TRUE(server.Start());
        while (ListedProcesses().empty()) std::this_thread::yield(); // the test's time limit ends this
        EXPECT_THAT(ListedProcesses(), ElementsAre(one.ID()));
    }
}

TEST_F(Providers, ThatAnnouncedThemselvesBeforeThereWasAServerAreListedOnceThereIs) {
    server.Stop();
    const OtherProcess early(Provide);
    ASSERT_TRUE(server.Start());
    while (ListedProcesses().empty()) std::this_thread::yield(); // the test's time limit ends this
    EXPECT_THAT(ListedProcesses(), ElementsAre(early.ID()));
}

TEST_F(Providers, ThatGiveTheirPortBackAreWithdrawnAndReleaseTheirContextOnce) {
    Block block;
    auto port = block.Offer();
    ASSERT_TRUE(port);
    EXPECT_EQ(VLGetMessagePortProcess(port.Get()), ::getpid());
    const auto listed = Listed();
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(TextOf(Adopt(VLCopyMessagePortName(listed[0].Get()))),
              TextOf(Adopt(VLCopyMessagePortName(port.Get()))));
    EXPECT_EQ(block.releases, 0);
    port = nullptr;
    EXPECT_EQ(block.releases, 1);
    EXPECT_THAT(Listed(), IsEmpty());
    Ref<const void> answer;
    EXPECT_EQ(Ask(listed[0].Get(), 60, answer), MessagePortResult::kGone);
    server.Kill(); // what was withdrawn is not announced again, either
    CapturedLog log;
    ASSERT_TRUE(server.Start());
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_EQ(block.releases, 1);
}

TEST_F(Providers, AreNotCalledAfterTheirPortWasGivenBackWhoeverIsWaiting) {
    Block block;
    auto port = block.Offer();
    const auto listed = Listed();
    ASSERT_EQ(listed.size(), 1u);
    MessagePortResult result = MessagePortResult::kDone;
    std::thread asking([&] {
        Ref<const void> answer;
        result = Ask(listed[0].Get(), 60, answer);
    });
    pollfd question = {VLGetNotificationDescriptor(), POLLIN, 0};
    while (::poll(&question, 1, -1) != 1) {
    }
    port = nullptr;
    asking.join();
    EXPECT_EQ(result, MessagePortResult::kGone);
    EXPECT_EQ(block.releases, 1);
    VLDeliverNotifications();
    EXPECT_EQ(block.calls, 0);
}

TEST_F(Providers, ReleaseTheirContextOnceAlsoWhereNoPortCanBeHad) {
    Block block;
    EXPECT_FALSE(VLCreateFontProviderLocalPort(nullptr, &block, Block::Release));
    EXPECT_EQ(block.releases, 1);
    ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
    EXPECT_FALSE(block.Offer());
    EXPECT_EQ(block.releases, 2);
    EXPECT_FALSE(VLCopyFontProviderRemotePorts());
    ::unsetenv("VELLUM_IGNORE_SERVER");
    EXPECT_EQ(block.calls, 0);
}

// The number of threads of this process, of which the one that hears of the server would be one.
size_t Threads() {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

TEST_F(Providers, DoNotListenToAServerThatIsIgnored) {
    ::setenv("VELLUM_IGNORE_SERVER", "YES", 1);
    const size_t before = Threads();
    Block block;
    EXPECT_FALSE(block.Offer());
    EXPECT_EQ(Threads(), before);
    ::unsetenv("VELLUM_IGNORE_SERVER");
}

TEST_F(Providers, AreLeftAloneByTheChildrenOfTheirProcess) {
    Block block;
    auto port = block.Offer();
    ASSERT_TRUE(port);
    OtherProcess child([&] {
        port = nullptr;
        if (block.releases == 0) OtherProcess::IsReady();
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_THAT(ListedProcesses(), ElementsAre(::getpid()));
    EXPECT_EQ(block.releases, 0);
}

TEST_F(Providers, MayBeChildrenOfOthersAndAreAnnouncedForThemselvesAlone) {
    Block block;
    const auto port = block.Offer();
    ASSERT_TRUE(port);
    WaitUntilOthersSleep(); // the address sanitizer's children have its allocator as it was
    const OtherProcess child(Provide);
    EXPECT_THAT(ListedProcesses(), UnorderedElementsAre(::getpid(), child.ID()));
    server.Kill();
    CapturedLog log;
    ASSERT_TRUE(server.Start());
    while (ListedProcesses().size() < 2) std::this_thread::yield(); // the test's time limit ends this
    EXPECT_THAT(ListedProcesses(), UnorderedElementsAre(::getpid(), child.ID()));
}

} // namespace
} // namespace vellum::test
