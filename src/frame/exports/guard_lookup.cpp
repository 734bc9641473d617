// SPDX-License-Identifier: MIT
#include "frame/exports/guard_lookup.hpp"

#include "values/val_number.hpp"

namespace vellum {

TracedLookup::TracedLookup(std::string_view question, const void *asked, VLScope scope) noexcept
    : question_(question), asked_(asked), scope_(scope) {
    try {
        trace_.emplace();
    } catch (...) { // the lookup goes on without
    }
    scope_of_trace_.emplace(trace_ ? &*trace_ : nullptr);
}

Ref<const ValDictionary> TracedLookup::Summary() const {
    TValMutableDict summary;
    summary.Set(TraceText("question").Get(), TraceText(question_).Get());
    summary.Set(TraceText("asked").Get(), asked_);
    summary.Set(TraceText("scope").Get(), MakeNumber(static_cast<int32_t>(scope_)).Get());
    summary.Set(TraceText("stages").Get(), trace_->Stages().Get());
    if (!trace_->IsWhole()) summary.Set(TraceText("incomplete").Get(), kValBooleanTrue);
    summary.Set(TraceText("answer").Get(), answer_);
    return summary.Publish();
}

TracedLookup::~TracedLookup() {
    scope_of_trace_.reset();
    if (!trace_) return;
    const auto summary = Guard([this] { return Summary(); });
    if (summary) TellListeners(summary.Get());
}

} // namespace vellum
