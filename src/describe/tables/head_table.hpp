// SPDX-License-Identifier: MIT
// The "head" table: the style of a face as its oldest style bits have it.
#pragma once

#include "describe/table_bytes.hpp"

namespace vellum {

// Only macStyle is asked, also where "OS/2" says otherwise, and neither bold and regular nor condensed
// and extended exclude each other. This is deliberate and must stay: whoever asks has asked the names
// and "OS/2" before, comes here for what they left open, and ranks the answers. An absent table, or
// one without the field, is plain: no bit is set.
class headTable {
public:
    explicit headTable(Ref<const ValData> table) noexcept : table_(std::move(table)) {}

    bool IsBold() const noexcept { return HasStyle(0); }
    bool IsItalic() const noexcept { return HasStyle(1); }
    bool IsCondensed() const noexcept { return HasStyle(5); }
    bool IsExtended() const noexcept { return HasStyle(6); }

private:
    bool HasStyle(unsigned bit) const noexcept { return (table_.U16(44) >> bit & 1) != 0; }

    TableBytes table_;
};

} // namespace vellum
