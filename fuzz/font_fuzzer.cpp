// SPDX-License-Identifier: MIT
// Any bytes as a font: whatever they are, asking everything of what comes out must be harmless, and
// asking twice must give the same.
#include "platform/font/gx_font.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace vellum;

namespace {

constexpr std::array kKeys = {GxNameKey::kCopyright,       GxNameKey::kFamily,
                              GxNameKey::kSubfamily,       GxNameKey::kFull,
                              GxNameKey::kVersion,         GxNameKey::kPostScript,
                              GxNameKey::kManufacturer,    GxNameKey::kDesigner,
                              GxNameKey::kPreferredFamily, GxNameKey::kPreferredSubfamily};

void Check(bool holds) {
    if (!holds) std::abort();
}

void AskNames(const GxFont *font) {
    Check(ValEqual(GxFontCopyFamilyName(font).Get(), GxFontCopyFamilyName(font).Get()));
    Check(ValEqual(GxFontCopyFullName(font).Get(), GxFontCopyFullName(font).Get()));
    Check(ValEqual(GxFontCopyPostScriptName(font).Get(), GxFontCopyPostScriptName(font).Get()));
    const auto languages = GxFontCopyNameLanguages(font);
    for (const GxNameKey key : kKeys) {
        const auto name = GxFontCopyName(font, key);
        size_t length = 0;
        ValStringGetBytes(name.Get(), &length);
        Check(!name || length != 0);
        for (size_t i = 0; i < ValArrayGetCount(languages.Get()) && i < 16; ++i) {
            const void *language = ValArrayGetValue(languages.Get(), i);
            size_t size = 0;
            const char *text = ValStringGetBytes(static_cast<const ValString *>(language), &size);
            GxFontCopyLocalizedName(font, key, {text, size});
        }
    }
}

void AskTables(const GxFont *font, size_t size) {
    for (const GxTag tag : GxFontGetTableTags(font)) {
        const auto table = GxFontCopyTable(font, tag);
        Check(static_cast<bool>(table));
        // An unpacked font may be larger than its file, within the parser's limits.
        Check(ValDataGetLength(table.Get()) <= size * 200 + (1u << 20));
    }
}

void AskVariations(const GxFont *font) {
    const auto variations = GxFontCopyVariations(font);
    for (const GxAxis &axis : GxFontGetVariationAxes(font)) {
        Check(axis.name && axis.minimum <= axis.default_value && axis.default_value <= axis.maximum);
        Check(ValDictionaryContainsKey(variations.Get(), axis.name.Get()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size); // the fuzzer declares it nowhere

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const auto data = Adopt(ValDataCreate(bytes, size));
    const auto font = GxFontCreateWithData(data.Get());
    if (!font) return 0;
    AskNames(font.Get());
    AskTables(font.Get(), size);
    AskVariations(font.Get());
    const auto coverage = GxFontCopyCharacterSet(font.Get());
    Check(ValCharacterSetGetCount(coverage.Get()) <= 0x110000);
    Check(coverage.Get() == GxFontCopyCharacterSet(font.Get()).Get());
    Check(GxFontIsBitmapOnly(font.Get()) == GxFontIsBitmapOnly(font.Get()));
    Check(GxFontIsFixedPitch(font.Get()) == GxFontIsFixedPitch(font.Get()));
    GxFontGetItalicAngle(font.Get());
    Check(!GxFontIsInstance(font.Get()) && !GxFontCopyURL(font.Get()));
    return 0;
}
