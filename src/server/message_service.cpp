// SPDX-License-Identifier: MIT
#include "server/message_service.hpp"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vellum {

namespace {

// The process at the other end; 0 when it is another user's.
pid_t OwnUsersProcess(int socket) noexcept {
    ucred credentials = {};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) return 0;
    return credentials.uid == ::geteuid() ? credentials.pid : 0;
}

} // namespace

MessageService::MessageService(EventLoop &loop, TDescriptor listener, uint64_t instance, Answer answer,
                               Farewell farewell)
    : loop_(loop), listener_(std::move(listener)), instance_(instance), answer_(std::move(answer)),
      farewell_(std::move(farewell)) {
    loop_.Watch(listener_.Get(), EPOLLIN, [this](uint32_t) { Accept(); });
}

MessageService::~MessageService() {
    loop_.Forget(listener_.Get());
    for (const auto &[socket, peer] : peers_) peer->Close();
}

void MessageService::Accept() {
    for (;;) {
        TDescriptor socket(::accept4(listener_.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (socket.IsOpen()) {
            TakeIn(std::move(socket));
            continue;
        }
        if (errno == EINTR || errno == ECONNABORTED) continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) { // those who wait stay in the queue
            is_full_ = true;
            loop_.Change(listener_.Get(), 0);
        }
        return;
    }
}

void MessageService::TakeIn(TDescriptor socket) {
    const pid_t process = OwnUsersProcess(socket.Get());
    if (process == 0) return;
    const int number = socket.Get();
    auto peer = std::make_shared<Peer>(loop_, std::move(socket), instance_, process);
    loop_.Watch(number, EPOLLIN, [this, peer](uint32_t events) { Handle(peer, events); });
    peers_.emplace(number, std::move(peer));
}

void MessageService::Dismiss(const std::shared_ptr<Peer> &peer) noexcept {
    if (peers_.erase(peer->Socket()) == 0) return;
    if (farewell_) farewell_(peer);
    peer->Close();
    if (std::exchange(is_full_, false)) loop_.Change(listener_.Get(), EPOLLIN);
}

void MessageService::Handle(const std::shared_ptr<Peer> &peer, uint32_t events) {
    if (events & EPOLLOUT) peer->SendWaiting();
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
    answer_(peer, message);
}

} // namespace vellum
