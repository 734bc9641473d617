// SPDX-License-Identifier: MIT
// Offsets are those of OpenType's "name" table: a count at 2, the storage's offset at 4, records of
// 12 bytes from 6.
#include "describe/postscript_name_table.hpp"

#include "describe/table_bytes.hpp"

#include <algorithm>
#include <optional>

namespace vellum {

namespace {

constexpr size_t kFirstRecord = 6;
constexpr size_t kRecordSize = 12;
constexpr uint16_t kPostScriptNameID = 6;
constexpr uint16_t kMostRecords = 1024;   // more are not believed
constexpr size_t kMostBytes = 256u << 10; // all records, and the text that they can reach

struct NameRecord {
    uint16_t platform, encoding, language, name, length, offset;
};

NameRecord ReadRecord(const TableBytes &table, size_t index) {
    const size_t at = kFirstRecord + index * kRecordSize;
    return {table.U16(at),     table.U16(at + 2), table.U16(at + 4),
            table.U16(at + 6), table.U16(at + 8), table.U16(at + 10)};
}

// The encoding of a record's bytes, or nothing when its platform and encoding are not understood.
std::optional<ValStringEncoding> EncodingOf(const NameRecord &record) {
    switch (record.platform) {
    case 0:
        return kValStringEncodingUTF16BE;
    case 1:
        return record.encoding; // the script code is the encoding's number
    case 2:
        if (record.encoding == 0) return kValStringEncodingASCII;
        if (record.encoding == 1) return kValStringEncodingUTF16BE;
        if (record.encoding == 2) return kValStringEncodingLatin1;
        return std::nullopt;
    case 3:
        if (record.encoding == 0) return kValStringEncodingRoman;
        if (record.encoding == 1) return kValStringEncodingUTF16BE;
        if (record.encoding == 10) return kValStringEncodingUTF32BE;
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace

Ref<const ValString> CopyNameTablePostScriptName(const GxFont *font) {
    const TableBytes table(GxFontCopyTable(font, MakeTag("name"), kMostBytes));
    const size_t count = std::min(table.U16(2), kMostRecords);
    const size_t storage = table.U16(4);
    for (size_t i = 0; i < count; ++i) {
        const NameRecord record = ReadRecord(table, i);
        if (record.name != kPostScriptNameID) continue;
        const auto encoding = EncodingOf(record);
        if (!encoding) continue;
        const auto bytes = table.Slice(storage + record.offset, record.length);
        auto name = Adopt(ValStringCreateWithBytes(bytes.data(), bytes.size(), *encoding));
        // Scripts of the Macintosh that nobody here can decode are not understood either.
        if (!name && record.platform == 1) continue;
        return ValStringGetUTF16Length(name.Get()) > 0 ? name : nullptr;
    }
    return nullptr;
}

} // namespace vellum
