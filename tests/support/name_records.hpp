// SPDX-License-Identifier: MIT
// Name tables of any records.
#pragma once

#include "support/bytes.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

struct NameRecord {
    uint16_t platform;
    uint16_t encoding;
    uint16_t language;
    uint16_t name;
    Bytes bytes;
};

inline constexpr uint16_t kEnglishUnitedStates = 0x409;

Bytes Utf16(std::u16string_view text);

// ASCII as UTF-16.
Bytes Utf16(std::string_view ascii);

// Records of the three platforms that fonts have; the bytes of the Macintosh ones are in its Roman
// encoding.
NameRecord WindowsName(uint16_t name, std::u16string_view text, uint16_t language = kEnglishUnitedStates);
NameRecord WindowsName(uint16_t name, std::string_view ascii, uint16_t language = kEnglishUnitedStates);
NameRecord MacintoshName(uint16_t name, std::string_view bytes, uint16_t language = 0);
NameRecord UnicodeName(uint16_t name, std::u16string_view text);

// The four names that every font has, and no others.
std::vector<NameRecord> PlainNames(std::string_view family, std::string_view subfamily,
                                   std::string_view postscript_name);

// A table of format 0, or of format 1 when there are language tags; records in the order given.
Bytes NameTable(const std::vector<NameRecord> &records, const std::vector<std::u16string> &tags = {});

} // namespace vellum::test
