// SPDX-License-Identifier: MIT
// Short ways with fontconfig's own types.
//
// What is held of a configuration is given back before a call of the service ends: fontconfig counts on
// nobody holding anything when a program puts it away (FcFini), and ends the program otherwise.
#pragma once

#include <fontconfig/fontconfig.h>

#include <memory>
#include <string>
#include <string_view>

namespace vellum::legacy {

struct ConfigurationRelease {
    void operator()(FcConfig *config) const noexcept { FcConfigDestroy(config); }
};
using ConfigurationRef = std::unique_ptr<FcConfig, ConfigurationRelease>;

struct FontSetRelease {
    void operator()(FcFontSet *set) const noexcept { FcFontSetDestroy(set); }
};
using FontSetRef = std::unique_ptr<FcFontSet, FontSetRelease>;

// The configuration that the program uses, with a reference: it may be replaced at any time. Made, with all
// of the system's fonts, when there is none yet; null when that fails.
inline ConfigurationRef CurrentConfiguration() noexcept {
    return ConfigurationRef(FcConfigReference(nullptr));
}

inline const FcChar8 *AsFontconfig(const std::string &text) noexcept {
    return reinterpret_cast<const FcChar8 *>(text.c_str());
}

inline std::string_view AsText(const FcChar8 *text) noexcept {
    return reinterpret_cast<const char *>(text);
}

// An absolute path as fontconfig spells it: without doubled slashes and without dots. Empty when memory is
// exhausted.
inline std::string NormalPath(const std::string &path) {
    const std::unique_ptr<FcChar8, decltype(&FcStrFree)> normal(FcStrCopyFilename(AsFontconfig(path)),
                                                                FcStrFree);
    return normal ? std::string(AsText(normal.get())) : std::string();
}

// The text of a property of a font; empty when it has none.
inline std::string_view TextOf(const FcPattern *font, const char *property) noexcept {
    FcChar8 *text = nullptr;
    if (FcPatternGetString(font, property, 0, &text) != FcResultMatch) return {};
    return AsText(text);
}

inline std::string_view FileOf(const FcPattern *font) noexcept {
    return TextOf(font, FC_FILE);
}

// Whether a font is one face or one named instance, and not the font that stands for all instances.
inline bool IsRegularFont(const FcPattern *font) noexcept {
    FcBool variable = FcFalse;
    return FcPatternGetBool(font, FC_VARIABLE, 0, &variable) != FcResultMatch || variable == FcFalse;
}

// Which face of its file a font is; a named instance's number stands in the upper 16 bits.
inline int IndexOf(const FcPattern *font) noexcept {
    int index = 0;
    return FcPatternGetInteger(font, FC_INDEX, 0, &index) == FcResultMatch ? index : 0;
}

} // namespace vellum::legacy
