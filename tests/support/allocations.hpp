// SPDX-License-Identifier: MIT
// Memory that runs out, and allocations that are counted.
//
// For programs that vellum_wrap_allocator (tests/CMakeLists.txt) has linked: the calls of malloc,
// calloc, realloc and operator new that this project's code makes come here first. Those of other
// libraries do not.
#pragma once

#include <gtest/gtest.h>

#include <functional>

namespace vellum::test {

// Whether the program is linked in that way.
bool IsAllocatorWrapped() noexcept;

// Lets the allocation fail that comes after `successes` others, and none after it; a negative number
// lets none fail. Of this thread alone.
void FailAllocationAfter(int successes) noexcept;

// Whether one has failed since.
bool HasAllocationFailed() noexcept;

// How many allocations `work` makes on this thread.
int CountAllocations(const std::function<void()> &work);

// Tests of what happens when memory is exhausted.
class ExhaustedMemoryTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(IsAllocatorWrapped()); }
    void TearDown() override { FailAllocationAfter(-1); }

    // Runs `work` with the allocation failing that comes after so many others. Whether one failed.
    static bool FailAfter(int successes, const std::function<void()> &work);

    // Runs `work` with its first allocation failing, then its second, until none fails any more.
    // `work` says whether it succeeded, which it must do just when no allocation failed. Returns the
    // number of allocations.
    static int FailEach(const std::function<bool()> &work);
};

} // namespace vellum::test
