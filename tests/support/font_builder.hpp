// SPDX-License-Identifier: MIT
// Fonts for tests: whole and valid at first, then made as the test wants them, or made wrong.
//
//     FontBuilder().Names(PlainNames("Foo", "Bold", "Foo-Bold")).Characters({{'A', 'Z'}}).Build()
#pragma once

#include "support/bytes.hpp"
#include "support/name_records.hpp"
#include "support/sfnt_tables.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum::test {

struct CharacterRange {
    uint32_t first;
    uint32_t last;
};

class FontBuilder {
public:
    // A TrueType font "Test Regular" ("Test-Regular") of the letters A to Z.
    FontBuilder();

    FontBuilder &Names(const std::vector<NameRecord> &records) { return Table("name", NameTable(records)); }

    // Characters with a glyph each, from glyph 1 on; sets the number of glyphs.
    FontBuilder &Characters(const std::vector<CharacterRange> &ranges);

    // Puts a table, in place of the one of that tag if there is one, else at the end.
    FontBuilder &Table(std::string_view tag, Bytes bytes);

    // Puts one more table whatever there is.
    FontBuilder &AlsoTable(std::string_view tag, Bytes bytes);
    FontBuilder &Without(std::string_view tag);

    // The first four bytes: 0x00010000 for TrueType, "OTTO" (with Table "CFF ") for OpenType.
    FontBuilder &Flavor(uint32_t flavor);

    // The font's bytes; `offset` is where in a larger file they will stand.
    Bytes Build(size_t offset = 0) const;

    static constexpr uint32_t kTrueType = 0x00010000;
    static constexpr uint32_t kOpenType = 0x4F54544F;

private:
    uint32_t flavor_ = kTrueType;
    std::vector<std::pair<std::string, Bytes>> tables_;
};

// A variable font with axes wght (400, 100 to 900) and wdth (100, 50 to 200), and the instances
// Regular (the default), Bold (wght 700, named Test-BoldStated) and Narrow (wdth 75, without a
// PostScript name).
FontBuilder VariableFont();

// A collection of fonts, each with tables of its own.
Bytes BuildCollection(const std::vector<FontBuilder> &fonts);

} // namespace vellum::test
