// SPDX-License-Identifier: MIT
#include "store/recent_absence.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace vellum::test {
namespace {

using namespace std::chrono_literals;

constexpr RecentAbsence::Clock::time_point kStart{1h};

TEST(RecentAbsence, IsNotBelievedBeforeItWasNoted) {
    EXPECT_FALSE(RecentAbsence().IsBelieved(kStart));
    EXPECT_FALSE(RecentAbsence().IsBelieved());
}

TEST(RecentAbsence, IsBelievedForAMomentAfterItWasNoted) {
    RecentAbsence absence;
    absence.Note(kStart);
    EXPECT_TRUE(absence.IsBelieved(kStart));
    EXPECT_TRUE(absence.IsBelieved(kStart + RecentAbsence::kBelieved - 1ns));
    EXPECT_FALSE(absence.IsBelieved(kStart + RecentAbsence::kBelieved));
}

TEST(RecentAbsence, IsBelievedFromItsLastNoteOn) {
    RecentAbsence absence;
    absence.Note(kStart);
    absence.Note(kStart + 60ms);
    EXPECT_TRUE(absence.IsBelieved(kStart + 60ms + RecentAbsence::kBelieved - 1ns));
    EXPECT_FALSE(absence.IsBelieved(kStart + 60ms + RecentAbsence::kBelieved));
}

} // namespace
} // namespace vellum::test
