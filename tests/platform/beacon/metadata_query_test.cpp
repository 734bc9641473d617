// SPDX-License-Identifier: MIT
// The search from its caller's side, against services that a test plays: good ones, and all others.
#include "platform/beacon/metadata_query.hpp"
#include "platform/notify/notification_center.hpp"
#include "platform/port/service_address.hpp"
#include "support/bytes.hpp"
#include "support/temp_dir.hpp"

#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <chrono>
#include <cstring>
#include <thread>

namespace vellum::test {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

constexpr char kService[] = "com.orrery.Beacon_query_test";
constexpr size_t kPacketHeader = sizeof(PacketHeader);

MetadataItem Item(std::string path) {
    return {std::move(path), "public.truetype-ttf-font", {7, 8}};
}

// The bytes of a packet with a reply that brings this memory.
std::vector<uint8_t> ReplyPacket(const std::vector<uint8_t> &memory) {
    const auto length = static_cast<uint32_t>(memory.size());
    std::vector<uint8_t> packet;
    const auto append = [&packet](const auto &object) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(&object);
        packet.insert(packet.end(), bytes, bytes + sizeof object);
    };
    append(PacketHeader{kPacketMagic, 56, 1, 0, 5});
    append(MachHeader{kMachReplyBits | kMachComplexBit, 56, 1, 0, 0, 15100});
    append(uint32_t{1});
    for (const uint32_t word : {0U, 0U, 0x01000101U, length}) append(word);
    for (const uint32_t word : {0U, 1U, length}) append(word);
    packet.insert(packet.end(), memory.begin(), memory.end());
    return packet;
}

class MetadataQueries : public ::testing::Test {
protected:
    MetadataQueries() {
        ::chmod(folder.Path().c_str(), 0700);
        ::setenv("XDG_RUNTIME_DIR", folder.Path().c_str(), 1);
        NotificationCenter::Local().AddObserver(this, Heard, MetadataQuery::FinishNotification());
    }
    ~MetadataQueries() override {
        NotificationCenter::Local().RemoveObserver(this);
        g_main_context_unref(context);
    }

    static void Heard(void *, void *self, const ValString *, const void *object, const ValDictionary *) {
        static_cast<MetadataQueries *>(self)->finished.push_back(object);
    }

    void Listen() { listener = ListenAsService(kService); }

    // The other end of a query that was sent, and what it sent.
    TDescriptor TakeIn(std::vector<uint8_t> *request = nullptr) {
        TDescriptor peer = AcceptFromOwnUser(listener.Get());
        std::vector<uint8_t> bytes(4096);
        const ssize_t size = ::recv(peer.Get(), bytes.data(), bytes.size(), 0);
        EXPECT_GT(size, 0);
        bytes.resize(static_cast<size_t>(size));
        if (request) *request = bytes;
        return peer;
    }

    void RunUntilComplete(const MetadataQuery &query) {
        while (!query.IsGatheringComplete()) g_main_context_iteration(context, TRUE);
    }

