// SPDX-License-Identifier: MIT
// The names of a live face by language: all of them, and the one that the user reads best.
#include "describe/localized_names.hpp"

#include "describe/client_font_entity.hpp"
#include "describe/name_list.hpp"
#include "platform/locale/locale_names.hpp"
#include "platform/locale/user_locale.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

#include <algorithm>
#include <span>

namespace vellum {

namespace {

constexpr GxNameKey kFamilyKeys[] = {GxNameKey::kPreferredFamily, GxNameKey::kFamily};
constexpr GxNameKey kSubfamilyKeys[] = {GxNameKey::kPreferredSubfamily, GxNameKey::kSubfamily};
constexpr GxNameKey kFullKeys[] = {GxNameKey::kFull};
constexpr GxNameKey kVersionKeys[] = {GxNameKey::kVersion};
constexpr GxNameKey kManufacturerKeys[] = {GxNameKey::kManufacturer};
constexpr GxNameKey kDesignerKeys[] = {GxNameKey::kDesigner};
constexpr GxNameKey kCopyrightKeys[] = {GxNameKey::kCopyright};

// A kind of name: the key that it has in dictionaries, and the entries that may hold it, the best first.
// The key is read through its address: what an exported constant holds is known only at run time.
struct NameKind {
    const ValString *const *key;
    std::span<const GxNameKey> entries;
};
constexpr NameKind kNameKinds[] = {
    {&kVLFontPropertyFamilyName, kFamilyKeys},
    {&kVLFontPropertySubfamilyName, kSubfamilyKeys},
    {&kVLFontPropertyFullName, kFullKeys},
    {&kVLFontPropertyVersionName, kVersionKeys},
    {&kVLFontPropertyManufacturerName, kManufacturerKeys},
    {&kVLFontPropertyDesignerName, kDesignerKeys},
    {&kVLFontPropertyCopyrightName, kCopyrightKeys},
};

Ref<const ValString> CopyFirst(const GxFont *font, const NameKind &kind, std::string_view language) {
    for (const GxNameKey entry : kind.entries) {
        if (auto name = GxFontCopyLocalizedName(font, entry, language))
            return TValStringUniquer().GetUniqueString(name.Get());
    }
    return nullptr;
}

Ref<const ValDictionary> CopyNamesInLanguage(const GxFont *font, std::string_view language) {
    TValMutableDict names;
    for (const NameKind &kind : kNameKinds) {
        if (const auto name = CopyFirst(font, kind, language)) names.Set(*kind.key, name.Get());
    }
    return names.IsEmpty() ? nullptr : names.Publish();
}

// Records of no language are listed as English ones, and instead of English ones that stand behind them:
// deliberate, as the first stays. The preferred names do prefer what says that it is English.
Ref<const ValString> KeyOfLanguage(std::string_view language) {
    return TValStringUniquer().GetUniqueString(language.empty() ? std::string_view("en") : language);
}

} // namespace

Ref<const ValString> CopyNameInLanguage(const GxFont *font, GxNameKey key, std::string_view language) {
    if (language.empty()) return nullptr;
    if (auto name = GxFontCopyLocalizedName(font, key, language)) return name;
    if (language.find('-') == std::string_view::npos) return nullptr;
    for (const std::string &parent : LanguageAndParents(language)) {
        if (auto name = GxFontCopyLocalizedName(font, key, parent)) return name;
    }
    return nullptr;
}

Ref<const ValDictionary> TClientFontEntity::CopyLocalizedNames() const {
    return Keep(Fact::kLocalizedNames, [this]() -> Ref<const ValDictionary> {
        const auto languages = GxFontCopyNameLanguages(font_.Get());
        if (!languages) return nullptr;
        TValMutableDict localized;
        for (const void *language : Elements(languages.Get())) {
            const std::string_view text = Text(static_cast<const ValString *>(language));
            const auto key = KeyOfLanguage(text);
            if (ValDictionaryGetValue(localized.Get(), key.Get())) continue;
            if (const auto names = CopyNamesInLanguage(font_.Get(), text))
                localized.Set(key.Get(), names.Get());
        }
        return localized.Publish();
    });
}

Ref<const void> TClientFontEntity::CopyLocalizedName(const ValString *key, bool all) const {
    const auto *kind =
        std::ranges::find_if(kNameKinds, [key](const NameKind &row) { return ValEqual(*row.key, key); });
    if (!key || kind == std::end(kNameKinds)) return nullptr;
    const TValArray listed(GxFontCopyNameLanguages(font_.Get()));
    NameList names;
    const auto user = UserLocale();
    for (const std::string &preferred : user->GetPreferredLanguages()) {
        for (const std::string &language : LanguageAndParents(preferred)) {
            if (!listed.Contains(TValStr(language).Get())) continue;
            auto name = CopyFirst(font_.Get(), *kind, language);
            if (!all) return name; // the first language decides, also where it lacks this name
            names.Add(std::move(name));
        }
    }
    return names.Publish();
}

} // namespace vellum
