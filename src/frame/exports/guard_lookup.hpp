// SPDX-License-Identifier: MIT
// The boundary of an exported lookup: as GuardCopy, and whoever listens is told how the answer came about.
#pragma once

#include "frame/exports/guard.hpp"
#include "frame/exports/trace_listeners.hpp"
#include "values/lookup_trace.hpp"

#include <optional>
#include <string_view>

namespace vellum {

// A lookup that somebody listens to; tells them when it ends, with no lock held.
class TracedLookup {
public:
    // What is asked: the name of the question, its argument (a value, borrowed), and where.
    TracedLookup(std::string_view question, const void *asked, VLScope scope) noexcept;
    ~TracedLookup();

    // The answer (borrowed), or null.
    void SetAnswer(const void *answer) noexcept { answer_ = answer; }

private:
    Ref<const ValDictionary> Summary() const;

    const std::string_view question_;
    const void *const asked_;
    const VLScope scope_;
    const void *answer_ = nullptr;
    std::optional<LookupTrace> trace_; // none when there was no memory for one
    std::optional<LookupTrace::Scope> scope_of_trace_;
};

// `body` answers an owned reference, which the caller gets.
template <class Body>
auto GuardLookup(std::string_view question, const void *asked, VLScope scope, Body body) noexcept
    -> decltype(body().Release()) {
    if (!IsLookupTraced()) return GuardCopy(body);
    TracedLookup lookup(question, asked, scope);
    auto *answer = GuardCopy(body);
    lookup.SetAnswer(answer);
    return answer;
}

} // namespace vellum
