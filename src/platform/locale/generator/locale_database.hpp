// SPDX-License-Identifier: MIT
// What the tables of languages are made from, as ICU's locale database has it.
//
// Everything throws std::runtime_error when the database does not give what it should.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vellum::generator {

using TPairs = std::vector<std::pair<std::string, std::string>>;

std::string DatabaseVersion();

// From a language, or a language with one more subtag, all lower case and hyphenated, to what it is
// called today. Left out is what has no language, or needs an extension to be said.
TPairs LanguageAliases();

// Of scripts and regions; a divided region has a pair for each part, in the database's order.
TPairs SubtagAliases();
TPairs VariantAliases();

struct TLikelyRow {
    std::string language;
    std::string script;
    std::string region;
};

// Each is sorted by language. The second has what only a region brings about, the third what only a
// script does.
struct TLikely {
    std::vector<TLikelyRow> by_language;
    std::vector<TLikelyRow> by_region;
    std::vector<TLikelyRow> by_script;
};

TLikely LikelySubtags();

// The locales that are bare ISO language codes, "zh-Hans" and "zh-Hant", sorted.
std::vector<std::string> SupportedLanguages();

using TRanges = std::vector<std::pair<uint32_t, uint32_t>>; // first and last

// The standard exemplar sets, by canonical identifier: of every supported language, and of every other
// locale that has another set than its nearest parent.
std::map<std::string, TRanges> ExemplarSets();

} // namespace vellum::generator
