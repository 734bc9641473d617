// SPDX-License-Identifier: MIT
// Exported: looking into a file without registering it.
#include "describe/gx_font_wrapper.hpp"
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
