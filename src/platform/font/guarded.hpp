// SPDX-License-Identifier: MIT
// The wrapper at the parser's boundary: no exception passes it. What throws (memory is exhausted)
// answers the type's empty value.
#pragma once

#include <utility>

namespace vellum {

template <class TFunction>
auto Guarded(TFunction &&function) noexcept -> decltype(function()) {
    try {
        return std::forward<TFunction>(function)();
    } catch (...) {
        return decltype(function())();
    }
}

} // namespace vellum
