// SPDX-License-Identifier: MIT
#include "case_keys.hpp"

#include "support/values.hpp"

#include <span>

namespace vellum::test {

namespace {

struct KeyRow {
    std::string_view name;
    const ValString *const *key;
};

constexpr KeyRow kPropertyKeys[] = {
    {"Name", &kVLFontPropertyName},
    {"FamilyName", &kVLFontPropertyFamilyName},
    {"FullName", &kVLFontPropertyFullName},
    {"SubfamilyName", &kVLFontPropertySubfamilyName},
    {"VersionName", &kVLFontPropertyVersionName},
    {"CopyrightName", &kVLFontPropertyCopyrightName},
    {"InstanceName", &kVLFontPropertyInstanceName},
    {"LocalizedNames", &kVLFontPropertyLocalizedNames},
    {"Traits", &kVLFontPropertyTraits},
    {"URL", &kVLFontPropertyURL},
    {"UUID", &kVLFontPropertyUUID},
    {"Bookmark", &kVLFontPropertyBookmark},
    {"CharacterSet", &kVLFontPropertyCharacterSet},
    {"VariationAxes", &kVLFontPropertyVariationAxes},
    {"Variations", &kVLFontPropertyVariations},
    {"SupportedLanguages", &kVLFontPropertySupportedLanguages},
    {"DesignLanguages", &kVLFontPropertyDesignLanguages},
    {"Enabled", &kVLFontPropertyEnabled},
    {"Priority", &kVLFontPropertyPriority},
    {"Format", &kVLFontPropertyFormat},
    {"StringEncoding", &kVLFontPropertyStringEncoding},
    {"IgnoreScriptAnalysis", &kVLFontPropertyIgnoreScriptAnalysis},
    {"FontRef", &kVLFontPropertyFontRef},
    {"Directory", &kVLFontPropertyDirectory},
    {"Scope", &kVLFontPropertyScope},
    {"Flags", &kVLFontPropertyFlags},
    {"UnicodeRanges", &kVLFontPropertyUnicodeRanges},
};

constexpr KeyRow kTraitKeys[] = {
    {"Symbolic", &kVLFontTraitSymbolic},
    {"Weight", &kVLFontTraitWeight},
    {"Width", &kVLFontTraitWidth},
    {"Slant", &kVLFontTraitSlant},
};

constexpr KeyRow kAxisKeys[] = {
    {"Identifier", &kVLVariationAxisIdentifier},     {"Name", &kVLVariationAxisName},
    {"MinValue", &kVLVariationAxisMinValue},         {"MaxValue", &kVLVariationAxisMaxValue},
    {"DefaultValue", &kVLVariationAxisDefaultValue},
};

std::span<const KeyRow> RowsOf(CaseKeys keys) {
    switch (keys) {
    case CaseKeys::kProperties:
        return kPropertyKeys;
    case CaseKeys::kTraits:
        return kTraitKeys;
    case CaseKeys::kAxes:
        return kAxisKeys;
    case CaseKeys::kPlain:
        break;
    }
    return {};
}

} // namespace

Ref<const ValString> CaseKey(CaseKeys keys, std::string_view name) {
    const bool copy = name.starts_with('=');
    if (copy) name.remove_prefix(1);
    for (const KeyRow &row : RowsOf(keys)) {
        if (row.name == name) return copy ? String(TextOf(*row.key)) : Retain(*row.key);
    }
    return nullptr;
}

} // namespace vellum::test
