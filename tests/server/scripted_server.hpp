// SPDX-License-Identifier: MIT
// A font server and its hub in the test's own process: they note what comes, and answer as a test says.
#pragma once

#include "frame/registry/generation_seed.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/message_codec.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/service_address.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"
#include "values/val_dictionary.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace vellum::test {

// Answers first contacts and observers, and everything else by a code, or refuses it as what was meant for
// another life of the server. To be told what to do before anybody asks.
class ScriptedServer {
public:
    ScriptedServer()
        : end_(::eventfd(0, EFD_CLOEXEC)), server_(ListenAsService(kFontServerName)),
          hub_(ListenAsService(kNotificationHubName)), thread_([this] { Run(); }) {
        EXPECT_TRUE(server_.IsOpen() && hub_.IsOpen());
    }
    ~ScriptedServer() { Stop(); }
    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    std::string common_font; // the name of the one font that a first contact tells of; or empty
    bool changes_at_first_contact = false; // a font, and the client has heard of it, before it is answered
    std::function<MachCode()> code;        // for everything else, on the server's thread; refused without

    // The ids of what has come until now, in order; nobody is served any more.
    std::vector<int32_t> Received() {
        Stop();
        return received_;
    }
    size_t Count(int32_t id) {
        const auto received = Received();
        return static_cast<size_t>(std::ranges::count(received, id));
    }

private:
    void Stop() {
        if (!thread_.joinable()) return;
        ::eventfd_write(end_.Get(), 1);
        thread_.join();
    }

    void Run() {
        for (;;) {
            std::vector<pollfd> events;
            for (const TDescriptor *one : {&end_, &server_, &hub_})
                events.push_back({one->Get(), POLLIN, 0});
            for (const TDescriptor &peer : peers_) events.push_back({peer.Get(), POLLIN, 0});
            ::poll(events.data(), events.size(), -1);
            if (events[0].revents) return;
            for (size_t i = 0; i < peers_.size(); ++i)
                if (events[i + 3].revents && !Serve(peers_[i])) peers_[i] = TDescriptor();
            std::erase_if(peers_, [](const TDescriptor &peer) { return !peer.IsOpen(); });
            if (events[1].revents) peers_.push_back(AcceptFromOwnUser(server_.Get()));
            if (events[2].revents) peers_.push_back(AcceptFromOwnUser(hub_.Get()));
        }
    }

    bool Serve(TDescriptor &peer) {
        IncomingMessage message;
        uint64_t instance = 0;
        if (receiver_.Receive(peer.Get(), false, message, instance) != PacketResult::kDone) return false;
        const MachHeader header = message.Header();
        received_.push_back(header.id);
        OutgoingReply reply;
        if (header.id == kObserveRow.id) {
            Send(peer, WriteReply(&kObserveRow, header, reply));
            observer_ = std::move(peer);
            return true;
        }
        if (header.id != kRendezvous && code) {
            reply.code = code();
            return Send(peer, WriteReply(FindMessageRow(header.id), header, reply));
        }
        if (header.id != kRendezvous) return SendRefusal(peer.Get(), ++life_) == PacketResult::kDone;
        if (changes_at_first_contact) TellOfAChange();
        reply.memory = *Flattened(CommonFonts().Get());
        return Send(peer, WriteReply(FindMessageRow(header.id), header, reply));
    }

    bool Send(const TDescriptor &peer, const OutgoingMessage &message) {
        return SendPacket(peer.Get(), code ? life_ : ++life_, message, true) == PacketResult::kDone;
    }

    Ref<const ValDictionary> CommonFonts() const {
        TValMutableDict fonts;
        if (!common_font.empty()) fonts.Set(String(common_font).Get(), MakeURL("file:///common.ttf").Get());
        return fonts.Publish();
    }

    void TellOfAChange() {
        const uint32_t before = TGenerationSeed::GetGeneration();
        TValMutableDict notification, user_info;
        user_info.Set(kAvailableFontURLsAddedKey, Array({}).Get());
        notification.Set(kVLFontsChangedDistributedNotification, user_info.Get());
        EXPECT_TRUE(Send(observer_,
                         WriteRequest(kTellRow, kPortNull, kPortNull, {*Flattened(notification.Get())})));
        while (TGenerationSeed::GetGeneration() == before) std::this_thread::yield();
    }

    std::vector<int32_t> received_;
    uint64_t life_ = 1; // every answer is from another one, unless there is a code to answer by
    PacketReceiver receiver_;
    std::vector<TDescriptor> peers_;
    TDescriptor observer_;
    const TDescriptor end_, server_, hub_;
    std::thread thread_;
};

} // namespace vellum::test
