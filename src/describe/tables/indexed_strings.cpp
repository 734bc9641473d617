// SPDX-License-Identifier: MIT
// The walk along a list, which can only be read from its beginning.
#include "describe/tables/indexed_strings.hpp"

#include "describe/table_bytes.hpp"

namespace vellum {

const uint8_t *FindIndexedString(const ValData *list, uint32_t index) noexcept {
    const TableBytes bytes(Retain(list));
    if (index == 0 || index > bytes.U16(0)) return nullptr;
    size_t at = sizeof(uint16_t);
    for (uint32_t i = 1; i < index && at < bytes.Length(); ++i) at += size_t{1} + bytes.U8(at);
    const auto string = bytes.Slice(at, size_t{1} + bytes.U8(at));
    return string.empty() ? nullptr : string.data();
}

} // namespace vellum
