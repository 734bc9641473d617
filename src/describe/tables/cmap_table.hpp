// SPDX-License-Identifier: MIT
// The "cmap" table: the legacy encoding that a font was made for.
#pragma once

#include "describe/table_bytes.hpp"

namespace vellum {

class cmapTable {
public:
    explicit cmapTable(Ref<const ValData> table) noexcept : table_(std::move(table)) {}

    // The script of the subtables of platform 1, whose codes are numbers of encodings: the lowest but
    // Roman, as fonts for every script have a Roman subtable beside their own; else Roman; else, as for
    // an absent table, kValStringEncodingUnicode. Script codes count modulo 32. A record of platform
    // 1 whose encoding lies beyond the end reads as Roman.
    ValStringEncoding GetStringEncoding() const noexcept;

private:
    TableBytes table_;
};

} // namespace vellum
