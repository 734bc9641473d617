// SPDX-License-Identifier: MIT
// Writing of name tables.
#include "support/name_records.hpp"

namespace vellum::test {

Bytes Utf16(std::u16string_view text) {
    ByteWriter writer;
    for (const char16_t unit : text) writer.U16(unit);
    return writer;
}

Bytes Utf16(std::string_view ascii) {
    return Utf16(std::u16string(ascii.begin(), ascii.end()));
}

NameRecord WindowsName(uint16_t name, std::u16string_view text, uint16_t language) {
    return {3, 1, language, name, Utf16(text)};
}

NameRecord WindowsName(uint16_t name, std::string_view ascii, uint16_t language) {
    return {3, 1, language, name, Utf16(ascii)};
}

NameRecord MacintoshName(uint16_t name, std::string_view bytes, uint16_t language) {
    return {1, 0, language, name, Bytes(bytes.begin(), bytes.end())};
}

NameRecord UnicodeName(uint16_t name, std::u16string_view text) {
    return {0, 3, 0, name, Utf16(text)};
}

std::vector<NameRecord> PlainNames(std::string_view family, std::string_view subfamily,
                                   std::string_view postscript_name) {
    const std::string full = std::string(family) + ' ' + std::string(subfamily);
    return {WindowsName(1, family), WindowsName(2, subfamily), WindowsName(4, full),
            WindowsName(6, postscript_name)};
}

Bytes NameTable(const std::vector<NameRecord> &records, const std::vector<std::u16string> &tags) {
    const size_t tag_bytes = tags.empty() ? 0 : 2 + 4 * tags.size();
    ByteWriter table;
    ByteWriter text;
    table.U16(tags.empty() ? 0 : 1).U16(static_cast<uint32_t>(records.size()));
    table.U16(static_cast<uint32_t>(6 + 12 * records.size() + tag_bytes));
    for (const NameRecord &record : records) {
        table.U16(record.platform).U16(record.encoding).U16(record.language).U16(record.name);
        table.U16(static_cast<uint32_t>(record.bytes.size())).U16(static_cast<uint32_t>(text.Size()));
        text.Append(record.bytes);
    }
    if (!tags.empty()) table.U16(static_cast<uint32_t>(tags.size()));
    for (const std::u16string &tag : tags) {
        table.U16(static_cast<uint32_t>(2 * tag.size())).U16(static_cast<uint32_t>(text.Size()));
        text.Append(Utf16(tag));
    }
    return table.Append(text);
}

} // namespace vellum::test
