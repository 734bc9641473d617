// SPDX-License-Identifier: MIT
// Exported: the constant strings of vellum.h. The texts are part of the interface: the mixture of
// prefixes is kept, for other programs hold dictionaries with these keys.
#include "platform/val/static_string.hpp"
#include "values/string_uniquer.hpp"

#include <vellum/vellum.h>

// clang-format off
#define FOR_EACH_CONSTANT(CONSTANT) \
    CONSTANT(kVLFontPropertyName, "KSFontNameAttribute") \
    CONSTANT(kVLFontPropertyFamilyName, "KSFontFamilyAttribute") \
    CONSTANT(kVLFontPropertyFullName, "KSFontVisibleNameAttribute") \
    CONSTANT(kVLFontPropertySubfamilyName, "KSFontFaceAttribute") \
    CONSTANT(kVLFontPropertyVersionName, "VLFontVersionNameProperty") \
    CONSTANT(kVLFontPropertyCopyrightName, "VLFontCopyrightNameProperty") \
    CONSTANT(kVLFontPropertyInstanceName, "VLFontInstanceNameProperty") \
    CONSTANT(kVLFontPropertyLocalizedNames, "VLFontLocalizedNamesProperty") \
    CONSTANT(kVLFontPropertyTraits, "KSLDFontTraitsAttribute") \
    CONSTANT(kVLFontPropertyURL, "KSLDFontFileURLAttribute") \
    CONSTANT(kVLFontPropertyUUID, "VLFontUUIDProperty") \
    CONSTANT(kVLFontPropertyBookmark, "VLFontBookmarkProperty") \
    CONSTANT(kVLFontPropertyCharacterSet, "KSLDFontCharacterSetAttribute") \
    CONSTANT(kVLFontPropertyVariationAxes, "KSLDFontVariationAxes") \
    CONSTANT(kVLFontPropertyVariations, "KSLDFontVariationAttribute") \
    CONSTANT(kVLFontPropertySupportedLanguages, "KSLDFontLanguagesAttribute") \
    CONSTANT(kVLFontPropertyDesignLanguages, "KSLDFontDesignLanguagesAttribute") \
    CONSTANT(kVLFontPropertyEnabled, "KSLDFontEnabledAttribute") \
    CONSTANT(kVLFontPropertyPriority, "KSLDFontPriorityAttribute") \
    CONSTANT(kVLFontPropertyFormat, "KSLDFontFormatAttribute") \
    CONSTANT(kVLFontPropertyStringEncoding, "KSLDFontStringEncodingAttribute") \
    CONSTANT(kVLFontPropertyIgnoreScriptAnalysis, "KSLDFontIgnoreScriptAnalysisAttribute") \
    CONSTANT(kVLFontPropertyFontRef, "VLFontReferenceProperty") \
    CONSTANT(kVLFontPropertyDirectory, "VLFontDirectoryProperty") \
    CONSTANT(kVLFontPropertyScope, "VLFontScopeProperty") \
    CONSTANT(kVLFontPropertyFlags, "VLFontFlagsProperty") \
    CONSTANT(kVLFontPropertyUnicodeRanges, "VLFontUnicodeRangesProperty") \
    \
    CONSTANT(kVLFontPropertyManufacturerName, "VLFontManufacturerNameProperty") \
    CONSTANT(kVLFontPropertyDesignerName, "VLFontDesignerNameProperty") \
    CONSTANT(kVLFontPropertyPrimaryLanguage, "VLFontPropertyPrimaryLanguage") \
    \
    CONSTANT(kVLVariationAxisIdentifier, "KSLDVariationAxisIdentifier") \
    CONSTANT(kVLVariationAxisName, "KSLDVariationAxisName") \
    CONSTANT(kVLVariationAxisMinValue, "KSLDVariationAxisMinimumValue") \
    CONSTANT(kVLVariationAxisMaxValue, "KSLDVariationAxisMaximumValue") \
    CONSTANT(kVLVariationAxisDefaultValue, "KSLDVariationAxisDefaultValue") \
    \
    CONSTANT(kVLFontTraitSymbolic, "KSLDFontSymbolicTrait") \
    CONSTANT(kVLFontTraitWeight, "KSLDFontWeightTrait") \
    CONSTANT(kVLFontTraitWidth, "KSLDFontProportionTrait") \
    CONSTANT(kVLFontTraitSlant, "KSLDFontSlantTrait") \
    \
    CONSTANT(kVLFontURLScheme, "file") \
    CONSTANT(kVLFontURLFragmentSeparator, "#") \
    CONSTANT(kVLFontURLAdditionalEscapedChars, "#") \
    CONSTANT(kVLFontURLParameterSeparator, ";") \
    CONSTANT(kVLFontURLParameterKeyValueSeparator, "=") \
    CONSTANT(kVLFontURLParameterPostScriptName, "postscript-name") \
    CONSTANT(kVLFontURLParameterFamilyName, "family-name") \
    CONSTANT(kVLFontURLParameterFullName, "full-name") \
    CONSTANT(kVLFontURLParameterSubfamilyName, "subfamily-name") \
    CONSTANT(kVLFontURLParameterVariationPrefix, "var:") \
    \
    CONSTANT(kVLFontsChangedNotification, "LDFontManagerFontChangedNotification") \
    CONSTANT(kVLFontsChangedDistributedNotification, "com_orrery_Laydown_FontManagerChangedNotification") \
    CONSTANT(kAvailableFontURLsAddedKey, "LDFontManagerAvailableFontURLsAdded") \
    CONSTANT(kAvailableFontURLsRemovedKey, "LDFontManagerAvailableFontURLsRemoved")
// clang-format on

// Each is one exported constant over one string that the compiler makes.
#define DEFINE_CONSTANT(name, text)                                                                        \
    namespace {                                                                                            \
    constinit const vellum::StaticString name##Text(text);                                                 \
    }                                                                                                      \
    constinit const ValString *const name = &name##Text;
FOR_EACH_CONSTANT(DEFINE_CONSTANT)

namespace vellum {
namespace {

#define LIST_CONSTANT(name, text) &name##Text,
constinit const ValString *const kConstants[] = {FOR_EACH_CONSTANT(LIST_CONSTANT)};

} // namespace

std::span<const ValString *const> PooledConstants() noexcept {
    return kConstants;
}

} // namespace vellum
