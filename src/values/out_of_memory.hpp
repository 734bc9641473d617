// SPDX-License-Identifier: MIT
// Above the platform, exhausted memory is an exception; the values' functions return null or false.
#pragma once

#include <new>
#include <utility>

namespace vellum {

// What a Create function or a change gave, unless it failed.
template <class Result>
Result OrBadAlloc(Result &&result) {
    if (!result) throw std::bad_alloc();
    return std::forward<Result>(result);
}

} // namespace vellum
