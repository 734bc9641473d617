// SPDX-License-Identifier: MIT
// What a service does all day: it waits for descriptors, and calls whoever watches them.
//
// Everything happens on one thread. Long work is done in slices, between which everybody who waits is
// served first.
#pragma once

#include "platform/fs/file.hpp"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <queue>

namespace vellum {

class EventLoop {
public:
    // Called with the epoll events of a descriptor.
    using Handler = std::function<void(uint32_t events)>;

    // Does a little; true while there is more to do. A slice should take about a millisecond.
    using Slice = std::function<bool()>;

    // Throws std::system_error.
    EventLoop();
    EventLoop(const EventLoop &) = delete;
    EventLoop &operator=(const EventLoop &) = delete;

    // Has `handler` called when one of the epoll `events` is there; hanging up and errors always are told.
    // The descriptor stays the caller's, who forgets it before it is closed. Throws.
    void Watch(int descriptor, uint32_t events, Handler handler);
    void Change(int descriptor, uint32_t events) noexcept;

    // The handler is not called any more, and lives until it has returned. Nothing for what is not watched.
    void Forget(int descriptor) noexcept;

    // Has work done, after the work that was added before.
    void AddWork(Slice slice) { in_order_.push(std::move(slice)); }

    // Has work done that waits for no other: a slice of each such work in turn.
    void AddSideWork(Slice slice) { in_turn_.push(std::move(slice)); }

    // Has something called once, not before so much time has passed: a year at the most.
    void CallLater(std::chrono::milliseconds delay, std::function<void()> call) {
        later_.emplace(Clock::now() + std::min(delay, kLongestDelay), std::move(call));
        SetAlarm();
    }

    // Runs until Stop is called from within.
    void Run();
    void Stop() noexcept { is_running_ = false; }

private:
    struct Watched {
        uint32_t number; // tells apart descriptors that had the same number
        std::shared_ptr<Handler> handler;
    };

    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds kLongestDelay = std::chrono::years(1); // times have an end

    bool HasWork() const noexcept { return !in_order_.empty() || !in_turn_.empty(); }
    void SetAlarm() noexcept;
    void HandleEvents();
    void HandleTime();
    void Work();

    TDescriptor epoll_;
    std::map<int, Watched> watched_;
    uint32_t last_number_ = 0;
    std::queue<Slice> in_order_, in_turn_;
    std::multimap<Clock::time_point, std::function<void()>> later_;
    TDescriptor alarm_;            // a timer, watched like everything else
    Clock::time_point alarm_time_; // for when it is set; the clock's beginning while it is not
    bool is_running_ = false;
};

} // namespace vellum
