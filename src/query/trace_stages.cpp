// SPDX-License-Identifier: MIT
#include "query/trace_stages.hpp"

#include "values/lookup_trace.hpp"
#include "values/val_number.hpp"

namespace vellum {

namespace {

void SetCount(TValMutableDict &stage, size_t fonts) {
    stage.Set(TraceText("fonts").Get(), MakeNumber(static_cast<int64_t>(fonts)).Get());
}

} // namespace

void TellIndex(const ValString *property, const void *value, size_t fonts) noexcept {
    LookupTrace::Tell("index", [&](TValMutableDict &stage) {
        stage.Set(TraceText("property").Get(), property);
        stage.Set(TraceText("requested").Get(), value);
        SetCount(stage, fonts);
    });
}

void TellScan(size_t fonts) noexcept {
    LookupTrace::Tell("scan", [&](TValMutableDict &stage) { SetCount(stage, fonts); });
}

void TellDropped(const TFontEntity &font, const ValString *property, const void *requested) noexcept {
    LookupTrace::Tell("dropped", [&](TValMutableDict &stage) {
        stage.Set(TraceText("font").Get(), font.CopyURL().Get());
        stage.Set(TraceText("property").Get(), property);
        stage.Set(TraceText("requested").Get(), requested);
        stage.Set(TraceText("found").Get(), font.CopyProperty(property, true).Get());
    });
}

void TellOrder(const TFontEntity &first, const TFontEntity &second, const Comparison &comparison) noexcept {
    LookupTrace::Tell("order", [&](TValMutableDict &stage) {
        stage.Set(TraceText("font").Get(), first.CopyURL().Get());
        stage.Set(TraceText("before").Get(), second.CopyURL().Get());
        stage.Set(TraceText("decidedBy").Get(), comparison.decided_by);
    });
}

} // namespace vellum
