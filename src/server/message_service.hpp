// SPDX-License-Identifier: MIT
// A service that answers messages: it takes in whoever connects, if it is the same user's, and hands on
// what they send.
#pragma once

#include "platform/port/packet.hpp"
#include "server/event_loop.hpp"
#include "server/peer.hpp"

#include <functional>
#include <map>
#include <memory>

namespace vellum {

// A peer that sends what is no message is cut off, and nobody else notices.
class MessageService {
public:
    // Answers a message by Peer::Reply, now or later. The message is the service's until the call returns.
    using Answer = std::function<void(const std::shared_ptr<Peer> &peer, const IncomingMessage &message)>;
    using Farewell = std::function<void(const std::shared_ptr<Peer> &peer)>;

    // `listener` is a socket that listens, `instance` what this life of the service is called, not 0.
    MessageService(EventLoop &loop, TDescriptor listener, uint64_t instance, Answer answer,
                   Farewell farewell = {});
    ~MessageService();
    MessageService(const MessageService &) = delete;
    MessageService &operator=(const MessageService &) = delete;

    const std::map<int, std::shared_ptr<Peer>> &Peers() const noexcept { return peers_; }

    // Ends the connection now.
    void Dismiss(const std::shared_ptr<Peer> &peer) noexcept;

private:
    void Accept();
    void TakeIn(TDescriptor socket);
    void Handle(const std::shared_ptr<Peer> &peer, uint32_t events);
    void Receive(const std::shared_ptr<Peer> &peer);

    EventLoop &loop_;
    TDescriptor listener_;
    const uint64_t instance_;
    const Answer answer_;
    const Farewell farewell_;
    PacketReceiver receiver_;
    std::map<int, std::shared_ptr<Peer>> peers_; // by socket
    bool is_full_ = false;                       // no descriptor is left: nobody is taken in until one goes
};

} // namespace vellum
