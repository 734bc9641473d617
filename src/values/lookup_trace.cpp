// SPDX-License-Identifier: MIT
#include "values/lookup_trace.hpp"

#include "values/string_uniquer.hpp"

namespace vellum {

Ref<const ValString> TraceText(std::string_view text) {
    return OrBadAlloc(TValStringUniquer().GetUniqueString(text));
}

TValMutableDict LookupTrace::Begin(std::string_view stage) {
    TValMutableDict entry;
    entry.Set(TraceText("stage").Get(), TraceText(stage).Get());
    return entry;
}

} // namespace vellum
