// SPDX-License-Identifier: MIT
#include "service/event_loop.hpp"

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace vellum {

namespace {

constexpr int kEventsAtOnce = 64;

// How long work goes on before the loop looks for events again: small slices would cost less than the look.
constexpr std::chrono::microseconds kWorkAtOnce(200);

uint64_t Key(int descriptor, uint32_t number) noexcept {
    return uint64_t{number} << 32 | static_cast<uint32_t>(descriptor);
}

} // namespace

EventLoop::EventLoop()
    : epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      alarm_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
    if (!epoll_.IsOpen() || !alarm_.IsOpen()) throw std::system_error(errno, std::generic_category());
    Watch(alarm_.Get(), EPOLLIN, [this](uint32_t) { HandleTime(); });
}

void EventLoop::Watch(int descriptor, uint32_t events, Handler handler) {
    const uint32_t number = ++last_number_;
    watched_[descriptor] = {number, std::make_shared<Handler>(std::move(handler))};
    epoll_event event = {events, {.u64 = Key(descriptor, number)}};
    if (::epoll_ctl(epoll_.Get(), EPOLL_CTL_ADD, descriptor, &event) == 0) return;
    const int error = errno;
    watched_.erase(descriptor);
    throw std::system_error(error, std::generic_category());
}

void EventLoop::Change(int descriptor, uint32_t events) noexcept {
    const auto found = watched_.find(descriptor);
    if (found == watched_.end()) return;
    epoll_event event = {events, {.u64 = Key(descriptor, found->second.number)}};
    ::epoll_ctl(epoll_.Get(), EPOLL_CTL_MOD, descriptor, &event);
}

void EventLoop::Forget(int descriptor) noexcept {
    if (watched_.erase(descriptor)) ::epoll_ctl(epoll_.Get(), EPOLL_CTL_DEL, descriptor, nullptr);
}

// Has the alarm go off for the first call. Setting it now and then is cheaper than having the system do so
// for each wait, between two messages. An alarm that is too early does no harm, so that one is left.
void EventLoop::SetAlarm() noexcept {
    if (later_.empty()) return;
    const Clock::time_point first = later_.begin()->first;
    if (alarm_time_ != Clock::time_point() && alarm_time_ <= first) return;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(first.time_since_epoch());
    const std::chrono::nanoseconds rest = first.time_since_epoch() - seconds;
    const itimerspec time = {{}, {seconds.count(), rest.count()}};
    if (::timerfd_settime(alarm_.Get(), TFD_TIMER_ABSTIME, &time, nullptr) == 0) alarm_time_ = first;
}

void EventLoop::HandleEvents() {
    std::array<epoll_event, kEventsAtOnce> events;
    const int count = ::epoll_wait(epoll_.Get(), events.data(), kEventsAtOnce, HasWork() ? 0 : -1);
    for (int i = 0; i < count; ++i) {
        const epoll_event &event = events[static_cast<size_t>(i)];
        const auto found = watched_.find(static_cast<int>(static_cast<uint32_t>(event.data.u64)));
        if (found == watched_.end() || found->second.number != event.data.u64 >> 32) continue;
        const auto handler = found->second.handler;
        (*handler)(event.events);
    }
}

void EventLoop::HandleTime() {
    uint64_t expirations;
    if (::read(alarm_.Get(), &expirations, sizeof expirations) < 0) return; // set anew meanwhile
    alarm_time_ = {};
    while (!later_.empty() && later_.begin()->first <= Clock::now()) {
        const auto call = std::move(later_.extract(later_.begin()).mapped());
        SetAlarm(); // the call may throw
        call();
    }
    SetAlarm();
}

void EventLoop::Work() {
    if (!HasWork()) return;
    const auto end = Clock::now() + kWorkAtOnce;
    while (!in_order_.empty() && is_running_) {
        if (!in_order_.front()()) in_order_.pop();
        if (Clock::now() >= end) break;
    }
    if (in_turn_.empty()) return;
    Slice slice = std::move(in_turn_.front());
    in_turn_.pop();
    if (slice()) in_turn_.push(std::move(slice));
}

void EventLoop::Run() {
    is_running_ = true;
    while (is_running_) {
        HandleEvents();
        Work();
    }
}

} // namespace vellum
