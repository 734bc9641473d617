// SPDX-License-Identifier: MIT
// A service that answers messages: it takes in whoever connects, if it is the same user's, and hands on
// what they send.
#pragma once

#include "platform/port/packet.hpp"
#include "service/event_loop.hpp"
#include "service/peer.hpp"

#include <functional>
#include <map>
#include <memory>

namespace vellum {

// A peer that sends what is no message is cut off, and nobody else notices.
class MessageService {
public:
    // Answers a message by Peer::Reply, now or later. The message is the service's until the call returns.
    using Answer = std::function<void(const std::shared_ptr<Peer> &peer, const IncomingMessage &message)>;
    using About = std::function<void(const std::shared_ptr<Peer> &peer)>;

    struct Callbacks {
        Answer answer;
        About has_left = {};     // the peer is gone
        About has_listened = {}; // the peer has taken all that waited for it
    };

    // `listener` is a socket that listens, `instance` what this life of the service is called, not 0. A
    // request's descriptors may bring so much memory each.
    MessageService(EventLoop &loop, TDescriptor listener, uint64_t instance, uint32_t most_memory,
                   Callbacks callbacks);
    ~MessageService();
    MessageService(const MessageService &) = delete;
    MessageService &operator=(const MessageService &) = delete;

    const std::map<int, std::shared_ptr<Peer>> &Peers() const noexcept { return peers_; }

    // Ends the connection now.
    void Dismiss(const std::shared_ptr<Peer> &peer) noexcept;

private:
    void Accept();
    bool AcceptOne();
    bool HasRoomFor(int socket, pid_t process) const;
    void Pause();
    void TakeIn(TDescriptor socket, pid_t process);
    void Handle(const std::shared_ptr<Peer> &peer, uint32_t events);
    void Receive(const std::shared_ptr<Peer> &peer);

    EventLoop &loop_;
    TDescriptor listener_;
    const uint64_t instance_;
    const Callbacks callbacks_;
    const int most_descriptors_;
    PacketReceiver receiver_;
    std::map<int, std::shared_ptr<Peer>> peers_; // by socket
    std::map<pid_t, int> connections_;           // how many a process has
};

} // namespace vellum
