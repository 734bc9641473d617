// SPDX-License-Identifier: MIT
// What a service's loop calls, and when.
#include "service/event_loop.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <new>
#include <vector>

namespace vellum::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using ::testing::ElementsAre;

TEST(EventLoop, CallsLaterInTheOrderOfTheTimesThatWereAskedFor) {
    EventLoop loop;
    std::vector<int> calls;
    loop.CallLater(40ms, [&] {
        calls.push_back(3);
        loop.Stop();
    });
    loop.CallLater(1ms, [&] { calls.push_back(1); });
    loop.CallLater(20ms, [&] { calls.push_back(2); });
    loop.Run();
    EXPECT_THAT(calls, ElementsAre(1, 2, 3));
}

TEST(EventLoop, CallsNothingBeforeItsTimeNorWhatIsDueNeverAtAll) {
    EventLoop loop;
    const auto start = Clock::now();
    Clock::duration now{}, soon{};
    loop.CallLater(3600s, [] { ADD_FAILURE() << "an hour has not passed"; });
    loop.CallLater(15ms, [&] {
        soon = Clock::now() - start;
        loop.Stop();
    });
    loop.CallLater(0ms, [&] { now = Clock::now() - start; });
    loop.Run();
    EXPECT_GT(now.count(), 0);
    EXPECT_GE(soon, 15ms);
    EXPECT_GE(soon, now);
}

TEST(EventLoop, CallsNothingLateForWhatIsAskedForAnAgeAway) {
    EventLoop loop;
    loop.CallLater(std::chrono::milliseconds::max(), [] { ADD_FAILURE() << "an age has not passed"; });
    loop.CallLater(1ms, [&] { loop.Stop(); });
    loop.Run();
}

TEST(EventLoop, CallsTheNextAlthoughOneHasThrown) {
    EventLoop loop;
    loop.CallLater(0ms, [] { throw std::bad_alloc(); });
    loop.CallLater(1ms, [&] { loop.Stop(); });
    EXPECT_THROW(loop.Run(), std::bad_alloc);
    loop.Run();
}

TEST(EventLoop, CallsWhatACallHasAskedFor) {
    EventLoop loop;
    int calls = 0;
    std::function<void()> again = [&] {
        if (++calls == 5) return loop.Stop();
        loop.CallLater(std::chrono::milliseconds(calls % 2), again);
    };
    loop.CallLater(0ms, again);
    loop.Run();
    EXPECT_EQ(calls, 5);
}

TEST(EventLoop, CallsLaterAlthoughThereIsAlwaysWork) {
    EventLoop loop;
    bool is_called = false;
    const auto end = Clock::now() + 30s;
    loop.AddWork([&] { return !is_called && Clock::now() < end; });
    loop.AddSideWork([&] {
        if (Clock::now() >= end) loop.Stop();
        return true;
    });
    loop.CallLater(5ms, [&] {
        is_called = true;
        loop.Stop();
    });
    loop.Run();
    EXPECT_TRUE(is_called);
}

} // namespace
} // namespace vellum::test
