// SPDX-License-Identifier: MIT
// From the bits of an "OS/2" table to the languages that it claims.
#include "describe/tables/os2_languages.hpp"

#include "describe/tables/os2_table.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_set.hpp"

#include <span>

namespace vellum {
namespace {

void AddLanguages(TValMutableSet &languages, std::span<const TBitLanguage> rows,
                  std::span<const uint32_t> words) {
    for (const auto &[bit, language] : rows) {
        if (words[bit / 32] >> bit % 32 & 1)
            languages.Add(OrBadAlloc(TValStringUniquer().GetUniqueString(language)).Get());
    }
}

} // namespace

Ref<const ValSet> OS2Table::CopySupportedLanguages() const {
    if (!IsComplete()) return nullptr;
    TValMutableSet languages;
    const auto code_pages = GetCodePageRanges();
    if (code_pages && GetVersion() != 0) AddLanguages(languages, kUnicodeCodePageLanguages, *code_pages);
    AddLanguages(languages, kUnicodeRangeLanguages, GetUnicodeRanges());
    return languages.IsEmpty() ? nullptr : languages.Publish();
}

} // namespace vellum
