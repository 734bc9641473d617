// SPDX-License-Identifier: MIT
// That something was looked for and is not there, believed for a moment: changes come in bursts, and each
// would look again.
#pragma once

#include <atomic>
#include <chrono>

namespace vellum {

// Any thread may use it.
class RecentAbsence {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr Clock::duration kBelieved = std::chrono::milliseconds(100);

    constexpr RecentAbsence() noexcept = default;

    // It was looked for, and is not there.
    void Note(Clock::time_point now = Clock::now()) noexcept {
        until_.store((now + kBelieved).time_since_epoch().count(), std::memory_order_relaxed);
    }

    // Whether to take it that it is not there still.
    bool IsBelieved(Clock::time_point now = Clock::now()) const noexcept {
        return now.time_since_epoch().count() < until_.load(std::memory_order_relaxed);
    }

private:
    std::atomic<Clock::rep> until_{Clock::time_point::min().time_since_epoch().count()};
};

} // namespace vellum
