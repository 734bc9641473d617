// SPDX-License-Identifier: MIT
// A stable sort that trusts its comparison with nothing.
//
// The comparisons of fonts are no strict weak order: with tolerances they are not transitive, and
// two items may each claim to come after the other. The standard sorts may run off their range for
// such a comparison; this one stays in bounds whatever it answers, and gives the same result for
// the same input everywhere.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace vellum {

// Merges two neighbouring runs into `out`: the right element goes first only when
// compare(left, right) > 0.
template <class T, class Compare>
void MergeRuns(std::span<T> left, std::span<T> right, T *out, Compare &compare) {
    size_t l = 0, r = 0;
    while (l < left.size() && r < right.size())
        *out++ = compare(left[l], right[r]) > 0 ? std::move(right[r++]) : std::move(left[l++]);
    while (l < left.size()) *out++ = std::move(left[l++]);
    while (r < right.size()) *out++ = std::move(right[r++]);
}

// Sorts bottom up, from the order in which the items stand; compare(a, b) is negative, 0 or positive.
template <class T, class Compare>
void MergeSort(std::vector<T> &items, Compare compare) {
    std::vector<T> merged(items.size());
    const std::span<T> all(items);
    for (size_t run = 1; run < items.size(); run *= 2) {
        for (size_t at = 0; at < items.size(); at += 2 * run) {
            const size_t middle = std::min(at + run, items.size());
            const size_t end = std::min(at + 2 * run, items.size());
            MergeRuns(all.subspan(at, middle - at), all.subspan(middle, end - middle), merged.data() + at,
                      compare);
        }
        std::ranges::move(merged, items.begin());
    }
}

} // namespace vellum
