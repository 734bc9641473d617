// SPDX-License-Identifier: MIT
// Writing of BDF, which is text, and of PCF, its compiled form.
#include "support/bitmap_fonts.hpp"

namespace vellum::test {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

Texts TextProperties(const BitmapFont &font) {
    Texts texts = {{"WEIGHT_NAME", font.weight}, {"SLANT", font.slant}, {"SPACING", "C"}};
    if (!font.family.empty()) texts.emplace_back("FAMILY_NAME", font.family);
    texts.emplace_back("CHARSET_REGISTRY", font.registry);
    texts.emplace_back("CHARSET_ENCODING", font.encoding);
    texts.insert(texts.end(), font.texts.begin(), font.texts.end());
    return texts;
}

std::string BdfGlyph(uint32_t code) {
    const std::string number = std::to_string(code);
    return "STARTCHAR c" + number + "\nENCODING " + number +
           "\nSWIDTH 500 0\nDWIDTH 8 0\nBBX 8 8 0 0\nBITMAP\n00\n00\n00\n00\n00\n00\n00\n00\nENDCHAR\n";
}

struct PcfTable {
    uint32_t type;
    Bytes bytes;
};

uint32_t Count(size_t size) {
    return static_cast<uint32_t>(size);
}

Bytes PcfProperties(const BitmapFont &font) {
    LittleEndianWriter table;
    LittleEndianWriter strings;
    const auto add = [&](const std::string &text) {
        const uint32_t offset = Count(strings.Size());
        strings.Text(text).U8(0);
        return offset;
    };
    const Texts texts = TextProperties(font);
    const size_t count = texts.size() + font.numbers.size();
    table.U32(0).U32(Count(count));
    for (const auto &[name, text] : texts) {
        table.U32(add(name)).U8(1);
        table.U32(add(text));
    }
    for (const auto &[name, number] : font.numbers) {
        table.U32(add(name)).U8(0);
        table.U32(static_cast<uint32_t>(number));
    }
    table.Zeros((4 - count % 4) % 4);
    table.U32(Count(strings.Size()));
    return table.Append(strings);
}

// Left and right bearing, width, ascent, descent, attributes.
void AddPcfMetric(LittleEndianWriter &table) {
    table.U16(0).U16(8).U16(8).U16(8).U16(0).U16(0);
}

Bytes PcfAccelerators() {
    LittleEndianWriter table;
    table.U32(0).U8(1).U8(1).U8(0).U8(1).U8(1).U8(0).U8(0).U8(0);
    table.U32(8).U32(0).U32(0);
    AddPcfMetric(table);
    AddPcfMetric(table);
    return table;
}

Bytes PcfMetrics(uint32_t glyphs) {
    LittleEndianWriter table;
    table.U32(0).U32(glyphs);
    for (uint32_t i = 0; i < glyphs; ++i) AddPcfMetric(table);
    return table;
}

// Rows are padded to a byte; the four sizes are those for rows padded to 1, 2, 4 and 8 bytes.
Bytes PcfBitmaps(uint32_t glyphs) {
    LittleEndianWriter table;
    table.U32(0).U32(glyphs);
    for (uint32_t i = 0; i < glyphs; ++i) table.U32(8 * i);
    table.U32(8 * glyphs).U32(16 * glyphs).U32(32 * glyphs).U32(64 * glyphs).Zeros(8 * glyphs);
    return table;
}

// One row of codes: the fonts of these tests stay below U+0100.
Bytes PcfEncodings(const BitmapFont &font) {
    LittleEndianWriter table;
    table.U32(0).U16(font.first).U16(font.last).U16(0).U16(0).U16(font.first);
    for (uint32_t i = 0; i <= font.last - font.first; ++i) table.U16(i);
    return table;
}

} // namespace

std::string BuildBdf(const BitmapFont &font) {
    const Texts texts = TextProperties(font);
    std::string bdf = "STARTFONT 2.1\nFONT -test-font\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 8 0 0\n";
    bdf += "STARTPROPERTIES " + std::to_string(texts.size() + font.numbers.size()) + '\n';
    for (const auto &[name, text] : texts) bdf += name + " \"" + text + "\"\n";
    for (const auto &[name, number] : font.numbers) bdf += name + ' ' + std::to_string(number) + '\n';
    bdf += "ENDPROPERTIES\nCHARS " + std::to_string(font.last - font.first + 1) + '\n';
    for (uint32_t code = font.first; code <= font.last; ++code) bdf += BdfGlyph(code);
    return bdf + "ENDFONT\n";
}

Bytes BuildPcf(const BitmapFont &font) {
    const uint32_t glyphs = font.last - font.first + 1;
    const std::vector<PcfTable> tables = {{1, PcfProperties(font)},
                                          {2, PcfAccelerators()},
                                          {4, PcfMetrics(glyphs)},
                                          {8, PcfBitmaps(glyphs)},
                                          {32, PcfEncodings(font)}};
    LittleEndianWriter file;
    LittleEndianWriter body;
    file.Text("\1fcp");
    file.U32(Count(tables.size()));
    const size_t start = 8 + 16 * tables.size();
    for (const PcfTable &table : tables) {
        file.U32(table.type).U32(0).U32(Count(table.bytes.size())).U32(Count(start + body.Size()));
        body.Append(table.bytes).Align(4);
    }
    return file.Append(body);
}

} // namespace vellum::test
