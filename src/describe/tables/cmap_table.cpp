// SPDX-License-Identifier: MIT
// A count at 2, then, from 4, records of eight bytes: platform, encoding, and where the subtable is.
#include "describe/tables/cmap_table.hpp"

#include <algorithm>
#include <bit>

namespace vellum {

namespace {

constexpr size_t kFirstRecord = 4;
constexpr size_t kRecordSize = 8;
constexpr uint16_t kScriptPlatform = 1;
constexpr uint32_t kRoman = 1; // bit 0

// A bit for each script that has a subtable. Beyond the end are no records of this platform.
uint32_t Scripts(const TableBytes &table) {
    uint32_t scripts = 0;
    const size_t end = std::min(kFirstRecord + table.U16(2) * kRecordSize, table.Length());
    for (size_t at = kFirstRecord; at < end; at += kRecordSize)
        if (table.U16(at) == kScriptPlatform) scripts |= uint32_t{1} << table.U16(at + 2) % 32;
    return scripts;
}

} // namespace

ValStringEncoding cmapTable::GetStringEncoding() const noexcept {
    const uint32_t scripts = Scripts(table_);
    if (const uint32_t others = scripts & ~kRoman)
        return static_cast<ValStringEncoding>(std::countr_zero(others));
    return scripts ? kValStringEncodingRoman : kValStringEncodingUnicode;
}

} // namespace vellum
