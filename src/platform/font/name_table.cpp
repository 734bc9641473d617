// SPDX-License-Identifier: MIT
// Reading of the name table, formats 0 and 1, and the ranking of its records.
#include "platform/font/name_table.hpp"

#include "platform/font/limits.hpp"
#include "platform/font/name_decoding.hpp"
#include "platform/font/name_language.hpp"
#include "platform/locale/locale_names.hpp"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace vellum {
namespace {

constexpr size_t kHeaderSize = 6;
constexpr size_t kRecordSize = 12;
constexpr uint16_t kFirstTag = 0x8000; // language numbers from here on index the table's own tags
constexpr size_t kMaximumTags = 256;
constexpr size_t kMaximumTagBytes = 2 * kMaximumLanguageIdentifier; // in UTF-16

enum TPlatform : uint16_t { kUnicode = 0, kMacintosh = 1, kWindows = 3 };

// The names that can be asked for of any face: the keys of GxNameKey, and 25, the prefix of the
// PostScript names of a variable face's instances.
constexpr uint32_t kAskedNames = 1u << 0 | 1u << 1 | 1u << 2 | 1u << 4 | 1u << 5 | 1u << 6 | 1u << 8 |
                                 1u << 9 | 1u << 16 | 1u << 17 | 1u << 25;

bool IsAsked(uint16_t name, std::span<const uint16_t> more) noexcept {
    if (name < 32 && (kAskedNames >> name & 1) != 0) return true;
    return std::binary_search(more.begin(), more.end(), name);
}

} // namespace

TNameTable::TNameTable(TBytes table, std::span<const uint16_t> more) : present_(true) {
    const size_t claimed = ReadU16(table, 2);
    const TBytes text = Slice(table, ReadU16(table, 4), table.size());
    const size_t held = table.size() < kHeaderSize ? 0 : (table.size() - kHeaderSize) / kRecordSize;
    const size_t count = std::min({claimed, held, limits::kNameRecords});
    if (ReadU16(table, 0) == 1) ReadTags(table, kHeaderSize + claimed * kRecordSize, text);
    const auto record_at = [table](size_t i) {
        return table.subspan(kHeaderSize + i * kRecordSize, kRecordSize);
    };
    size_t asked = 0, asked_bytes = 0;
    for (size_t i = 0; i < count; ++i) {
        if (!IsAsked(ReadU16(record_at(i), 6), more)) continue;
        ++asked;
        asked_bytes += ReadU16(record_at(i), 8);
    }
    records_.reserve(asked);
    text_.reserve(std::min({asked_bytes, text.size(), limits::kKeptNameBytes}));
    for (size_t i = 0; i < count; ++i) {
        const TBytes record = record_at(i);
        const uint16_t place = AddLanguage(ReadU16(record, 0), ReadU16(record, 4));
        if (!IsAsked(ReadU16(record, 6), more)) continue;
        const TBytes bytes = Slice(text, ReadU16(record, 10), ReadU16(record, 8));
        AddRecord(
            {ReadU16(record, 0), ReadU16(record, 2), ReadU16(record, 4), ReadU16(record, 6), place, 0, 0},
            bytes);
    }
    // There may be thousands of these.
    records_.shrink_to_fit();
    text_.shrink_to_fit();
    languages_.shrink_to_fit();
}

void TNameTable::ReadTags(TBytes table, size_t at, TBytes text) {
    const size_t count = std::min<size_t>(ReadU16(table, at), kMaximumTags);
    for (size_t i = 0; i < count; ++i) {
        const TBytes record = Slice(table, at + 2 + i * 4, 4);
        const TBytes bytes = Slice(text, ReadU16(record, 2), ReadU16(record, 0));
        const auto tag = bytes.size() <= kMaximumTagBytes ? DecodeName(kUnicode, 0, bytes) : nullptr;
        const char *characters = ValStringGetUTF8(tag.Get(), nullptr);
        tags_.push_back(characters ? CanonicalLanguageIdentifier(characters) : std::string());
    }
}

