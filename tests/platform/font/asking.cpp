// SPDX-License-Identifier: MIT
// The helpers of asking.hpp.
#include "asking.hpp"

#include <cstdio>

namespace vellum::test {

std::string Str(const Ref<const ValString> &text) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(text.Get(), &length);
    return bytes ? std::string(bytes, length) : std::string(kNull);
}

std::string Str(const Ref<const ValURL> &url) {
    return Str(Retain(ValURLGetString(url.Get())));
}

Ref<const ValString> Val(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

Ref<const ValData> Data(const Bytes &bytes) {
    return Adopt(ValDataCreate(bytes.data(), bytes.size()));
}

Ref<const GxFont> FontOf(const Bytes &bytes) {
    return GxFontCreateWithData(Data(bytes).Get());
}

Ref<const GxFont> FontOf(const FontBuilder &builder) {
    return FontOf(builder.Build());
}

Ref<const GxFont> FontWithNames(const std::vector<NameRecord> &records) {
    return FontOf(FontBuilder().Names(records));
}

Ref<const ValArray> FontsAt(std::string_view path) {
    return FontsAt(FileURL(path));
}

Ref<const ValArray> FontsAt(const Ref<const ValURL> &url) {
    return GxFontCreateFontsWithURL(url.Get());
}

const GxFont *FaceOf(const Ref<const ValArray> &fonts, size_t index) {
    return static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), index));
}

std::string PostScriptName(const GxFont *font) {
    return Str(GxFontCopyPostScriptName(font));
}

std::vector<std::string> PostScriptNames(const Ref<const ValArray> &fonts) {
    std::vector<std::string> names;
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i)
        names.push_back(PostScriptName(FaceOf(fonts, i)));
    return names;
}

std::string Name(const GxFont *font, GxNameKey key) {
    return Str(GxFontCopyName(font, key));
}

std::string LocalizedName(const GxFont *font, GxNameKey key, std::string_view language) {
    return Str(GxFontCopyLocalizedName(font, key, language));
}

std::vector<std::string> Languages(const GxFont *font) {
    const auto languages = GxFontCopyNameLanguages(font);
    std::vector<std::string> texts;
    for (size_t i = 0; i < ValArrayGetCount(languages.Get()); ++i) {
        texts.push_back(Str(Retain(static_cast<const ValString *>(ValArrayGetValue(languages.Get(), i)))));
    }
    return texts;
}

std::vector<std::string> Tags(const GxFont *font) {
    std::vector<std::string> texts;
    for (const GxTag tag : GxFontGetTableTags(font)) {
        texts.push_back({static_cast<char>(tag >> 24), static_cast<char>(tag >> 16),
                         static_cast<char>(tag >> 8), static_cast<char>(tag)});
    }
    return texts;
}

std::string Coverage(const GxFont *font) {
    const auto set = GxFontCopyCharacterSet(font);
    std::string text;
    uint32_t first = UINT32_MAX;
    uint32_t last = UINT32_MAX;
    while (ValCharacterSetNextRange(set.Get(), &first, &last)) {
        char range[32];
        std::snprintf(range, sizeof range, first == last ? "%s%X" : "%s%X-%X", text.empty() ? "" : " ",
                      first, last);
        text += range;
    }
    return text;
}

TableAnswer TableOf(const GxFont *font, std::string_view tag) {
    GxTag number = 0;
    for (const char c : tag) number = number << 8 | static_cast<uint8_t>(c);
    const auto table = GxFontCopyTable(font, number);
    const uint8_t *bytes = ValDataGetBytes(table.Get());
    const size_t length = ValDataGetLength(table.Get());
    return {static_cast<bool>(table), length ? Bytes(bytes, bytes + length) : Bytes()};
}

size_t AskEverything(const GxFont *font) {
    constexpr GxNameKey kKeys[] = {GxNameKey::kCopyright,       GxNameKey::kFamily,
                                   GxNameKey::kSubfamily,       GxNameKey::kFull,
                                   GxNameKey::kVersion,         GxNameKey::kPostScript,
                                   GxNameKey::kManufacturer,    GxNameKey::kDesigner,
                                   GxNameKey::kPreferredFamily, GxNameKey::kPreferredSubfamily};
    size_t sum = Str(GxFontCopyURL(font)).size() + Str(GxFontCopyFamilyName(font)).size() +
                 Str(GxFontCopyFullName(font)).size() + PostScriptName(font).size() + Coverage(font).size();
    const auto languages = Languages(font);
    for (const GxNameKey key : kKeys) {
        sum += Name(font, key).size();
        for (const std::string &language : languages) sum += LocalizedName(font, key, language).size();
    }
    for (const std::string &tag : Tags(font)) sum += TableOf(font, tag).bytes.size();
    for (const GxAxis &axis : GxFontGetVariationAxes(font)) sum += Str(axis.name).size();
    sum += ValDictionaryGetCount(GxFontCopyVariations(font).Get());
    sum += GxFontIsInstance(font) ? 1u : 0u;
    sum += GxFontGetItalicAngle(font) < 0 ? 1u : 0u;
    sum += GxFontIsFixedPitch(font) ? 1u : 0u;
    return sum + (GxFontIsBitmapOnly(font) ? 1u : 0u);
}

} // namespace vellum::test
