// SPDX-License-Identifier: MIT
// When to make again what is kept and was spoilt by a passing failure: at once, and while it keeps failing
// ever later, up to a second. A drive of fonts that was taken away must not make every question slow.
#pragma once

#include "platform/process/passing_failures.hpp"

#include <algorithm>
#include <chrono>

namespace vellum {

class RetryPace {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr Clock::duration kShortestWait = std::chrono::milliseconds(1);
    static constexpr Clock::duration kLongestWait = std::chrono::seconds(1);

    // What is kept is spoilt. It counts once until it is made again.
    void Failed(Clock::time_point now = Clock::now()) noexcept {
        if (failed_) return;
        failed_ = true;
        if (now - next_ > kLongestWait) wait_ = {}; // it was well for long
        next_ = now + wait_;
        wait_ = std::clamp(2 * wait_, kShortestWait, kLongestWait);
    }

    // It was made again, and may be spoilt again.
    void MadeAgain(bool failed, Clock::time_point now = Clock::now()) noexcept {
        failed_ = false;
        if (failed) Failed(now);
    }

    bool HasFailed() const noexcept { return failed_; }
    bool IsDue(Clock::time_point now) const noexcept { return failed_ && now >= next_; }

    // Whether to make it again now. Where it must still be used as it is, that is a passing failure too.
    bool TakeTurn() const noexcept {
        if (!failed_) return false;
        if (IsDue(Clock::now())) return true;
        ++tPassingFailures;
        return false;
    }

private:
    bool failed_ = false;
    Clock::time_point next_{};
    Clock::duration wait_{};
};

} // namespace vellum
