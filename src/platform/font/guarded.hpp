// SPDX-License-Identifier: MIT
// The wrapper at the parser's boundary: no exception passes it. What throws (memory is exhausted)
// answers the type's empty value, and counts as a failure that passes.
#pragma once

#include "platform/process/passing_failures.hpp"

#include <utility>

namespace vellum {

template <class TFunction>
auto Guarded(TFunction &&function) noexcept -> decltype(function()) {
    try {
        return std::forward<TFunction>(function)();
    } catch (...) {
        ++tPassingFailures;
        return decltype(function())();
    }
}

} // namespace vellum