// The place of the number among the languages.
uint16_t TNameTable::AddLanguage(uint16_t platform, uint16_t language) {
    const uint32_t key = static_cast<uint32_t>(platform) << 16 | language;
    const auto place = std::ranges::find(languages_, key, &TLanguage::key) - languages_.begin();
    if (static_cast<size_t>(place) == languages_.size())
        languages_.push_back({key, LanguageOf(platform, language)});
    return static_cast<uint16_t>(place);
}

// A record of an absurd length is no name; UTF-16 takes at most twice what UTF-8 takes.
void TNameTable::AddRecord(TRecord record, TBytes text) {
    if (text.empty() || text.size() > 2 * limits::kNameLength) return;
    if (text.size() > limits::kKeptNameBytes - text_.size()) return;
    record.offset = static_cast<uint32_t>(text_.size());
    record.length = static_cast<uint32_t>(text.size());
    text_.insert(text_.end(), text.begin(), text.end());
    records_.push_back(record);
}

// Without data for a language that is not known; empty, but with data, for records of no language.
std::string_view TNameTable::LanguageOf(uint16_t platform, uint16_t language) const {
    if (language >= kFirstTag) {
        const size_t index = language - kFirstTag;
        if (index < tags_.size() && !tags_[index].empty()) return tags_[index];
    }
    if (platform == kUnicode) return "";
    if (platform == kMacintosh) return LanguageOfMacintoshNumber(language);
    if (platform == kWindows) return LanguageOfWindowsNumber(language);
    return {};
}

int TNameTable::Rank(const TRecord &record) const {
    if (record.platform == kWindows && record.language == 0x409) return 0;
    if (record.platform == kWindows && IsWindowsEnglish(record.language)) return 1;
    if (record.platform == kWindows && LanguageOf(kWindows, record.language).substr(0, 2) == "en") return 1;
    if (record.platform == kMacintosh && record.language == 0) return 2;
    if (record.platform == kUnicode) return 3;
    return 4;
}

Ref<const ValString> TNameTable::Decode(const TRecord &record) const {
    return DecodeName(record.platform, record.encoding, Slice(text_, record.offset, record.length));
}

Ref<const ValString> TNameTable::Copy(uint16_t name) const {
    constexpr int kWorstRank = 4;
    for (int rank = 0; rank <= kWorstRank; ++rank) {
        for (const TRecord &record : records_) {
            if (record.name != name || Rank(record) != rank) continue;
            if (auto text = Decode(record)) return text;
        }
    }
    return nullptr;
}

Ref<const ValString> TNameTable::CopyInLanguage(uint16_t name, std::string_view language) const {
    for (const uint16_t place : RecordsInLanguage(name, language)) {
        if (auto text = Decode(records_[place])) return text;
    }
    return nullptr;
}

// In the order of the records. Records of languages that are not known are in none.
std::span<const uint16_t> TNameTable::RecordsInLanguage(uint16_t name, std::string_view language) const {
    using TKey = std::pair<uint16_t, std::string_view>;
    const auto key = [this](uint16_t place) {
        return TKey(records_[place].name, languages_[records_[place].language_place].tag);
    };
    if (by_language_.empty()) {
        std::vector<uint16_t> places;
        for (uint16_t place = 0; place < records_.size(); ++place)
            if (key(place).second.data()) places.push_back(place);
        std::ranges::stable_sort(places, std::less<>(), key);
        by_language_ = std::move(places);
    }
    const TKey wanted(name, language);
    const auto first = std::ranges::lower_bound(by_language_, wanted, std::less<>(), key);
    return {first, std::ranges::upper_bound(first, by_language_.end(), wanted, std::less<>(), key)};
}

Ref<const ValArray> TNameTable::CopyLanguages() const {
    auto array = Adopt(ValArrayCreateMutable(languages_.size(), nullptr));
    for (const auto &[key, tag] : languages_) {
        if (!tag.data()) continue;
        const auto text = Adopt(ValStringCreateWithUTF8(tag.data(), tag.size()));
        if (!ValArrayContains(array.Get(), text.Get())) ValArrayAppend(array.Get(), text.Get());
    }
    return array;
}

} // namespace vellum
