// SPDX-License-Identifier: MIT
// The tables of sfnt fonts, each from the fields that tests care about.
#pragma once

#include "support/bytes.hpp"

#include <string>
#include <vector>

namespace vellum::test {

struct HeadFields {
    uint16_t units_per_em = 1000;
    uint16_t mac_style = 0;
    uint16_t flags = 0;
};
Bytes HeadTable(const HeadFields &fields = {});

Bytes MaxpTable(uint32_t glyphs);
Bytes HheaTable(uint32_t metrics);

// One advance for all glyphs.
Bytes HmtxTable(uint32_t glyphs, uint32_t advance = 500);

struct PostFields {
    double italic_angle = 0;
    bool fixed_pitch = false;
};
Bytes PostTable(const PostFields &fields = {});

struct Os2Fields {
    uint16_t version = 4;
    uint16_t weight_class = 400;
    uint16_t width_class = 5;
    int16_t family_class = 0;
    uint8_t panose[10] = {};
    uint32_t unicode_ranges[4] = {};
    uint16_t selection = 0x40; // regular
    uint32_t code_page_ranges[2] = {};
};
Bytes Os2Table(const Os2Fields &fields = {});

// An inclusive run of code points that begins at a glyph.
struct CmapGroup {
    uint32_t first;
    uint32_t last;
    uint32_t glyph;
};

Bytes CmapFormat4(const std::vector<CmapGroup> &groups);
Bytes CmapFormat12(const std::vector<CmapGroup> &groups);
Bytes CmapFormat13(const std::vector<CmapGroup> &groups);

struct CmapSubtable {
    uint16_t platform;
    uint16_t encoding;
    Bytes bytes;
};
Bytes CmapTable(const std::vector<CmapSubtable> &subtables);

struct FvarAxis {
    std::string tag;
    double minimum;
    double default_value;
    double maximum;
    uint16_t name;
};

struct FvarInstance {
    uint16_t subfamily_name;
    std::vector<double> coordinates;
    uint16_t postscript_name = 0xFFFF;
};
Bytes FvarTable(const std::vector<FvarAxis> &axes, const std::vector<FvarInstance> &instances);

// Empty outlines.
Bytes LocaTable(uint32_t glyphs);
Bytes GlyfTable();

} // namespace vellum::test
