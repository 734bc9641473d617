// SPDX-License-Identifier: MIT
// The "hhea" table: how many widths a font has, and how its caret leans.
#pragma once

#include "describe/table_bytes.hpp"

namespace vellum {

// An absent table has no metrics and an upright caret.
class hheaTable {
public:
    explicit hheaTable(Ref<const ValData> table) noexcept : table_(std::move(table)) {}

    // How many records "hmtx" begins with: see hmtxTable.
    uint16_t GetMetricsCount() const noexcept { return table_.U16(34); }

    // The arc tangent of rise over run, in radians, over 180; 0 for a caret without run.
    //
    // That is neither a fraction of half a turn nor the angle from the upright: a slight slant
    // comes out near 1.57 / 180. Both are deliberate and must stay: slants are kept and asked for by
    // others as this has always given them, and in degrees the same face would no longer be found.
    float GetItalicAngle() const noexcept;

private:
    TableBytes table_;
};

} // namespace vellum
