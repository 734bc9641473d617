// SPDX-License-Identifier: MIT
// One process at the other end of a connection.
#pragma once

#include "ipc/messages/message_codec.hpp"
#include "platform/fs/file.hpp"

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace vellum {

class EventLoop;

// A peer asks one thing at a time: its next message is read when it has taken the reply to the last one.
// So nobody who asks without listening takes more memory than one reply.
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
    void Begin() noexcept;

    // Sends the reply to what was asked last, at once or when there is room. Nothing when the peer is gone.
    void Reply(const MessageRow *row, const MachHeader &request, const OutgoingReply &reply) noexcept;

    // Tells the peer something that it has not asked for. False when there is no room: it does not listen.
    bool Tell(const OutgoingMessage &message) noexcept;

    // Sends what waits for room.
    void SendWaiting() noexcept;

    // Cuts the peer off, once what waits has left.
    void CutOff() noexcept { is_cut_off_ = true; }
    bool IsCutOff() const noexcept { return is_cut_off_ && !waiting_; }
    void Close() noexcept;

private:
    void Send(OutgoingMessage message) noexcept;
    void ListenAgain() noexcept;

    EventLoop &loop_;
    TDescriptor socket_;
    const uint64_t instance_;
    const pid_t process_;
    bool is_busy_ = false;
    bool is_cut_off_ = false;
    std::unique_ptr<OutgoingMessage> waiting_;
};

} // namespace vellum
