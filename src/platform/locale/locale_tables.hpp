// SPDX-License-Identifier: MIT
// The tables of languages. They are constant data that generator/ makes from a locale database while
// the library is built: rows of plain characters, so that the loader has nothing to relocate.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace vellum {

// A short text, filled up with zeros.
template <size_t kSize>
struct TShortText {
    std::array<char, kSize> characters;

    constexpr std::string_view View() const noexcept {
        const auto *end = std::find(characters.begin(), characters.end(), '\0');
        return {characters.data(), static_cast<size_t>(end - characters.begin())};
    }
};

// What something is called today. A region that was divided has a row for each part, the first of which
// stands for it where nothing else decides.
template <size_t kFrom, size_t kTo>
struct TAlias {
    TShortText<kFrom> from;
    TShortText<kTo> to;
};

using TLanguageAlias = TAlias<12, 8>; // also of a language with more: "no-bok" is "nb"
using TSubtagAlias = TAlias<4, 4>;    // of scripts and regions
using TVariantAlias = TAlias<8, 8>;

// How a language is mostly written, and where: the script stands in kScripts.
struct TLikelySubtags {
    TShortText<3> language;
    uint8_t script;
    TShortText<3> region;
};

// The characters of a language: a stretch of kExemplarBytes.
struct TExemplars {
    TShortText<8> language;
    uint32_t offset;
    uint32_t size;
};

// Sorted by `from`, which is lower case in aliases of languages and as BCP 47 has it in the others.
extern const TLanguageAlias kLanguageAliases[];
extern const size_t kLanguageAliasCount;
extern const TSubtagAlias kSubtagAliases[];
extern const size_t kSubtagAliasCount;
extern const TVariantAlias kVariantAliases[];
extern const size_t kVariantAliasCount;

extern const TShortText<4> kScripts[];

// By language alone; by language and region, where those have another script; by language and script,
// where those have another region. Sorted by language.
extern const TLikelySubtags kLikelySubtags[];
extern const size_t kLikelySubtagsCount;
extern const TLikelySubtags kLikelyScripts[];
extern const size_t kLikelyScriptCount;
extern const TLikelySubtags kLikelyRegions[];
extern const size_t kLikelyRegionCount;

// Spelled as BCP 47 has them, sorted.
extern const TShortText<8> kSupportedLanguages[];
extern const size_t kSupportedLanguageCount;

// By canonical identifier, sorted. A set is a sequence of ranges in ascending order: how many code
// points lie between a range and the one before it, then how many it has beyond its first. Numbers are
// written in groups of seven bits, the lowest first, with the high bit set in all bytes but the last.
extern const TExemplars kExemplars[];
extern const size_t kExemplarsCount;
extern const uint8_t kExemplarBytes[];

// The rows of a sorted table whose `member` is `key`.
template <class Row, class Member>
std::span<const Row> RowsOf(std::span<const Row> rows, Member member, std::string_view key) noexcept {
    const auto is_before = [=](const Row &row) noexcept { return std::invoke(member, row).View() < key; };
    const auto is_key = [=](const Row &row) noexcept { return std::invoke(member, row).View() == key; };
    const auto first = std::partition_point(rows.begin(), rows.end(), is_before);
    return {first, std::find_if_not(first, rows.end(), is_key)};
}

} // namespace vellum
