// SPDX-License-Identifier: MIT
#include "service/peer.hpp"

#include "platform/port/packet.hpp"
#include "service/event_loop.hpp"

#include <linux/sockios.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>

#include <new>

namespace vellum {

namespace {

// Of what is not in the packet itself.
size_t SizeInFiles(const OutgoingMessage &message) noexcept {
    size_t size = 0;
    for (const OutgoingMemory &memory : message.Memory())
        if (memory.length > MemoryBlock::kLongestCopied) size += memory.length;
    return size;
}

} // namespace

void Peer::WaitUntilReplied() noexcept {
    if (!is_busy_ || !waiting_.empty()) return;
    is_listened_to_ = false;
    loop_.Change(Socket(), 0);
}

void Peer::ListenAgain() noexcept {
    is_busy_ = false;
    if (!is_listened_to_) loop_.Change(Socket(), EPOLLIN);
    is_listened_to_ = true;
}

void Peer::Close() noexcept {
    if (!socket_.IsOpen()) return;
    loop_.Forget(Socket());
    DiscardPackets(Socket());
    socket_ = TDescriptor();
    waiting_.clear();
}

// Most messages leave at once: `share()` gives one that has to wait. False when the peer has lost its turn
// for good; who closes it is told by the loop, or looks after each message.
template <class Share>
bool Peer::Send(const OutgoingMessage &message, bool is_reply, Share share) noexcept {
    const PacketResult result =
        waiting_.empty() ? SendPacket(Socket(), instance_, message, false) : PacketResult::kWouldBlock;
    if (result == PacketResult::kDone) {
        ++sent_;
        if (is_reply) ListenAgain();
        return true;
    }
    if (result != PacketResult::kWouldBlock) { // no event tells of a system's want of memory
        is_cut_off_ = true;
        return false;
    }
    try {
        waiting_.push_back({share(), is_reply});
    } catch (const std::bad_alloc &) {
        is_cut_off_ = true;
        return false;
    }
    waiting_bytes_ += message.MemorySize();
    is_listened_to_ = false;
    loop_.Change(Socket(), EPOLLOUT);
    return true;
}

void Peer::Reply(const MessageRow *row, const MachHeader &request, const OutgoingReply &reply) noexcept {
    if (!socket_.IsOpen()) return;
    const OutgoingMessage message = WriteReply(row, request, reply);
    Send(message, true, [&] { return std::make_shared<const OutgoingMessage>(message); });
}

bool Peer::Tell(const std::shared_ptr<const OutgoingMessage> &message) noexcept {
    if (!socket_.IsOpen() || !HasRoomFor(*message)) return false;
    unread_bytes_ += SizeInFiles(*message);
    return Send(*message, false, [&] { return message; });
}

bool Peer::HasRoomFor(const OutgoingMessage &message) noexcept {
    const size_t in_files = SizeInFiles(message);
    if (waiting_.empty() && HowFar().unread == 0) unread_bytes_ = 0;
    return waiting_.size() < kMostWaiting && waiting_bytes_ + message.MemorySize() <= kMostWaitingBytes &&
           (in_files == 0 || unread_bytes_ + in_files <= kMostUnreadBytes);
}

Peer::Taking Peer::HowFar() const noexcept {
    Taking taking = {sent_, 0};
    if (::ioctl(Socket(), SIOCOUTQ, &taking.unread) != 0) taking.unread = 0;
    return taking;
}

void Peer::SendWaiting() noexcept {
    while (!waiting_.empty()) {
        const Waiting next = waiting_.front();
        const PacketResult result = SendPacket(Socket(), instance_, *next.message, false);
        if (result == PacketResult::kWouldBlock) return;
        if (result != PacketResult::kDone) {
            waiting_.clear();
            is_cut_off_ = true;
            return;
        }
        ++sent_;
        waiting_.pop_front();
        waiting_bytes_ -= next.message->MemorySize();
        if (next.is_reply) is_busy_ = false;
    }
    if (is_busy_) return loop_.Change(Socket(), 0);
    ListenAgain();
}

} // namespace vellum
