// SPDX-License-Identifier: MIT
// From the characters of a font to the bits of the Unicode blocks that they lie in.
#include "describe/tables/os2_table.hpp"

#include "describe/tables/unicode_ranges.hpp"

#include <algorithm>

namespace vellum {

namespace {

void SetBit(OS2Table::TUnicodeRanges &ranges, uint32_t bit) {
    ranges[bit / 32] |= uint32_t{1} << bit % 32;
}

// Rows ascend, and so do the runs of members: each row looks on from where the one before it stood.
// A row that overlaps the ones after it costs nothing, as a run is left only when it ends before a
// row begins. Runs between two rows are leapt over.
void AddTouchedRanges(const ValCharacterSet *set, OS2Table::TUnicodeRanges &ranges) {
    uint32_t first = 0;
    uint32_t last = UINT32_MAX;
    if (!ValCharacterSetNextRange(set, &first, &last)) return;
    for (const TUnicodeRange &row : kUnicodeRanges) {
        if (last < row.first) {
            last = row.first - 1;
            if (!ValCharacterSetNextRange(set, &first, &last)) return;
        }
        if (first <= row.last) SetBit(ranges, row.bit);
    }
}

uint32_t CountMembers(const ValCharacterSet *set, const TUnicodeRange &row) {
    uint32_t count = 0;
    uint32_t first = 0;
    uint32_t last = row.first - 1; // for 0 that is where a walk begins
    while (ValCharacterSetNextRange(set, &first, &last) && first <= row.last)
        count += std::min(last, row.last) - first + 1;
    return count;
}

void AddCountedRanges(const ValCharacterSet *set, OS2Table::TUnicodeRanges &ranges, double threshold) {
    for (const TUnicodeRange &row : kUnicodeRanges) {
        const uint32_t count = CountMembers(set, row);
        if (count > 0 || count / static_cast<double>(row.last - row.first) > threshold)
            SetBit(ranges, row.bit);
    }
}

} // namespace

void OS2Table::GetUnicodeRangesFromCharacterSet(const ValCharacterSet *set, TUnicodeRanges &ranges,
                                                double threshold) noexcept {
    if (!set) return;
    if (threshold == 0.0) return AddTouchedRanges(set, ranges);
    AddCountedRanges(set, ranges, threshold);
}

} // namespace vellum
