// SPDX-License-Identifier: MIT
#include "service/message_service.hpp"

#include "platform/port/service_address.hpp"

#include <sys/epoll.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace vellum {

namespace {

// Who comes later waits: those who are there go first.
constexpr int kMostAcceptedAtOnce = 16;

// What the process itself needs of descriptors, whoever connects.
constexpr int kReserve = 32;

// How long nobody is taken in where there is no room.
constexpr std::chrono::milliseconds kPause(100);

int DescriptorLimit() noexcept {
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 1 << 20));
}

} // namespace

MessageService::MessageService(EventLoop &loop, TDescriptor listener, uint64_t instance,
                               uint32_t most_memory, Callbacks callbacks)
    : loop_(loop), listener_(std::move(listener)), instance_(instance), callbacks_(std::move(callbacks)),
      most_descriptors_(DescriptorLimit()), receiver_(most_memory) {
    loop_.Watch(listener_.Get(), EPOLLIN, [this](uint32_t) { Accept(); });
}

MessageService::~MessageService() {
    loop_.Forget(listener_.Get());
    for (const auto &[socket, peer] : peers_) peer->Close();
}

void MessageService::Accept() {
    for (int i = 0; i < kMostAcceptedAtOnce && AcceptOne(); ++i) {
    }
}

// False when nobody else is to be taken in now.
bool MessageService::AcceptOne() {
    pid_t process = 0;
    TDescriptor socket = AcceptFromOwnUser(listener_.Get(), &process);
    if (socket.IsOpen()) {
        if (HasRoomFor(socket.Get(), process)) TakeIn(std::move(socket), process);
        return true;
    }
    if (errno == EPERM || errno == EINTR || errno == ECONNABORTED) return true; // the next, perhaps
    if (errno != EAGAIN && errno != EWOULDBLOCK) Pause(); // those who wait stay in the queue
    return false;
}

// Descriptors are numbered from below: a high number says that few are left. One process has at most a
// third of them: a program may be two services, and some are to be left for others.
bool MessageService::HasRoomFor(int socket, pid_t process) const {
    const auto others = connections_.find(process);
    const int count = others == connections_.end() ? 0 : others->second;
    return socket < most_descriptors_ - kReserve && count < (most_descriptors_ - kReserve) / 3;
}

void MessageService::Pause() {
    loop_.Change(listener_.Get(), 0);
    loop_.CallLater(kPause, [this] { loop_.Change(listener_.Get(), EPOLLIN); });
}

void MessageService::TakeIn(TDescriptor socket, pid_t process) {
    const int number = socket.Get();
    auto peer = std::make_shared<Peer>(loop_, std::move(socket), instance_, process);
    loop_.Watch(number, EPOLLIN, [this, peer](uint32_t events) { Handle(peer, events); });
    ++connections_[process];
    peers_.emplace(number, std::move(peer));
}

void MessageService::Dismiss(const std::shared_ptr<Peer> &peer) noexcept {
    if (peers_.erase(peer->Socket()) == 0) return;
    const auto connections = connections_.find(peer->Process());
    if (--connections->second == 0) connections_.erase(connections);
    peer->Close();
    if (callbacks_.has_left) callbacks_.has_left(peer);
}

void MessageService::Handle(const std::shared_ptr<Peer> &peer, uint32_t events) {
    if (events & EPOLLOUT) {
        peer->SendWaiting();
        if (callbacks_.has_listened && !peer->HasWaiting()) callbacks_.has_listened(peer);
    }
    if (events & EPOLLIN && !peer->IsBusy()) Receive(peer);
    if (peer->IsCutOff() || (events & (EPOLLHUP | EPOLLERR) && !(events & EPOLLIN))) Dismiss(peer);
}

void MessageService::Receive(const std::shared_ptr<Peer> &peer) {
    IncomingMessage message;
    uint64_t instance = 0;
    switch (receiver_.Receive(peer->Socket(), false, message, instance)) {
    case PacketResult::kDone:
        break;
    case PacketResult::kWouldBlock:
    case PacketResult::kNoRoom:
        return;
    default:
        return peer->CutOff();
    }
    if (message.bytes.empty()) return peer->CutOff(); // a refusal, of nothing
    if (instance != 0 && instance != instance_) {
        SendRefusal(peer->Socket(), instance_);
        return peer->CutOff();
    }
    peer->Begin();
    callbacks_.answer(peer, message);
    peer->WaitUntilReplied();
}

} // namespace vellum
