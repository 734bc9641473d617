// SPDX-License-Identifier: MIT
// The table begins with records of four bytes: an advance, then a left side bearing.
#include "describe/tables/hmtx_table.hpp"

#include <algorithm>

namespace vellum {

namespace {

constexpr size_t kRecordSize = 4;

} // namespace

bool hmtxTable::IsFixedPitch() const noexcept {
    uint16_t reference = 0; // the first advance that is not zero
    const size_t end = std::min(metrics_ * kRecordSize, table_.Length()); // beyond are zeros alone
    for (size_t at = 0; at < end; at += kRecordSize) {
        const uint16_t advance = table_.U16(at);
        if (reference == 0) reference = advance;
        if (advance != 0 && advance != reference) return false;
    }
    return true;
}

} // namespace vellum
