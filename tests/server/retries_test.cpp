// SPDX-License-Identifier: MIT
// How often a client sends to a server that is another life of itself each time.
#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/captured_log.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::Contains;

// Answers first contacts, and refuses everything else as what was meant for another life of the server.
class RefusingServer {
public:
    RefusingServer()
        : listener_(ListenAsService("com.orrery.FontServer")), end_(::eventfd(0, EFD_CLOEXEC)),
          thread_([this] { Run(); }) {
        EXPECT_TRUE(listener_.IsOpen());
    }
    ~RefusingServer() { Stop(); }

    // How many messages of a kind have come until now; nobody is served any more.
    size_t Count(int32_t id) {
        Stop();
        return static_cast<size_t>(std::ranges::count(received_, id));
    }

private:
    void Stop() {
        if (!thread_.joinable()) return;
        ::eventfd_write(end_.Get(), 1);
        thread_.join();
    }

    void Run() {
        PacketReceiver receiver;
        std::vector<TDescriptor> peers;
        for (;;) {
            std::vector<pollfd> events = {{end_.Get(), POLLIN, 0}, {listener_.Get(), POLLIN, 0}};
            for (const TDescriptor &peer : peers) events.push_back({peer.Get(), POLLIN, 0});
            ::poll(events.data(), events.size(), -1);
            if (events[0].revents) return;
            for (size_t i = 0; i < peers.size(); ++i)
                if (events[i + 2].revents && !Serve(peers[i].Get(), receiver)) peers[i] = TDescriptor();
            if (events[1].revents) peers.push_back(AcceptFromOwnUser(listener_.Get()));
            std::erase_if(peers, [](const TDescriptor &peer) { return !peer.IsOpen(); });
        }
    }

    bool Serve(int peer, PacketReceiver &receiver) {
        IncomingMessage message;
        uint64_t instance = 0;
        if (receiver.Receive(peer, false, message, instance) != PacketResult::kDone) return false;
        const MachHeader header = message.Header();
        received_.push_back(header.id);
        if (header.id != kRendezvous) return SendRefusal(peer, ++life_) == PacketResult::kDone;
        OutgoingReply reply;
        reply.memory = *Flattened(TValMutableDict().Get());
        return SendPacket(peer, ++life_, WriteReply(FindMessageRow(header.id), header, reply), true) ==
               PacketResult::kDone;
    }

    std::vector<int32_t> received_;
    uint64_t life_ = 0;
    const TDescriptor listener_, end_;
    std::thread thread_;
};

struct ServicesOfItsOwn {
    RunningServer folders; // of which no server is started
    ServicesOfItsOwn() { ServicesFolder(IfMissing::kMake); }
};

TEST(Retries, AreTwoAndThenThereIsNoAnswer) {
    const ServicesOfItsOwn services;
    RefusingServer server;
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
    RefusingServer server;
    CapturedLog log;
    const TGlobalGlypharyImp proxy;
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(proxy.EnableFont(MakeURL("file:///a.ttf").Get(), kVLScopeUser));
    // Three, and two: the life that refused the third is known to be over, and is not sent to.
    EXPECT_EQ(server.Count(kEnableFont), 5u);
}

} // namespace
} // namespace vellum::test
