// SPDX-License-Identifier: MIT
// Assembly of tables into fonts and collections.
#include "support/font_builder.hpp"

#include <algorithm>

namespace vellum::test {
namespace {

uint32_t Count(size_t size) {
    return static_cast<uint32_t>(size);
}

constexpr uint16_t kWeightAxisName = 256;
constexpr uint16_t kWidthAxisName = 257;
constexpr uint16_t kRegularName = 258;
constexpr uint16_t kBoldName = 259;
constexpr uint16_t kBoldPostScriptName = 260;
constexpr uint16_t kNarrowName = 261;

} // namespace

FontBuilder::FontBuilder() {
    Table("head", HeadTable()).Table("OS/2", Os2Table()).Table("post", PostTable());
    Names(PlainNames("Test", "Regular", "Test-Regular"))
        .Characters({{'A', 'Z'}})
        .Table("glyf", GlyfTable());
}

FontBuilder &FontBuilder::Characters(const std::vector<CharacterRange> &ranges) {
    std::vector<CmapGroup> groups;
    uint32_t glyphs = 1;
    for (const CharacterRange &range : ranges) {
        groups.push_back({range.first, range.last, glyphs});
        glyphs += range.last - range.first + 1;
    }
    Table("maxp", MaxpTable(glyphs)).Table("hhea", HheaTable(glyphs)).Table("hmtx", HmtxTable(glyphs));
    return Table("loca", LocaTable(glyphs)).Table("cmap", CmapTable({{3, 10, CmapFormat12(groups)}}));
}

FontBuilder &FontBuilder::Table(std::string_view tag, Bytes bytes) {
    const auto found =
        std::find_if(tables_.begin(), tables_.end(), [&](auto &table) { return table.first == tag; });
    if (found == tables_.end()) return AlsoTable(tag, std::move(bytes));
    found->second = std::move(bytes);
    return *this;
}

FontBuilder &FontBuilder::AlsoTable(std::string_view tag, Bytes bytes) {
    tables_.emplace_back(tag, std::move(bytes));
    return *this;
}

FontBuilder &FontBuilder::Without(std::string_view tag) {
    std::erase_if(tables_, [&](auto &table) { return table.first == tag; });
    return *this;
}

FontBuilder &FontBuilder::Flavor(uint32_t flavor) {
    flavor_ = flavor;
    return *this;
}

Bytes FontBuilder::Build(size_t offset) const {
    ByteWriter directory;
    ByteWriter body;
    directory.U32(flavor_).U16(Count(tables_.size())).Zeros(6);
    const size_t start = offset + 12 + 16 * tables_.size();
    for (const auto &[tag, bytes] : tables_) {
        directory.Text(tag).U32(0).U32(Count(start + body.Size())).U32(Count(bytes.size()));
        body.Append(bytes).Align(4);
    }
    return directory.Append(body);
}

FontBuilder VariableFont() {
    std::vector<NameRecord> names = PlainNames("Test", "Regular", "Test-Regular");
    names.push_back(WindowsName(kWeightAxisName, "Weight"));
    names.push_back(WindowsName(kWidthAxisName, "Width"));
    names.push_back(WindowsName(kRegularName, "Regular"));
    names.push_back(WindowsName(kBoldName, "Bold"));
    names.push_back(WindowsName(kBoldPostScriptName, "Test-BoldStated"));
    names.push_back(WindowsName(kNarrowName, "Very Narrow"));
    FontBuilder font;
    return font.Names(names).Table("fvar", FvarTable({{"wght", 100, 400, 900, kWeightAxisName},
                                                      {"wdth", 50, 100, 200, kWidthAxisName}},
                                                     {{kRegularName, {400, 100}},
                                                      {kBoldName, {700, 100}, kBoldPostScriptName},
                                                      {kNarrowName, {400, 75}}}));
}

Bytes BuildCollection(const std::vector<FontBuilder> &fonts) {
    ByteWriter header;
    ByteWriter body;
    header.Text("ttcf").U32(0x00010000).U32(Count(fonts.size()));
    const size_t start = 12 + 4 * fonts.size();
    for (const FontBuilder &font : fonts) {
        const size_t offset = start + body.Size();
        header.U32(Count(offset));
        body.Append(font.Build(offset));
    }
    return header.Append(body);
}

} // namespace vellum::test
