// SPDX-License-Identifier: MIT
// More faces than a machine has: the installed ones over and over, each time under other names.
//
// A copy has the original's style, metrics, character map and languages. Glyphs are left out where no
// question reads them, and kept where a peer refuses a font without.
#pragma once

#include "font_files.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::bench {

// A font of one face, taken apart.
struct TFont {
    uint32_t version = 0;
    std::map<std::string, std::string> tables; // but for the names
    std::string family, style;
};

struct TNames {
    std::string family, style, full, postscript;
};

inline uint32_t ReadBigEndian(std::string_view bytes, size_t at, size_t size) {
    uint32_t value = 0;
    for (size_t i = at; i < at + size && i < bytes.size(); ++i)
        value = value << 8 | static_cast<uint8_t>(bytes[i]);
    return value;
}

inline void AppendBigEndian(std::string &bytes, uint32_t value, size_t size) {
    for (size_t i = size; i-- > 0;) bytes += static_cast<char>(value >> (8 * i));
}

enum class EKept { TablesAskedFor, EveryTable };

// What of a font answers the questions, or all of it. Nothing for collections, for variable fonts, and for
// what lacks one of the tables asked for.
inline std::optional<TFont> TakeApart(const std::string &path, EKept kept = EKept::TablesAskedFor) {
    std::ifstream stream(path, std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    TFont font{ReadBigEndian(file, 0, 4), {}, {}, {}};
    if (font.version != 0x00010000) return std::nullopt;
    size_t asked = 0;
    for (size_t i = 0; i < ReadBigEndian(file, 4, 2); ++i) {
        const size_t record = 12 + 16 * i;
        const std::string tag = file.substr(record, 4);
        if (tag == "fvar") return std::nullopt;
        constexpr std::string_view kAsked[] = {"cmap", "head", "hhea", "maxp", "OS/2", "post"};
        const bool is_asked = std::ranges::find(kAsked, tag) != std::end(kAsked);
        if (is_asked || kept == EKept::EveryTable)
            font.tables[tag] =
                file.substr(ReadBigEndian(file, record + 8, 4), ReadBigEndian(file, record + 12, 4));
        asked += is_asked;
    }
    if (asked != 6) return std::nullopt;
    font.tables["post"] = font.tables["post"].substr(0, 32);
    font.tables["post"].replace(0, 4, std::string("\0\3\0\0", 4)); // without the names of glyphs
    return font;
}

inline std::string NameTable(const TNames &names) {
    const std::pair<uint16_t, const std::string *> entries[] = {
        {1, &names.family}, {2, &names.style}, {4, &names.full}, {6, &names.postscript}};
    std::string records, texts;
    for (const auto &[id, text] : entries) {
        std::string utf16;
        for (const char c : *text) AppendBigEndian(utf16, static_cast<uint8_t>(c), 2);
        for (const uint32_t field : {3u, 1u, 0x409u, uint32_t{id}, static_cast<uint32_t>(utf16.size()),
                                     static_cast<uint32_t>(texts.size())})
            AppendBigEndian(records, field, 2);
        texts += utf16;
    }
    std::string table;
    AppendBigEndian(table, 0, 2);
    AppendBigEndian(table, std::size(entries), 2);
    AppendBigEndian(table, static_cast<uint32_t>(6 + records.size()), 2);
    return table + records + texts;
}

// The bytes of a font with other names.
inline std::string PutTogether(const TFont &font, const TNames &names) {
    std::map<std::string, std::string> tables = font.tables;
    tables["name"] = NameTable(names);
    std::string directory, body;
    AppendBigEndian(directory, font.version, 4);
    AppendBigEndian(directory, static_cast<uint32_t>(tables.size()), 2);
    directory.append(6, '\0');
    const size_t start = directory.size() + 16 * tables.size();
    for (const auto &[tag, table] : tables) {
        directory += tag;
        AppendBigEndian(directory, 0, 4);
        AppendBigEndian(directory, static_cast<uint32_t>(start + body.size()), 4);
        AppendBigEndian(directory, static_cast<uint32_t>(table.size()), 4);
        body += table;
        body.append((4 - body.size() % 4) % 4, '\0');
    }
    return directory + body;
}

} // namespace vellum::bench
