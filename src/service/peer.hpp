// SPDX-License-Identifier: MIT
// One process at the other end of a connection.
#pragma once

#include "ipc/messages/message_codec.hpp"
#include "platform/fs/file.hpp"

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

namespace vellum {

class EventLoop;

// A peer asks one thing at a time: its next message is read when it has taken the reply to the last one.
// So nobody who asks without listening takes more memory than one reply, and what may be told in between.
class Peer : public std::enable_shared_from_this<Peer> {
public:
    Peer(EventLoop &loop, TDescriptor socket, uint64_t instance, pid_t process) noexcept
        : loop_(loop), socket_(std::move(socket)), instance_(instance), process_(process) {}
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    int Socket() const noexcept { return socket_.Get(); }
    pid_t Process() const noexcept { return process_; }
    uint64_t Instance() const noexcept { return instance_; }

    // True from a request's arrival until its reply has left.
    bool IsBusy() const noexcept { return is_busy_; }
    void Begin() noexcept { is_busy_ = true; }

    // Has nothing be read while the peer is busy; it is heard of all the same when it hangs up.
    void WaitUntilReplied() noexcept;

    // Sends the reply to what was asked last, at once or when there is room. Nothing when the peer is gone.
    void Reply(const MessageRow *row, const MachHeader &request, const OutgoingReply &reply) noexcept;

    // Tells the peer something that it has not asked for, at once or when there is room. False when the
    // peer is lost, or there is no room for more.
    bool Tell(const std::shared_ptr<const OutgoingMessage> &message) noexcept;

    // Whether something may be told: what waits here is bounded, and so is the memory of what the peer has
    // not read yet.
    bool HasRoomFor(const OutgoingMessage &message) noexcept;

    // True while something waits for room here.
    bool HasWaiting() const noexcept { return !waiting_.empty(); }

    // How much has left for the peer, and how much of that it has not read. Whatever the peer takes moves
    // one of them.
    struct Taking {
        uint64_t sent = 0; // messages
        int unread = 0;    // by the system's count

        bool operator==(const Taking &) const = default;
    };
    Taking HowFar() const noexcept;

    // Sends what waits for room.
    void SendWaiting() noexcept;

    // Cuts the peer off, once what waits has left.
    void CutOff() noexcept { is_cut_off_ = true; }
    bool IsCutOff() const noexcept { return is_cut_off_ && waiting_.empty(); }

    // Ends the connection. What the peer has sent and nobody has read is thrown away first, with care.
    void Close() noexcept;
    bool IsClosed() const noexcept { return !socket_.IsOpen(); }

private:
    struct Waiting {
        std::shared_ptr<const OutgoingMessage> message;
        bool is_reply;
    };

    // What may be told to a peer and not be taken by it.
    static constexpr size_t kMostWaiting = 1024;
    static constexpr size_t kMostWaitingBytes = size_t{8} << 20;

    // What lies in files may be told and not be read by the peer: the system bounds the rest.
    static constexpr size_t kMostUnreadBytes = size_t{8} << 20;

    template <class Share>
    bool Send(const OutgoingMessage &message, bool is_reply, Share share) noexcept;
    void ListenAgain() noexcept;

    EventLoop &loop_;
    TDescriptor socket_;
    const uint64_t instance_;
    const pid_t process_;
    bool is_busy_ = false;
    bool is_listened_to_ = true;
    bool is_cut_off_ = false;
    std::deque<Waiting> waiting_; // for room; while it is not empty, the loop watches for that alone
    size_t waiting_bytes_ = 0;
    size_t unread_bytes_ = 0; // at most so much lies in files that the peer has not read
    uint64_t sent_ = 0;
};

} // namespace vellum
