// SPDX-License-Identifier: MIT
// The service as a whole: it answers while its crawler works, dies or has no room, and begins where it
// ended.
#include "ipc/client/font_index.hpp"
#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "ipc/messages/message_codec.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/ports.hpp"
#include "platform/port/service_address.hpp"
#include "running_beacon.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

namespace fs = std::filesystem;

class IndexServices : public ::testing::Test {
protected:
    void Begin() {
        ASSERT_TRUE(beacon.Start());
        beacon.WaitUntilIdle();
    }
    bool BecomesKnown(const std::string &family) {
        return beacon.WaitUntil([&] { return !beacon.OfFamily(family).empty(); });
    }
    static pid_t Crawler() { return static_cast<pid_t>(RunningBeacon::Number("crawler")); }

    // No number that could mean anybody else is signalled.
    static void SignalCrawler(int signal) {
        const pid_t crawler = Crawler();
        ASSERT_GT(crawler, 1);
        ASSERT_EQ(::kill(crawler, signal), 0);
    }

    RunningBeacon beacon;
};

TEST_F(IndexServices, AnswerQueriesAndFollowTheFolders) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
    beacon.Files().Add("b.ttf", NamedFace{"Bar"});
    EXPECT_TRUE(BecomesKnown("Bar"));
    EXPECT_EQ(beacon.Number("files"), 2u);
    EXPECT_EQ(beacon.End(SIGTERM), 0);
}