    // What a query has gathered when the service says this.
    std::vector<MetadataItem> AfterPacket(const std::vector<uint8_t> &packet) {
        MetadataQuery query(kService, "q");
        EXPECT_TRUE(query.Execute(context));
        const TDescriptor peer = TakeIn();
        EXPECT_EQ(::send(peer.Get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
        RunUntilComplete(query);
        return query.Results();
    }

    TempDir folder;
    TDescriptor listener;
    GMainContext *context = g_main_context_new();
    std::vector<const void *> finished;
};

TEST_F(MetadataQueries, SendTheTextAndGatherTheResultsInTheContext) {
    Listen();
    MetadataQuery query(kService, "a == \"b\"");
    ASSERT_TRUE(query.Execute(context));
    std::vector<uint8_t> request;
    const TDescriptor peer = TakeIn(&request);
    const auto number = [&request](size_t at) {
        uint32_t word = 0;
        std::memcpy(&word, request.data() + at, sizeof word);
        return word;
    };
    ASSERT_EQ(request.size(), kPacketHeader + 56 + 8);
    EXPECT_EQ(number(kPacketHeader), 0x80001513u);
    EXPECT_EQ(number(kPacketHeader + 20), 15000u);
    EXPECT_EQ(number(kPacketHeader + 52), 8u);
    EXPECT_EQ(std::string(request.end() - 8, request.end()), "a == \"b\"");

    const auto packet = ReplyPacket(WriteMetadataItems(std::vector{Item("/a"), Item("/b")}));
    ::send(peer.Get(), packet.data(), packet.size(), MSG_NOSIGNAL);
    EXPECT_FALSE(query.IsGatheringComplete()); // nothing happens outside of the context
    RunUntilComplete(query);
    EXPECT_THAT(query.Results(), ElementsAre(Item("/a"), Item("/b")));
    EXPECT_THAT(finished, ElementsAre(&query));
}

TEST_F(MetadataQueries, UseTheDefaultContextOfTheThreadWhenNoneIsGiven) {
    Listen();
    g_main_context_push_thread_default(context);
    MetadataQuery query(kService, "q");
    ASSERT_TRUE(query.Execute(nullptr));
    g_main_context_pop_thread_default(context);
    const TDescriptor peer = TakeIn();
    const auto packet = ReplyPacket(WriteMetadataItems({}));
    ::send(peer.Get(), packet.data(), packet.size(), MSG_NOSIGNAL);
    RunUntilComplete(query);
    EXPECT_THAT(query.Results(), IsEmpty());
}

TEST_F(MetadataQueries, FailToStartWithoutAService) {
    EXPECT_FALSE(MetadataQuery(kService, "q").Execute(context));
    Listen();
    listener = TDescriptor(); // its socket is left
    EXPECT_FALSE(MetadataQuery(kService, "q").Execute(context));
    EXPECT_FALSE(MetadataQuery("", "q").Execute(context));
    Listen();
    EXPECT_FALSE(MetadataQuery(kService, "").Execute(context));
    EXPECT_THAT(finished, IsEmpty());
}

TEST_F(MetadataQueries, AreExecutedOnce) {
    Listen();
    MetadataQuery query(kService, "q");
    EXPECT_TRUE(query.Execute(context));
    EXPECT_FALSE(query.Execute(context));
}

TEST_F(MetadataQueries, FinishWithoutResultsWhenTheServiceEnds) {
    Listen();
    MetadataQuery query(kService, "q");
    ASSERT_TRUE(query.Execute(context));
    TakeIn(); // and hang up
    RunUntilComplete(query);
    EXPECT_THAT(query.Results(), IsEmpty());
    EXPECT_THAT(finished, ElementsAre(&query));
}

TEST_F(MetadataQueries, NeverFinishAndNeverWaitWithAServiceThatSaysNothing) {
    Listen();
    EXPECT_EQ(MetadataQuery::Run(kService, "q", 50ms), std::nullopt);
    MetadataQuery query(kService, "q");
    ASSERT_TRUE(query.Execute(context));
    EXPECT_FALSE(g_main_context_iteration(context, FALSE));
    EXPECT_FALSE(query.IsGatheringComplete());
    query.Stop();
    query.Stop();
    EXPECT_FALSE(g_main_context_iteration(context, FALSE));
    EXPECT_THAT(finished, IsEmpty());
}

// Whoever lies in the packet, in the message or in the items: it is the end, and nothing is believed.
TEST_F(MetadataQueries, FinishWithoutResultsWhenTheServiceSaysWhatIsNoResult) {
    Listen();
    const auto memory = WriteMetadataItems(std::vector{Item("/a"), Item("/b")});
    const auto good = ReplyPacket(memory);
    ASSERT_EQ(AfterPacket(good).size(), 2u);
    EXPECT_THAT(AfterPacket({1}), IsEmpty());
    for (size_t length : {kPacketHeader, kPacketHeader + 24, good.size() - 1})
        EXPECT_THAT(AfterPacket({good.begin(), good.begin() + static_cast<long>(length)}), IsEmpty())
            << length;
    for (const size_t at :
         std::initializer_list<size_t>{0, 4, 8, 28, 44, 48, 64, 72, 76, 80, 95, 96, 97, 100, 104}) {
        auto bad = good;
        bad[at] ^= 0x41;
        EXPECT_THAT(AfterPacket(bad), IsEmpty()) << at;
    }
    auto longer = memory;
    longer.push_back(0);
    EXPECT_THAT(AfterPacket(ReplyPacket(longer)), IsEmpty());
    EXPECT_THAT(AfterPacket(ReplyPacket({})), IsEmpty());
    EXPECT_THAT(AfterPacket(ReplyPacket(WriteMetadataItems(std::vector{Item("/a"), Item("relative")}))),
                IsEmpty());
    EXPECT_THAT(AfterPacket(ReplyPacket(WriteMetadataItems(std::vector{Item(std::string("/a\0b", 4))}))),
                IsEmpty());
}

TEST_F(MetadataQueries, MayBeEndedByWhomTheyTell) {
    Listen();
    auto query = std::make_unique<MetadataQuery>(kService, "q");
    ASSERT_TRUE(query->Execute(context));
    const TDescriptor peer = TakeIn();
    const auto end = [](void *, void *observer, const ValString *, const void *, const ValDictionary *) {
        static_cast<std::unique_ptr<MetadataQuery> *>(observer)->reset();
    };
    NotificationCenter::Local().AddObserver(&query, end, MetadataQuery::FinishNotification());
    const auto packet = ReplyPacket(WriteMetadataItems({}));
    ::send(peer.Get(), packet.data(), packet.size(), MSG_NOSIGNAL);
    while (query) g_main_context_iteration(context, TRUE);
    NotificationCenter::Local().RemoveObserver(&query);
}

TEST(MetadataItems, AreReadAsTheyWereWritten) {
    const std::vector items = {Item("/a"), MetadataItem{"/ü\xff", "", {-1, 999'999'999}}};
    EXPECT_THAT(ReadMetadataItems(WriteMetadataItems(items)), Optional(items));
    const std::vector<uint8_t> one = {1, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0,   0,   8,  0,
                                      0, 0, 2, 0, 0, 0, 1, 0, 0, 0, '/', 'a', 't'};
    EXPECT_EQ(WriteMetadataItems(std::vector{MetadataItem{"/a", "t", {7, 8}}}), one);
}

TEST(MetadataItems, AreNoMoreThanOneQueryMayBring) {
    const std::vector many(kMostMetadataItems + 1, Item("/a"));
    const auto read = ReadMetadataItems(WriteMetadataItems(many));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->size(), kMostMetadataItems);
    auto lie = WriteMetadataItems(std::vector{Item("/a")});
    lie[3] = 0xff;
    EXPECT_EQ(ReadMetadataItems(lie), std::nullopt);
    const std::vector big(kMostMetadataItems, Item("/" + std::string(4000, 'a')));
    EXPECT_LE(WriteMetadataItems(big).size(), kMostMetadataBytes);
    EXPECT_TRUE(ReadMetadataItems(WriteMetadataItems(big)));
}

} // namespace
} // namespace vellum::test
