// SPDX-License-Identifier: MIT
// The "hmtx" table: whether all of a font's glyphs are of one width.
#pragma once

#include "describe/table_bytes.hpp"

namespace vellum {

class hmtxTable {
public:
    // The table does not say how many metrics it has: hheaTable::GetMetricsCount does.
    hmtxTable(Ref<const ValData> table, uint16_t metrics) noexcept
        : table_(std::move(table)), metrics_(metrics) {}

    // True when no two advances differ. Advances of zero are passed over: marks have them in
    // fonts of fixed pitch too. So nothing but zeros is of fixed pitch, and neither an absent table nor
    // the records that a short one lacks speak against it.
    bool IsFixedPitch() const noexcept;

private:
    TableBytes table_;
    uint16_t metrics_;
};

} // namespace vellum
