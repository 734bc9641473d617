// SPDX-License-Identifier: MIT
// Exported: looking into a file without registering it.
#include "describe/client_font_entity.hpp"
#include "describe/font_properties.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "describe/registration_info.hpp"
#include "frame/exports/guard.hpp"
#include "platform/font/type_identifier.hpp"
#include "values/val_array.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.h>

#include <string_view>

using namespace vellum;

namespace {

TValStr TagText(GxTag tag) {
    const char letters[] = {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16),
                            static_cast<char>(tag >> 8), static_cast<char>(tag)};
    const auto text = Adopt(ValStringCreateWithBytes(letters, sizeof letters, kValStringEncodingLatin1));
    return TValStr(text);
}

} // namespace

const ValString *VLCopyTypeIdentifier(const ValURL *file) noexcept {
    if (!file) return nullptr;
    return GuardCopy([&] { return CopyTypeIdentifier(file); });
}

const ValArray *VLCopyTableTagsForFont(const ValURL *font) noexcept {
    if (!font) return nullptr;
    return GuardCopy([&]() -> Ref<const ValArray> {
        const auto face = CreateFontFromURL(font);
        TValMutableArray tags;
        for (const GxTag tag : GxFontGetTableTags(face.Get())) tags.Append(TagText(tag).Get());
        return tags.IsEmpty() ? nullptr : tags.Publish();
    });
}

const ValArray *VLCopyNamesForFont(const ValURL *font, const ValString *key) noexcept {
    if (!font || !key) return nullptr;
    return GuardCopy([&]() -> Ref<const ValArray> {
        auto face = CreateFontFromURL(font);
        if (!face || !TFontProperties::IsNameKey(key)) return nullptr;
        const auto names = TClientFontEntity(std::move(face)).CopyProperty(key, true);
        return Retain(Cast<ValArray>(names.Get()));
    });
}

const ValDictionary *VLCopyRegistrationInfoForFont(const ValURL *font, bool useFontInfo) noexcept {
    if (!font) return nullptr;
    return GuardCopy([&] { return CopyRegistrationInfo(font, useFontInfo); });
}

const ValData *VLCreateFontInfoForFontFile(const ValURL *file, const ValString **name) noexcept {
    if (!file || !name) return nullptr;
    return GuardCopy([&]() -> Ref<const ValData> {
        const auto info = MakeFontInfo(file);
        if (info.content) *name = Ref(info.name).Release();
        return info.content;
    });
}
