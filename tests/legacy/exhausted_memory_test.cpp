// SPDX-License-Identifier: MIT
// What is left of fonts when memory runs out in the midst of a change.
#include "service_fixture.hpp"
#include "support/allocations.hpp"

#include <functional>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

class ExhaustedMemory : public LegacyTest {
protected:
    void SetUp() override { ASSERT_TRUE(IsAllocatorWrapped()); }

    // Runs `work` with its first allocation failing, then its second, until none fails any more, and
    // `check` after each.
    static void FailEach(const std::function<void()> &work, const std::function<void()> &check) {
        for (int n = 0; n < 1000; ++n) {
            FailAllocationAfter(n);
            work();
            const bool failed = HasAllocationFailed();
            FailAllocationAfter(-1);
            check();
            if (!failed) return;
        }
        ADD_FAILURE() << "it never came to an end";
    }
};

TEST_F(ExhaustedMemory, LeavesTheProgramsOwnApplicationFonts) {
    const std::string path = WriteFont("a.ttf", "Ours");
    const auto url = FileURL(path);
    AddByProgram(WriteFont("1.ttf", "First"));
    Register(path);
    AddByProgram(fonts_.Write("2.ttc", MakeCollection({{"Second", "A"}, {"Second", "B"}})));
    FailEach([&] { service_.register_urls(url.Get(), 0, 0, 0, 0, kVLScopeProcess); },
             [&] {
                 EXPECT_THAT(Fonts(), IsSupersetOf({"First", "Second-A", "Second-B"}));
                 Withdraw(path);
                 Register(path);
                 EXPECT_THAT(Fonts(), ElementsAre("First", "Ours", "Second-A", "Second-B"));
             });
}

TEST_F(ExhaustedMemory, LeavesNoneOrAllOfAFontInMemory) {
    const auto data = AsData(FontNamed("Memory"));
    uint32_t container = 0;
    FailEach([&] { container = service_.register_data(data.Get(), 0, 0, kVLScopeProcess); },
             [&] {
                 if (container != 0) service_.register_data(nullptr, container, 0, kVLScopeProcess);
                 service_.font_notify(1, 0);
             });
    EXPECT_NE(container, 0u);
    EXPECT_THAT(Fonts(), ::testing::IsEmpty());
}

} // namespace
} // namespace vellum::test
