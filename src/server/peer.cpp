// SPDX-License-Identifier: MIT
#include "server/peer.hpp"

#include "platform/port/packet.hpp"
#include "server/event_loop.hpp"

#include <sys/epoll.h>

#include <new>

namespace vellum {

void Peer::Begin() noexcept {
    is_busy_ = true;
    loop_.Change(Socket(), 0); // a peer that hangs up is heard of all the same
}

void Peer::ListenAgain() noexcept {
    is_busy_ = false;
    loop_.Change(Socket(), EPOLLIN);
}

void Peer::Close() noexcept {
    if (!socket_.IsOpen()) return;
    loop_.Forget(Socket());
    socket_ = TDescriptor();
    waiting_.reset();
}

void Peer::Reply(const MessageRow *row, const MachHeader &request, const OutgoingReply &reply) noexcept {
    if (socket_.IsOpen()) Send(WriteReply(row, request, reply));
}

void Peer::Send(OutgoingMessage message) noexcept {
    switch (SendPacket(Socket(), instance_, message, false)) {
    case PacketResult::kDone:
        return ListenAgain();
    case PacketResult::kWouldBlock:
    case PacketResult::kNoRoom:
        waiting_.reset(new (std::nothrow) OutgoingMessage(std::move(message)));
        if (waiting_) return loop_.Change(Socket(), EPOLLOUT);
        [[fallthrough]];
    default:
        is_cut_off_ = true; // who closes it is told by the loop, or looks after each message
    }
}

bool Peer::Tell(const OutgoingMessage &message) noexcept {
    return socket_.IsOpen() && SendPacket(Socket(), instance_, message, false) == PacketResult::kDone;
}

void Peer::SendWaiting() noexcept {
    if (!waiting_) return;
    const auto message = std::move(waiting_);
    Send(std::move(*message));
}

} // namespace vellum
