// SPDX-License-Identifier: MIT
// Time that passes as a test says.
//
// For programs that vellum_wrap_clock (tests/CMakeLists.txt) has linked: the calls of steady_clock::now
// that this project's code makes come here first. Waiting takes the time that it takes.
#pragma once

#include <chrono>

namespace vellum::test {

// While this lives the steady clock stands still in the whole process. One at a time.
class StoppedClock {
public:
    StoppedClock();
    ~StoppedClock();
    StoppedClock(const StoppedClock &) = delete;
    StoppedClock &operator=(const StoppedClock &) = delete;

    // Lets time pass; on any thread.
    static void Pass(std::chrono::steady_clock::duration time) noexcept;
};

} // namespace vellum::test
