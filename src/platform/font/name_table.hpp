// SPDX-License-Identifier: MIT
// The name table: which records it has, and the choice among records that say the same thing.
#pragma once

#include "platform/font/big_endian.hpp"

#include <vellum/values.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace vellum {

// What a name table says, in a form that needs the table no more. One thread at a time. Records of the
// names that can be asked for are kept, each with its bytes; of the others only their language.
class TNameTable {
public:
    TNameTable() = default;
    TNameTable(TNameTable &&) = default; // not copied: its parts refer to each other
    TNameTable &operator=(TNameTable &&) = default;

    // `more` are further name identifiers that can be asked for, sorted.
    TNameTable(TBytes table, std::span<const uint16_t> more);

    // False when there is no table.
    explicit operator bool() const noexcept { return present_; }

    // The English record, else the first one, of those that can be decoded; null without any.
    Ref<const ValString> Copy(uint16_t name) const;

    // The first record in a language that can be decoded.
    Ref<const ValString> CopyInLanguage(uint16_t name, std::string_view language) const;

    // The languages of all records, in their order, each once.
    Ref<const ValArray> CopyLanguages() const;

private:
    struct TRecord {
        uint16_t platform;
        uint16_t encoding;
        uint16_t language;
        uint16_t name;
        uint16_t language_place; // in languages_
        uint32_t offset;         // in text_
        uint32_t length;
    };

    // A language in which there are records. Different numbers may stand for one.
    struct TLanguage {
        uint32_t key;         // platform << 16 | number
        std::string_view tag; // without data where the number names no known language
    };

    void ReadTags(TBytes table, size_t at, TBytes text);
    uint16_t AddLanguage(uint16_t platform, uint16_t language);
    void AddRecord(TRecord record, TBytes text);
    std::string_view LanguageOf(uint16_t platform, uint16_t language) const;
    int Rank(const TRecord &record) const;
    Ref<const ValString> Decode(const TRecord &record) const;

    std::span<const uint16_t> RecordsInLanguage(uint16_t name, std::string_view language) const;

    std::vector<TRecord> records_;
    mutable std::vector<uint16_t> by_language_; // places of records by name and language; made when needed
    std::vector<uint8_t> text_;
    std::vector<TLanguage> languages_; // in order of appearance
    std::vector<std::string> tags_;    // of language numbers from 0x8000; complete before there are views
    bool present_ = false;
};

} // namespace vellum
