// SPDX-License-Identifier: MIT
#include "platform/val/lowercase_runs.hpp"

#include <algorithm>
#include <span>

namespace vellum {

char32_t SimpleLowercase(char32_t c) noexcept {
    const std::span runs(kLowercaseRuns, kLowercaseRunCount);
    const auto run = std::ranges::lower_bound(runs, c, {}, &LowercaseRun::last);
    const bool is_in = run != runs.end() && c >= run->first && (c - run->first) % run->step == 0;
    return is_in ? c - run->first + run->lower_first : c;
}

} // namespace vellum
