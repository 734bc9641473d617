// SPDX-License-Identifier: MIT
#include "platform/locale/exemplars.hpp"

#include "platform/locale/locale_names.hpp"
#include "platform/locale/locale_tables.hpp"
#include "platform/val/character_set.hpp"

#include <new>
#include <string>

namespace vellum {
namespace {

// Walks the ranges of a stretch of kExemplarBytes, as MakeCharacterSet wants it: from the start again
// for bounds of UINT32_MAX.
class RangeReader {
public:
    explicit RangeReader(const TExemplars &row) noexcept : bytes_(kExemplarBytes + row.offset, row.size) {}

    bool operator()(uint32_t *first, uint32_t *last) noexcept {
        if (*last == UINT32_MAX) at_ = 0;
        if (at_ == bytes_.size()) return false;
        *first = (at_ == 0 ? 0 : *last + 1) + Number();
        *last = *first + Number();
        return true;
    }

private:
    uint32_t Number() noexcept {
        uint32_t number = 0;
        uint32_t shift = 0;
        for (; bytes_[at_] & 0x80; shift += 7) number |= (bytes_[at_++] & uint32_t{0x7F}) << shift;
        return number | static_cast<uint32_t>(bytes_[at_++]) << shift;
    }

    std::span<const uint8_t> bytes_;
    size_t at_ = 0;
};

const TExemplars *FindRow(std::string_view language) noexcept {
    const auto rows = RowsOf(std::span(kExemplars, kExemplarsCount), &TExemplars::language, language);
    return rows.empty() ? nullptr : &rows.front();
}

const TExemplars *FindNearestRow(std::string_view canonical) {
    for (const std::string &language : LanguageAndParents(canonical)) {
        if (const TExemplars *row = FindRow(language)) return row;
    }
    return nullptr;
}

} // namespace

size_t CountSupportedLanguages() noexcept {
    return kSupportedLanguageCount;
}

std::string_view SupportedLanguageAt(size_t index) noexcept {
    return index < kSupportedLanguageCount ? kSupportedLanguages[index].View() : std::string_view();
}

bool HasExemplars(std::string_view canonical) {
    return FindNearestRow(canonical) != nullptr;
}

Ref<const ValCharacterSet> CreateExemplarSet(std::string_view canonical) {
    const TExemplars *row = FindNearestRow(canonical);
    if (!row) return nullptr;
    auto set = MakeCharacterSet(RangeReader(*row));
    if (!set) throw std::bad_alloc();
    return set;
}

} // namespace vellum
