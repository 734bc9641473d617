// SPDX-License-Identifier: MIT
// What the exported functions that change a register answer when memory runs out: what became of the
// register, however far the announcement came.
#include "query_registers.hpp"
#include "support/allocations.hpp"
#include "support/heard_changes.hpp"

namespace vellum::test {
namespace {

class ChangeResults : public QueryRegisters {
protected:
    ~ChangeResults() override { FailAllocationAfter(-1); }

    // Calls change() with its first allocation failing, then the second, until none fails any more, and
    // look(answer) each time when memory is back.
    template <class Change, class Look>
    static void FailEach(Change change, Look look) {
        bool has_failed = true;
        for (int n = 0; has_failed; ++n) {
            SCOPED_TRACE(n);
            FailAllocationAfter(n);
            const bool answer = change();
            has_failed = HasAllocationFailed();
            FailAllocationAfter(-1);
            look(answer);
        }
    }
    static bool IsRegistered(const Ref<const ValURL> &url) { return VLGetScopeForFont(url.Get()) != 0; }
};

TEST_F(ChangeResults, OfRegisteringAreWhatTheRegisterAnswered) {
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({url});
    ASSERT_FALSE(IsRegistered(url)); // both registers are there
    FailEach([&] { return VLRegisterFonts(urls.Get(), 0, kVLScopeProcess, nullptr); },
             [&](bool registered) {
                 EXPECT_EQ(registered, IsRegistered(url));
                 VLUnregisterFont(url.Get(), 0, kVLScopeProcess);
                 TurnMainLoop();
             });
}

TEST_F(ChangeResults, OfUnregisteringAreWhatTheRegisterAnswered) {
    const auto url = Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({url});
    ASSERT_TRUE(IsRegistered(url));
    FailEach([&] { return VLUnregisterFonts(urls.Get(), 0, kVLScopeProcess, nullptr); },
             [&](bool unregistered) {
                 EXPECT_EQ(unregistered, !IsRegistered(url));
                 VLRegisterFont(url.Get(), 0, kVLScopeProcess);
                 TurnMainLoop();
             });
}

} // namespace
} // namespace vellum::test
