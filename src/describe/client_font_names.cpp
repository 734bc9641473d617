// SPDX-License-Identifier: MIT
// The names of a live face: the preferred one of each kind, and the list of all of them.
#include "describe/client_font_entity.hpp"
#include "describe/name_list.hpp"
#include "describe/postscript_name_table.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_str.hpp"

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

} // namespace

Ref<const void> TClientFontEntity::CopyPostScriptName(bool all) const {
    if (!all) return Interned(GxFontCopyPostScriptName(font_.Get()));
    NameList names;
    names.Add(GxFontCopyPostScriptName(font_.Get()));
    names.Add(GxFontCopyName(font_.Get(), GxNameKey::kPostScript));
    names.Add(CopyNameTablePostScriptName(font_.Get()));
    return names.Publish();
}

Ref<const void> TClientFontEntity::CopyFamilyName(bool all) const {
    if (!all) return Interned(GxFontCopyFamilyName(font_.Get()));
    NameList names;
    names.Add(GxFontCopyName(font_.Get(), GxNameKey::kPreferredFamily));
    names.Add(GxFontCopyName(font_.Get(), GxNameKey::kFamily));
    names.Add(GxFontCopyFamilyName(font_.Get()));
    return names.Publish();
}

Ref<const void> TClientFontEntity::CopyFullName(bool all) const {
    if (!all) return Interned(GxFontCopyFullName(font_.Get()));
    NameList names;
    names.Add(GxFontCopyName(font_.Get(), GxNameKey::kFull));
    names.Add(GxFontCopyFullName(font_.Get()));
    return names.Publish();
}

Ref<const void> TClientFontEntity::CopySubfamilyName(bool all) const {
    auto preferred = GxFontCopyName(font_.Get(), GxNameKey::kPreferredSubfamily);
    auto subfamily = GxFontCopyName(font_.Get(), GxNameKey::kSubfamily);
    if (!all) {
        if (preferred) return Interned(std::move(preferred));
        if (subfamily) return Interned(std::move(subfamily));
        return Interned(DeriveStyle(font_.Get()));
    }
    NameList names;
    names.Add(std::move(preferred));
    names.Add(std::move(subfamily));
    if (names.IsEmpty()) names.Add(DeriveStyle(font_.Get()));
    return names.Publish();
}

} // namespace vellum
