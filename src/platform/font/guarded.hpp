// SPDX-License-Identifier: MIT
// The wrapper at the parser's boundary: no exception passes it. What throws (memory is exhausted)
// answers the type's empty value, and counts as a failure to read.
#pragma once

#include <cstdint>
#include <utility>

namespace vellum {

// How often this thread failed to read what a font may well hold.
inline thread_local uint32_t tReadFailures = 0;

template <class TFunction>
auto Guarded(TFunction &&function) noexcept -> decltype(function()) {
    try {
        return std::forward<TFunction>(function)();
    } catch (...) {
        ++tReadFailures;
        return decltype(function())();
    }
}

} // namespace vellum
