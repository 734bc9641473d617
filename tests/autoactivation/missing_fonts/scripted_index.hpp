// SPDX-License-Identifier: MIT
// An index of font files in the test's own process, which answers as the test says, or does not.
#pragma once

#include "ipc/client/server_name.hpp"
#include "ipc/messages/index_rows.hpp"
#include "platform/beacon/metadata_items.hpp"
#include "platform/port/mach_message.hpp"
#include "platform/port/packet.hpp"
#include "platform/port/service_address.hpp"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vellum::test {

class ScriptedIndex {
public:
    // What is done with a query: `peer` is who asked, and stays as long as the index.
    using Script = std::function<void(const TDescriptor &peer)>;

    explicit ScriptedIndex(Script script)
        : script_(std::move(script)), end_(::eventfd(0, EFD_CLOEXEC)),
          listener_(ListenAsService(ServerName(kBeaconName).Get())), thread_([this] { Run(); }) {
        EXPECT_TRUE(listener_.IsOpen());
    }
    ~ScriptedIndex() {
        ::eventfd_write(end_.Get(), 1);
        thread_.join();
    }
    ScriptedIndex(const ScriptedIndex &) = delete;
    ScriptedIndex &operator=(const ScriptedIndex &) = delete;

    // How many queries have come.
    int Queries() const { return queries_; }

    static void Silence(const TDescriptor &) {}

    // The script of one that finds these files.
    static Script Finding(const std::vector<std::string> &paths) {
        std::vector<MetadataItem> items;
        for (const std::string &path : paths) items.push_back({path, "public.font", {}});
        return Saying(WriteMetadataItems(items));
    }

    // The script of one whose reply carries these bytes.
    static Script Saying(std::vector<uint8_t> results) {
        return [results](const TDescriptor &peer) {
            OutgoingMessage reply;
            const MachHeader header = {kMachSimpleBits | kMachComplexBit, 0, 1, 0, 0, kFindFontFilesReply};
            reply.Append(header);
            reply.Append(uint32_t{1});
            MachDescriptor descriptor;
            descriptor.size = static_cast<uint32_t>(results.size());
            reply.Append(descriptor);
            reply.Append(MachDataRepresentation());
            reply.Append(descriptor.size);
            reply.SetHeader(header);
            reply.AppendMemory({std::make_shared<const MemoryBlock>(
                                    MemoryBlock::CreateCopy(results.data(), results.size())),
                                results.size()});
            SendPacket(peer.Get(), 1, reply, true);
        };
    }

private:
    static constexpr int32_t kFindFontFilesReply = 15100;

    void Run() {
        PacketReceiver receiver(kMostMetadataBytes);
        for (;;) {
            std::vector<pollfd> events = {{end_.Get(), POLLIN, 0}, {listener_.Get(), POLLIN, 0}};
            for (const TDescriptor &peer : peers_) events.push_back({peer.Get(), POLLIN, 0});
            ::poll(events.data(), events.size(), -1);
            if (events[0].revents) return;
            for (size_t i = 0; i < peers_.size(); ++i)
                if (events[i + 2].revents && !Serve(receiver, peers_[i])) peers_[i] = TDescriptor();
            std::erase_if(peers_, [](const TDescriptor &peer) { return !peer.IsOpen(); });
            if (events[1].revents) peers_.push_back(AcceptFromOwnUser(listener_.Get()));
        }
    }

    bool Serve(PacketReceiver &receiver, const TDescriptor &peer) {
        IncomingMessage message;
        uint64_t instance = 0;
        if (receiver.Receive(peer.Get(), false, message, instance) != PacketResult::kDone) return false;
        ++queries_;
        script_(peer);
        return true;
    }

    const Script script_;
    std::atomic<int> queries_{0};
    std::vector<TDescriptor> peers_;
    const TDescriptor end_, listener_;
    std::thread thread_;
};

} // namespace vellum::test
