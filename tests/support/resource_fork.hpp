// SPDX-License-Identifier: MIT
// The second forks of files: their maps, and the families of fonts in them.
#pragma once

#include "support/bytes.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

// A resource map that lists these types (four characters each), with nothing behind them.
inline Bytes ResourceFork(const std::vector<std::string> &types) {
    ByteWriter fork;
    fork.U32(16).U32(16).U32(0).U32(static_cast<uint32_t>(30 + 8 * types.size()));
    fork.Zeros(24).U16(28).U16(0).U16(static_cast<uint32_t>(types.size()) - 1);
    for (const std::string &type : types) fork.Text(type).U16(0).U16(0);
    return fork;
}

struct Resource {
    std::string type;
    uint16_t id;
    Bytes data;
};

// What lies where is the format's own business: a reader must cope with both.
enum class ForkOrder { kResourcesFirst, kMapFirst };

// Resources of one type follow one another in the map, in the order given; none has a name.
inline Bytes ForkOf(const std::vector<Resource> &resources, ForkOrder order = ForkOrder::kResourcesFirst) {
    std::vector<std::string> types;
    for (const Resource &resource : resources)
        if (std::find(types.begin(), types.end(), resource.type) == types.end())
            types.push_back(resource.type);
    ByteWriter data, rows, references;
    const size_t rows_size = 2 + 8 * types.size();
    for (const std::string &type : types) {
        const size_t list = rows_size + references.Size();
        uint32_t count = 0;
        for (const Resource &resource : resources) {
            if (resource.type != type) continue;
            references.U16(resource.id).U16(0xFFFF).U32(static_cast<uint32_t>(data.Size())).U32(0);
            data.U32(static_cast<uint32_t>(resource.data.size())).Append(resource.data);
            ++count;
        }
        rows.Text(type).U16(count - 1).U16(static_cast<uint32_t>(list));
    }
    const auto map_size = static_cast<uint32_t>(28 + rows_size + references.Size());
    const auto data_size = static_cast<uint32_t>(data.Size());
    ByteWriter map;
    map.Zeros(24).U16(28).U16(map_size);
    map.U16(static_cast<uint32_t>(types.size()) - 1).Append(rows).Append(references);
    const bool map_first = order == ForkOrder::kMapFirst;
    ByteWriter fork;
    fork.U32(map_first ? 16 + map_size : 16)
        .U32(map_first ? 16 : 16 + data_size)
        .U32(data_size)
        .U32(map_size);
    return fork.Append(map_first ? map : data).Append(map_first ? data : map);
}

// A font of a family: its size, 0 for outlines, its style, and the id of its resource.
struct FamilyEntry {
    uint16_t size;
    uint16_t style;
    uint16_t font;
};

struct FamilyFields {
    std::vector<FamilyEntry> entries;
    // The strings that PostScript names are made of, numbered from 1; the first is the family's own.
    std::vector<std::string> strings;
    // For indexes of styles the number of the string that lists their suffixes.
    std::vector<std::pair<uint8_t, uint8_t>> styles = {};
};

// A family resource: the table of fonts, and right behind it the table of styles.
inline Bytes FamilyResource(const FamilyFields &family) {
    const auto entries = static_cast<uint32_t>(family.entries.size());
    ByteWriter bytes;
    bytes.U16(0).U16(128).U16(32).U16(126);    // flags, id, first and last character
    bytes.U16(0).U16(0).U16(0).U16(0);         // ascent, descent, leading, greatest width
    bytes.U32(0).U32(0).U32(54 + 6 * entries); // tables of widths, of kerning, of styles
    bytes.Zeros(18).U32(0).U16(2);             // widths by style, reserved, version
    bytes.U16(entries - 1);
    for (const FamilyEntry &entry : family.entries) bytes.U16(entry.size).U16(entry.style).U16(entry.font);
    bytes.U16(0).U32(0).U32(0); // class, table of encodings, reserved
    uint8_t indexes[48] = {};
    for (const auto &[style, number] : family.styles) indexes[style] = number;
    for (const uint8_t number : indexes) bytes.U8(number);
    bytes.U16(static_cast<uint32_t>(family.strings.size()));
    for (const std::string &string : family.strings)
        bytes.U8(static_cast<uint32_t>(string.size())).Text(string);
    return bytes;
}

} // namespace vellum::test
