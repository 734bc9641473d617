// SPDX-License-Identifier: MIT
// The names of a live face: the preferred one of each kind, and the list of all of them.
//
// The lists are what faces are found by: every name that the font itself gives, then those in the
// languages of the face, the user and the system, then the aliases that the metadata knows.
#include "describe/client_font_entity.hpp"
#include "describe/localized_names.hpp"
#include "describe/name_list.hpp"
#include "describe/postscript_name_table.hpp"
#include "platform/locale/locale_names.hpp"
#include "platform/locale/user_locale.hpp"
#include "platform/val/string.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_str.hpp"

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace vellum {

namespace {

Ref<const void> Interned(Ref<const ValString> name) {
    return TValStringUniquer().GetUniqueString(name.Get());
}

// The style that the full name adds to the family name; null when it adds nothing.
Ref<const ValString> DeriveStyle(const GxFont *font) {
    const TValStr full(GxFontCopyFullName(font));
    const TValStr family(GxFontCopyFamilyName(font));
    if (!family) return full.Ref();
    if (!full) return GxFontCopyPostScriptName(font);
    if (full == family) return TValStr("Regular").Ref();
    const TValStr style = full.Trim(family).TrimWhitespaceAndDash();
    return style.IsEmpty() ? nullptr : style.Ref();
}

// The list of the names of one kind, under construction.
class Names {
public:
    explicit Names(const TClientFontEntity &entity)
        : font_(entity.CopyFont()), locale_(entity.CopyLocale()) {}

    void Add(Ref<const ValString> name) { names_.Add(std::move(name)); }
    void AddName(GxNameKey key) { Add(GxFontCopyName(font_.Get(), key)); }

    // In the face's own language, the user's and the system's, which are often one; in each the names in
    // the given order.
    void AddLocalized(std::initializer_list<GxNameKey> keys) {
        const auto user = UserLocale();
        const std::string_view languages[] = {Text(locale_), user->GetCurrentLocale(),
                                              user->GetSystemLocale()};
        for (auto language = std::begin(languages); language != std::end(languages); ++language) {
            if (std::find(std::begin(languages), language, *language) != language) continue;
            for (const GxNameKey key : keys) Add(CopyNameInLanguage(font_.Get(), key, *language));
        }
    }

    void AddAliases(const ValDictionary *metadata, const ValString &key) {
        names_.AddAliases(ValDictionaryGetValue(metadata, &key));
    }

    bool IsEmpty() const noexcept { return names_.IsEmpty(); }
    Ref<const void> Publish() { return names_.Publish(); }

private:
    const Ref<const GxFont> font_;
    const Ref<const ValString> locale_;
    NameList names_;
};

} // namespace

Ref<const ValString> TClientFontEntity::CopyLocale() const {
    const auto metadata = Metadata();
    const auto *language = metadata::Find<ValString>(metadata.Get(), metadata::kPrimaryLanguage);
    if (!language) return nullptr;
    const std::string canonical = CanonicalLanguageIdentifier(Text(language));
    return canonical.empty() ? nullptr : TValStringUniquer().GetUniqueString(std::string_view(canonical));
}

Ref<const void> TClientFontEntity::PreferredName(Fact fact, GxNameKey key) const {
    return Keep(fact, [&] { return Interned(GxFontCopyName(font_.Get(), key)); });
}

Ref<const void> TClientFontEntity::CopyPostScriptName(bool all) const {
    if (!all)
        return Keep(Fact::kPostScriptName,
                    [this] { return Interned(GxFontCopyPostScriptName(font_.Get())); });
    return Keep(Fact::kPostScriptNames, [this] {
        Names names(*this);
        names.Add(GxFontCopyPostScriptName(font_.Get()));
        names.AddName(GxNameKey::kPostScript);
        names.Add(CopyNameTablePostScriptName(font_.Get()));
        names.AddAliases(Metadata().Get(), metadata::kPostScriptNameAliases);
        return names.Publish();
    });
}

Ref<const void> TClientFontEntity::CopyFamilyName(bool all) const {
    if (!all)
        return Keep(Fact::kFamilyName, [this] { return Interned(GxFontCopyFamilyName(font_.Get())); });
    return Keep(Fact::kFamilyNames, [this] {
        Names names(*this);
        names.AddName(GxNameKey::kPreferredFamily);
        names.AddName(GxNameKey::kFamily);
        names.Add(GxFontCopyFamilyName(font_.Get()));
        names.AddLocalized({GxNameKey::kPreferredFamily, GxNameKey::kFamily});
        names.AddAliases(Metadata().Get(), metadata::kFamilyNameAliases);
        return names.Publish();
    });
}

Ref<const void> TClientFontEntity::CopyFullName(bool all) const {
    if (!all) return Keep(Fact::kFullName, [this] { return Interned(GxFontCopyFullName(font_.Get())); });
    return Keep(Fact::kFullNames, [this] {
        Names names(*this);
        names.AddName(GxNameKey::kFull);
        names.Add(GxFontCopyFullName(font_.Get()));
        names.AddLocalized({GxNameKey::kFull});
        names.AddAliases(Metadata().Get(), metadata::kFullNameAliases);
        return names.Publish();
    });
}

Ref<const void> TClientFontEntity::CopySubfamilyName(bool all) const {
    if (!all) {
        return Keep(Fact::kSubfamilyName, [this] {
            auto name = GxFontCopyName(font_.Get(), GxNameKey::kPreferredSubfamily);
            if (!name) name = GxFontCopyName(font_.Get(), GxNameKey::kSubfamily);
            if (!name) name = DeriveStyle(font_.Get());
            return Interned(std::move(name));
        });
    }
    return Keep(Fact::kSubfamilyNames, [this] {
        Names names(*this);
        names.AddName(GxNameKey::kPreferredSubfamily);
        names.AddName(GxNameKey::kSubfamily);
        names.AddLocalized({GxNameKey::kPreferredSubfamily, GxNameKey::kSubfamily});
        if (names.IsEmpty()) names.Add(DeriveStyle(font_.Get()));
        names.AddAliases(Metadata().Get(), metadata::kStyleNameAliases);
        return names.Publish();
    });
}

Ref<const void> TClientFontEntity::CopyVersionName(bool all) const {
    if (!all) return PreferredName(Fact::kVersionName, GxNameKey::kVersion);
    return Keep(Fact::kVersionNames, [this] {
        Names names(*this);
        names.AddName(GxNameKey::kVersion);
        names.AddLocalized({GxNameKey::kVersion});
        return names.Publish();
    });
}

Ref<const void> TClientFontEntity::CopyCopyrightName(bool all) const {
    if (!all) return PreferredName(Fact::kCopyrightName, GxNameKey::kCopyright);
    return Keep(Fact::kCopyrightNames, [this] {
        Names names(*this);
        names.AddName(GxNameKey::kCopyright);
        names.AddLocalized({GxNameKey::kCopyright});
        return names.Publish();
    });
}

} // namespace vellum