TEST_F(IndexServices, AnswerWhatIsNoQueryWithAnEmptyFinishedResult) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    for (const char *query :
         {"x", "com_orrery_fount_name_family == \"Foo", "com_orrery_fount_name_family = \"Foo\"",
          "com_orrery_fount_name_family == \"Foo\" && com_orrery_fount_name_family == \"Foo\""})
        EXPECT_THAT(beacon.Ask(query), Optional(IsEmpty())) << query;
    EXPECT_THAT(beacon.Ask(std::string(40'000, 'a')), Optional(IsEmpty()));
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
}

TEST_F(IndexServices, CrawlWhenNobodyElseWantsTheProcessorOrTheDisk) {
    Begin();
    EXPECT_EQ(::sched_getscheduler(Crawler()), SCHED_IDLE);
    constexpr int kWhoIsAProcess = 1, kIdleClass = 3;
    EXPECT_EQ(::syscall(SYS_ioprio_get, kWhoIsAProcess, Crawler()) >> 13, kIdleClass);
    EXPECT_EQ(::sched_getscheduler(beacon.Process()), SCHED_OTHER); // who asks does not wait for idle time
}

TEST_F(IndexServices, AreOneAtATimeAndLeaveNoCrawlerBehind) {
    Begin();
    StartedService second;
    EXPECT_FALSE(second.Start(VELLUM_BEACON, beacon.Home().File("second")));
    const pid_t crawler = Crawler();
    ASSERT_GT(crawler, 1);
    EXPECT_EQ(beacon.End(SIGTERM), 0);
    EXPECT_EQ(::kill(crawler, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST_F(IndexServices, WaitForOneThatIsJustEnding) {
    const std::string path = ServicesFolder(IfMissing::kMake) + "/" + kBeaconName + ".lock";
    const int lock = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    StartedService service;
    service.Begin(VELLUM_BEACON, beacon.Home().File("ready"));
    while (!HasEndedOrWaitsAt(service.Process(), path)) std::this_thread::yield();
    ::close(lock);
    ASSERT_TRUE(service.IsReady());
    EXPECT_EQ(service.End(SIGTERM), 0);
}

// As a parser that fails badly would end it.
TEST_F(IndexServices, AnswerOnWhenTheCrawlerDiesAndBeginAnother) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    const pid_t first = Crawler();
    SignalCrawler(SIGSEGV);
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
    ASSERT_TRUE(beacon.WaitUntil([&] { return Crawler() != 0 && Crawler() != first; }));
    beacon.Files().Add("b.ttf", NamedFace{"Bar"});
    EXPECT_TRUE(BecomesKnown("Bar"));
}

TEST_F(IndexServices, AnswerWhileTheCrawlerIsStopped) {
    for (int i = 0; i < 50; ++i) beacon.Files().Add(std::to_string(i) + ".ttf", NamedFace{"Foo"});
    Begin();
    SignalCrawler(SIGSTOP);
    EXPECT_EQ(beacon.OfFamily("Foo").size(), 50u);
    EXPECT_EQ(beacon.End(SIGTERM), 0); // and end in time
}

TEST_F(IndexServices, ReadEveryFileAgainWhenTheyAreAskedTo) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    const uint64_t changes = beacon.Number("changes");
    ASSERT_TRUE(RebuildFontIndex());
    beacon.WaitUntilIdle(changes);
    EXPECT_TRUE(beacon.WaitUntil([&] { return beacon.Number("files-read") == 2; }));
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
}

TEST_F(IndexServices, LookThroughEverythingFromTimeToTimeForWhatNobodyTellsOf) {
    beacon.Files().MakeFolder("far/from/any/font");
    ::setenv("VELLUM_INDEX_INTERVAL", "1", 1);
    Begin();
    beacon.Files().Add("far/from/any/font/a.ttf", NamedFace{"Foo"});
    EXPECT_TRUE(BecomesKnown("Foo"));
}

TEST_F(IndexServices, BeginTheIndexAnewWhenItIsTakenAway) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    fs::remove_all(fs::path(beacon.Database()).parent_path());
    EXPECT_THAT(beacon.OfFamily("Foo"), IsEmpty());
    EXPECT_TRUE(BecomesKnown("Foo"));
}

TEST_F(IndexServices, SetABrokenIndexAsideAndMakeAnother) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    beacon.End(SIGTERM);
    std::ofstream(beacon.Database(), std::ios::binary) << std::string(20'000, 'x');
    ASSERT_TRUE(beacon.Start());
    EXPECT_TRUE(BecomesKnown("Foo"));
    EXPECT_TRUE(fs::exists(beacon.Database() + ".broken"));
}

// A limit of files stands for a disk that is full.
TEST_F(IndexServices, AnswerOnWithoutRoomOnTheDiskSayItOnceAndGoOnWhenThereIsSome) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    const std::string log = beacon.Home().File("log");
    ASSERT_TRUE(std::freopen(log.c_str(), "w", stderr)); // the service's, too
    Begin();
    const auto limit = [](rlim_t bytes) {
        const rlimit wanted = {bytes, RLIM_INFINITY};
        const pid_t crawler = Crawler();
        return crawler <= 1 ? -1 : ::prlimit(crawler, RLIMIT_FSIZE, &wanted, nullptr);
    };
    const auto has_no_room = [] { return RunningBeacon::State() == "no room"; };
    ASSERT_EQ(limit(100), 0);
    beacon.Files().Add("b.ttf", NamedFace{"Bar"});
    ASSERT_TRUE(beacon.WaitUntil(has_no_room));
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
    EXPECT_THAT(beacon.OfFamily("Bar"), IsEmpty());
    ASSERT_TRUE(RebuildFontIndex()); // has it be tried again at once
    ASSERT_TRUE(beacon.WaitUntil([&] { return beacon.Number("rebuilds") == 1 && has_no_room(); }));
    ASSERT_EQ(limit(RLIM_INFINITY), 0);
    EXPECT_TRUE(BecomesKnown("Bar"));
    EXPECT_TRUE(beacon.WaitUntil(
        [&] { return beacon.Number("files-read") >= 4; })); // the rebuild was not forgotten
    beacon.End(SIGTERM);
    std::ifstream file(log);
    const std::string said{std::istreambuf_iterator<char>(file), {}};
    const auto count = [&said](const std::string &text) {
        size_t times = 0;
        for (size_t at = said.find(text); at != std::string::npos; at = said.find(text, at + 1)) ++times;
        return times;
    };
    EXPECT_EQ(count("cannot be kept"), 1u) << said;
    EXPECT_EQ(count("is kept again"), 1u) << said;
}

TEST_F(IndexServices, NeverHoldUpOthersForOneWhoDoesNotListen) {
    for (int i = 0; i < 400; ++i)
        beacon.Files().Add(std::string(100, 'n') + std::to_string(i) + ".ttf", NamedFace{"Foo"});
    Begin();
    const std::string name = ServerName(kBeaconName).Get();
    const TDescriptor deaf = ConnectToService(name.c_str());
    const std::string query = "com_orrery_fount_name_family == \"Foo\"";
    const auto block =
        std::make_shared<const MemoryBlock>(MemoryBlock::CreateCopy(query.data(), query.size()));
    const OutgoingMessage request =
        WriteRequest(kFindFilesRow, 1, 1, {OutgoingMemory{block, query.size()}});
    PacketResult result = PacketResult::kDone;
    for (int sent = 0; result != PacketResult::kClosed && sent < 100'000; ++sent) {
        result = SendPacket(deaf.Get(), 0, request, false);
        if (result != PacketResult::kWouldBlock) continue;
        EXPECT_EQ(beacon.OfFamily("Foo").size(), 400u);
        pollfd event = {deaf.Get(), POLLOUT, 0};
        ASSERT_EQ(::poll(&event, 1, 20'000), 1); // there is room again, or nobody
    }
    EXPECT_EQ(result, PacketResult::kClosed);
}

TEST_F(IndexServices, CutOffWhoSendsWhatIsNoMessageAndAnswerOthers) {
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    Begin();
    const std::string name = ServerName(kBeaconName).Get();
    for (const std::string &packet : {std::string("x"), std::string(24, '\0'), std::string(3000, '\xff')}) {
        const TDescriptor hostile = ConnectToService(name.c_str());
        ASSERT_GT(::send(hostile.Get(), packet.data(), packet.size(), MSG_NOSIGNAL), 0);
        char byte;
        EXPECT_LE(::recv(hostile.Get(), &byte, 1, 0), 0);
    }
    const TDescriptor unknown = ConnectToService(name.c_str());
    const MessageRow strange = {static_cast<MessageID>(15099), {}, EReply::kNothing};
    ASSERT_EQ(SendPacket(unknown.Get(), 0, WriteRequest(strange, 1, 1, {}), false), PacketResult::kDone);
    PacketReceiver receiver;
    IncomingMessage message;
    uint64_t instance = 0;
    ASSERT_EQ(receiver.Receive(unknown.Get(), true, message, instance), PacketResult::kDone);
    ReceivedReply reply;
    EXPECT_EQ(ReadReply(strange, message, reply), kMachBadID);
    EXPECT_THAT(beacon.OfFamily("Foo"), ElementsAre("a.ttf"));
}

TEST_F(IndexServices, WaitForNobodyWhoAsksForAStatusAndLeaves) {
    Begin();
    const std::string name = ServerName(kBeaconName).Get();
    for (int i = 0; i < 20; ++i) {
        const TDescriptor leaving = ConnectToService(name.c_str());
        const auto never = static_cast<uint32_t>(beacon.Number("changes"));
        SendPacket(leaving.Get(), 0, WriteRequest(kIndexStatusRow, 1, 1, {uint32_t{3000}, never}), false);
    }
    beacon.Files().Add("a.ttf", NamedFace{"Foo"});
    EXPECT_TRUE(BecomesKnown("Foo"));
}

} // namespace
} // namespace vellum::test
