// SPDX-License-Identifier: MIT
// Suitcases that are read while memory runs out.
#include "platform/process/passing_failures.hpp"
#include "suitcases.hpp"
#include "support/allocations.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using SuitcaseFilesMemory = ExhaustedMemoryTest;

TEST_F(SuitcaseFilesMemory, AreAllThereOrNull) {
    const Bytes fork = TwoFamilies();
    const auto folder = MakeURL(kFolder);
    const int allocations = FailEach([&] {
        const auto urls = CreatePlatenFontURLsFromFork(TReading(TBytes(fork), nullptr), folder.Get());
        return ValArrayGetCount(urls.Get()) == kTwoFamilies.size();
    });
    EXPECT_GT(allocations, 20);
}

TEST_F(SuitcaseFilesMemory, NeverLackSomeWithoutAPassingFailure) {
    const TempDir temporary;
    const auto url = FileURL(temporary.Write("Suitcase", Bytes()));
    temporary.Write(".rsrc/Suitcase", TwoFamilies());
    for (int successes = 0;; ++successes) {
        Ref<const ValArray> urls;
        const uint32_t failures = tPassingFailures;
        const bool failed =
            FailAfter(successes, [&] { urls = CreatePlatenFontURLsFromSuitcase(url.Get()); });
        EXPECT_EQ(tPassingFailures != failures, failed) << successes;
        EXPECT_EQ(ValArrayGetCount(urls.Get()), failed ? 0 : kTwoFamilies.size()) << successes;
        if (!failed) break;
    }
}

} // namespace
} // namespace vellum::test
