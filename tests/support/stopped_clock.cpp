// SPDX-License-Identifier: MIT
#include "support/stopped_clock.hpp"

#include <atomic>

using Clock = std::chrono::steady_clock;

// By the names that the linker has for the real steady_clock::now, and for the one that is called instead.
Clock::time_point RealNow() noexcept __asm__("__real__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point NowAsTestSays() noexcept __asm__("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");

namespace {

constinit std::atomic<Clock::rep> sNow{0}; // where the clock stands; 0 while it goes

} // namespace

Clock::time_point NowAsTestSays() noexcept {
    const Clock::rep now = sNow;
    return now ? Clock::time_point(Clock::duration(now)) : RealNow();
}

namespace vellum::test {

StoppedClock::StoppedClock() {
    sNow = Clock::now().time_since_epoch().count();
}

StoppedClock::~StoppedClock() {
    sNow = 0;
}

void StoppedClock::Pass(Clock::duration time) noexcept {
    sNow += time.count();
}

} // namespace vellum::test
