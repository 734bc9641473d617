// SPDX-License-Identifier: MIT
#include "platform/process/retry_pace.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace vellum::test {
namespace {

using namespace std::chrono_literals;

constexpr RetryPace::Clock::time_point kStart{1h};

TEST(RetryPace, AsksForNothingWhileNothingFailed) {
    const RetryPace pace;
    EXPECT_FALSE(pace.HasFailed());
    EXPECT_FALSE(pace.IsDue(kStart));
    const uint32_t failures = tPassingFailures;
    EXPECT_FALSE(pace.TakeTurn());
    EXPECT_EQ(tPassingFailures, failures);
}

TEST(RetryPace, RetriesAtOnceTheFirstTime) {
    RetryPace pace;
    pace.Failed(kStart);
    EXPECT_TRUE(pace.IsDue(kStart));
}

TEST(RetryPace, WaitsTwiceAsLongEachTimeUpToASecond) {
    RetryPace pace;
    pace.Failed(kStart);
    auto now = kStart;
    for (const auto wait : {1ms, 2ms, 4ms, 8ms, 16ms, 32ms, 64ms, 128ms, 256ms, 512ms, 1000ms, 1000ms}) {
        pace.MadeAgain(true, now);
        EXPECT_FALSE(pace.IsDue(now + wait - 1ns)) << wait.count();
        EXPECT_TRUE(pace.IsDue(now + wait)) << wait.count();
        now += wait;
    }
}

TEST(RetryPace, IsNotLengthenedByFailuresBetweenTheRetries) {
    RetryPace pace;
    pace.Failed(kStart);
    for (int i = 0; i < 100; ++i) pace.Failed(kStart + 1ns * i);
    EXPECT_TRUE(pace.IsDue(kStart));
}

TEST(RetryPace, StaysSlowWhereSuccessesLieBetweenTheFailures) {
    RetryPace pace;
    auto now = kStart;
    for (int i = 0; i < 20; ++i) {
        pace.Failed(now);
        while (!pace.IsDue(now)) now += 1ms;
        pace.MadeAgain(false, now);
    }
    EXPECT_GE(now - kStart, 8s);
}

TEST(RetryPace, BeginsAnewWhenAllWasWellForLong) {
    RetryPace pace;
    auto now = kStart;
    for (int i = 0; i < 8; ++i, now += 1s) pace.MadeAgain(true, now);
    pace.MadeAgain(false, now);
    pace.Failed(now + 3s);
    EXPECT_TRUE(pace.IsDue(now + 3s));
}

TEST(RetryPace, CountsAPassingFailureWhereItMustWait) {
    RetryPace pace;
    pace.Failed();
    const uint32_t failures = tPassingFailures;
    EXPECT_TRUE(pace.TakeTurn());
    EXPECT_EQ(tPassingFailures, failures);

    const auto later = RetryPace::Clock::now() + 1h;
    pace.MadeAgain(false);
    pace.Failed(later);
    pace.MadeAgain(true, later);
    EXPECT_FALSE(pace.TakeTurn());
    EXPECT_EQ(tPassingFailures, failures + 1);
}

} // namespace
} // namespace vellum::test
