// SPDX-License-Identifier: MIT
#include "support/stopped_clock.hpp"

#include <atomic>

using Clock = std::chrono::steady_clock;

// The names by which the linker knows steady_clock::now, the caller's and the real one's.
extern "C" {
Clock::time_point __real__ZNSt6chrono3_V212steady_clock3nowEv() noexcept;
Clock::time_point __wrap__ZNSt6chrono3_V212steady_clock3nowEv() noexcept;
}

namespace {

constinit std::atomic<Clock::rep> sNow{0}; // where the clock stands; 0 while it goes

} // namespace

Clock::time_point __wrap__ZNSt6chrono3_V212steady_clock3nowEv() noexcept {
    const Clock::rep now = sNow;
    return now ? Clock::time_point(Clock::duration(now)) : __real__ZNSt6chrono3_V212steady_clock3nowEv();
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
