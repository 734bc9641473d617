// SPDX-License-Identifier: MIT
// Writing of sfnt tables, field by field.
#include "support/sfnt_tables.hpp"

namespace vellum::test {
namespace {

uint32_t Count(size_t size) {
    return static_cast<uint32_t>(size);
}

Bytes CmapGroups(uint32_t format, const std::vector<CmapGroup> &groups) {
    ByteWriter table;
    table.U16(format).U16(0).U32(16 + 12 * Count(groups.size())).U32(0).U32(Count(groups.size()));
    for (const CmapGroup &group : groups) table.U32(group.first).U32(group.last).U32(group.glyph);
    return table;
}

} // namespace

Bytes HeadTable(const HeadFields &fields) {
    ByteWriter table;
    table.U16(1).U16(0).Fixed(1).U32(0).U32(0x5F0F3CF5).U16(fields.flags).U16(fields.units_per_em);
    table.U64(0).U64(0).I16(0).I16(-200).I16(500).I16(800).U16(fields.mac_style).U16(8).I16(2);
    return table.I16(0).I16(0);
}

Bytes MaxpTable(uint32_t glyphs) {
    ByteWriter table;
    return table.U32(0x00010000).U16(glyphs).Zeros(26);
}

Bytes HheaTable(uint32_t metrics) {
    ByteWriter table;
    table.U16(1).U16(0).I16(800).I16(-200).I16(0).U16(500).Zeros(6).I16(1).Zeros(12).I16(0);
    return table.U16(metrics);
}

Bytes HmtxTable(uint32_t glyphs, uint32_t advance) {
    ByteWriter table;
    for (uint32_t i = 0; i < glyphs; ++i) table.U16(advance).I16(0);
    return table;
}

Bytes PostTable(const PostFields &fields) {
    ByteWriter table;
    table.U32(0x00030000).Fixed(fields.italic_angle).I16(-100).I16(50).U32(fields.fixed_pitch ? 1 : 0);
    return table.Zeros(16);
}

Bytes Os2Table(const Os2Fields &fields) {
    ByteWriter table;
    table.U16(fields.version).I16(500).U16(fields.weight_class).U16(fields.width_class).U16(0).Zeros(20);
    table.I16(fields.family_class);
    for (const uint8_t digit : fields.panose) table.U8(digit);
    for (const uint32_t word : fields.unicode_ranges) table.U32(word);
    table.Text("VLLM")
        .U16(fields.selection)
        .U16(0x20)
        .U16(0x7E)
        .I16(800)
        .I16(-200)
        .I16(0)
        .U16(800)
        .U16(200);
    if (fields.version >= 1) table.U32(fields.code_page_ranges[0]).U32(fields.code_page_ranges[1]);
    if (fields.version >= 2) table.I16(400).I16(700).U16(0).U16(0x20).U16(1);
    return table;
}

// Segments with a delta each, and the segment that must end the list.
Bytes CmapFormat4(const std::vector<CmapGroup> &groups) {
    const uint32_t segments = Count(groups.size()) + 1;
    ByteWriter table;
    table.U16(4).U16(16 + 8 * segments).U16(0).U16(2 * segments).Zeros(6);
    for (const CmapGroup &group : groups) table.U16(group.last);
    table.U16(0xFFFF).U16(0);
    for (const CmapGroup &group : groups) table.U16(group.first);
    table.U16(0xFFFF);
    for (const CmapGroup &group : groups) table.U16(group.glyph - group.first);
    return table.U16(1).Zeros(2 * segments);
}

Bytes CmapFormat12(const std::vector<CmapGroup> &groups) {
    return CmapGroups(12, groups);
}

Bytes CmapFormat13(const std::vector<CmapGroup> &groups) {
    return CmapGroups(13, groups);
}

Bytes CmapTable(const std::vector<CmapSubtable> &subtables) {
    ByteWriter table;
    ByteWriter body;
    table.U16(0).U16(Count(subtables.size()));
    const size_t start = 4 + 8 * subtables.size();
    for (const CmapSubtable &subtable : subtables) {
        table.U16(subtable.platform).U16(subtable.encoding).U32(Count(start + body.Size()));
        body.Append(subtable.bytes);
    }
    return table.Append(body);
}

Bytes FvarTable(const std::vector<FvarAxis> &axes, const std::vector<FvarInstance> &instances) {
    ByteWriter table;
    table.U16(1).U16(0).U16(16).U16(2).U16(Count(axes.size())).U16(20).U16(Count(instances.size()));
    table.U16(6 + 4 * Count(axes.size()));
    for (const FvarAxis &axis : axes) {
        table.Text(axis.tag).Fixed(axis.minimum).Fixed(axis.default_value).Fixed(axis.maximum).U16(0);
        table.U16(axis.name);
    }
    for (const FvarInstance &instance : instances) {
        table.U16(instance.subfamily_name).U16(0);
        for (const double coordinate : instance.coordinates) table.Fixed(coordinate);
        table.U16(instance.postscript_name);
    }
    return table;
}

Bytes LocaTable(uint32_t glyphs) {
    return Bytes(2 * (glyphs + 1));
}

Bytes GlyfTable() {
    return Bytes(4);
}

} // namespace vellum::test
