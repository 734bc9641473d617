// SPDX-License-Identifier: MIT
// What a GxFont answers: its face's answers behind the boundary, and what follows from its file.
#include "platform/font/face_fragment.hpp"
#include "platform/font/font_object.hpp"
#include "platform/font/guarded.hpp"
#include "platform/val/string.hpp"

namespace vellum {
namespace {

// Asks the face of a font; null and exhausted memory give the empty answer.
template <class TAsk>
auto Ask(const GxFont *font, TAsk ask) noexcept {
    using TAnswer = decltype(ask(*font->face));
    return Guarded([&]() -> TAnswer { return font ? ask(*font->face) : TAnswer(); });
}

Ref<const ValURL> MakeURL(const GxFont &font) {
    if (font.alone || !font.file) return font.file;
    const std::string fragment = MakeFaceFragment(*font.face);
    if (fragment.empty()) return font.file;
    return Adopt(ValURLCopyWithFragment(font.file.Get(), MakeString(fragment).Get()));
}

Ref<const ValDictionary> MakeVariations(const TFace &face) {
    const auto axes = face.Axes();
    if (axes.empty()) return nullptr;
    auto variations = Adopt(ValDictionaryCreateMutable(axes.size(), nullptr, nullptr));
    for (size_t i = 0; i < axes.size(); ++i) {
        const auto value = Adopt(ValNumberCreateFloat64(face.Coordinates()[i]));
        if (!ValDictionarySetValue(variations.Get(), axes[i].name.Get(), value.Get())) return nullptr;
    }
    return variations;
}

} // namespace

Ref<const ValURL> GxFontCopyURL(const GxFont *font) noexcept {
    return Guarded([&]() -> Ref<const ValURL> {
        if (!font) return nullptr;
        const std::lock_guard lock(font->mutex);
        if (font->url) return font->url;
        const uint32_t failures = tPassingFailures;
        auto url = MakeURL(*font);
        if (failures == tPassingFailures) font->url = url; // else it may name the face by less than it has
        return url;
    });
}

Ref<const ValString> GxFontCopyPostScriptName(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.CopyPostScriptName(); });
}

Ref<const ValString> GxFontCopyFamilyName(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.CopyFamilyName(); });
}

Ref<const ValString> GxFontCopyFullName(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.CopyFullName(); });
}

Ref<const ValString> GxFontCopyName(const GxFont *font, GxNameKey key) noexcept {
    return Ask(font, [&](const TFace &face) { return face.CopyName(key); });
}

Ref<const ValString> GxFontCopyLocalizedName(const GxFont *font, GxNameKey key,
                                             std::string_view language) noexcept {
    return Ask(font, [&](const TFace &face) { return face.CopyLocalizedName(key, language); });
}

Ref<const ValArray> GxFontCopyNameLanguages(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.CopyNameLanguages(); });
}

Ref<const ValData> GxFontCopyTable(const GxFont *font, GxTag tag, size_t limit) noexcept {
    Ref<const ValData> table;
    GxFontCopyTables(font, {&tag, 1}, {&table, 1}, limit);
    return table;
}

void GxFontCopyTables(const GxFont *font, std::span<const GxTag> tags, std::span<Ref<const ValData>> tables,
                      size_t limit) noexcept {
    for (auto &table : tables) table = nullptr;
    Ask(font, [&](const TFace &face) {
        face.CopyTables(tags, tables, limit);
        return true;
    });
}

std::span<const GxTag> GxFontGetTableTags(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.TableTags(); });
}

Ref<const ValCharacterSet> GxFontCopyCharacterSet(const GxFont *font) noexcept {
    auto coverage = Ask(font, [](const TFace &face) { return face.CopyCharacterSet(); });
    if (coverage) return coverage;
    ++tPassingFailures;
    return Adopt<const ValCharacterSet>(ValCharacterSetCreateMutable());
}

std::span<const GxAxis> GxFontGetVariationAxes(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.Axes(); });
}

Ref<const ValDictionary> GxFontCopyVariations(const GxFont *font) noexcept {
    return Guarded([&]() -> Ref<const ValDictionary> {
        if (!font) return nullptr;
        const std::lock_guard lock(font->mutex);
        if (font->variations) return font->variations;
        const uint32_t failures = tPassingFailures;
        auto variations = MakeVariations(*font->face);
        if (failures == tPassingFailures) font->variations = variations;
        return variations;
    });
}

bool GxFontIsInstance(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.IsInstance(); });
}

double GxFontGetItalicAngle(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.ItalicAngle(); });
}

bool GxFontIsFixedPitch(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.IsFixedPitch(); });
}

bool GxFontIsBitmapOnly(const GxFont *font) noexcept {
    return Ask(font, [](const TFace &face) { return face.IsBitmapOnly(); });
}

// Of two threads that make one at a time, the second takes the first one's.
GxFontCompanion *GxFontGetCompanion(const GxFont *font,
                                    std::unique_ptr<GxFontCompanion> (*make)()) noexcept {
    if (!font) return nullptr;
    if (auto *known = font->companion.load(std::memory_order_acquire)) return known;
    auto fresh = Guarded(make);
    GxFontCompanion *current = nullptr;
    if (fresh && font->companion.compare_exchange_strong(current, fresh.get(), std::memory_order_acq_rel))
        return fresh.release();
    return current;
}

} // namespace vellum
