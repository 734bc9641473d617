// SPDX-License-Identifier: MIT
// Exported: the constant strings of vellum.h. The texts are part of the interface: the mixture of
// prefixes is kept, for other programs hold dictionaries with these keys.
#include "platform/val/static_string.hpp"

#include <vellum/vellum.h>

// One exported constant over one string that the compiler makes.
#define DEFINE_CONSTANT(name, text)                                                                        \
    namespace {                                                                                            \
    constinit const vellum::StaticString name##Text(text);                                                 \
    }                                                                                                      \
    constinit const ValString *const name = &name##Text;

// clang-format off
DEFINE_CONSTANT(kVLFontPropertyName, "KSFontNameAttribute")
DEFINE_CONSTANT(kVLFontPropertyFamilyName, "KSFontFamilyAttribute")
DEFINE_CONSTANT(kVLFontPropertyFullName, "KSFontVisibleNameAttribute")
DEFINE_CONSTANT(kVLFontPropertySubfamilyName, "KSFontFaceAttribute")
DEFINE_CONSTANT(kVLFontPropertyVersionName, "VLFontVersionNameProperty")
DEFINE_CONSTANT(kVLFontPropertyCopyrightName, "VLFontCopyrightNameProperty")
DEFINE_CONSTANT(kVLFontPropertyInstanceName, "VLFontInstanceNameProperty")
DEFINE_CONSTANT(kVLFontPropertyLocalizedNames, "VLFontLocalizedNamesProperty")
DEFINE_CONSTANT(kVLFontPropertyTraits, "KSLDFontTraitsAttribute")
DEFINE_CONSTANT(kVLFontPropertyURL, "KSLDFontFileURLAttribute")
DEFINE_CONSTANT(kVLFontPropertyUUID, "VLFontUUIDProperty")
DEFINE_CONSTANT(kVLFontPropertyBookmark, "VLFontBookmarkProperty")
DEFINE_CONSTANT(kVLFontPropertyCharacterSet, "KSLDFontCharacterSetAttribute")
DEFINE_CONSTANT(kVLFontPropertyVariationAxes, "KSLDFontVariationAxes")
DEFINE_CONSTANT(kVLFontPropertyVariations, "KSLDFontVariationAttribute")
DEFINE_CONSTANT(kVLFontPropertySupportedLanguages, "KSLDFontLanguagesAttribute")
DEFINE_CONSTANT(kVLFontPropertyDesignLanguages, "KSLDFontDesignLanguagesAttribute")
DEFINE_CONSTANT(kVLFontPropertyEnabled, "KSLDFontEnabledAttribute")
DEFINE_CONSTANT(kVLFontPropertyPriority, "KSLDFontPriorityAttribute")
DEFINE_CONSTANT(kVLFontPropertyFormat, "KSLDFontFormatAttribute")
DEFINE_CONSTANT(kVLFontPropertyStringEncoding, "KSLDFontStringEncodingAttribute")
DEFINE_CONSTANT(kVLFontPropertyIgnoreScriptAnalysis, "KSLDFontIgnoreScriptAnalysisAttribute")
DEFINE_CONSTANT(kVLFontPropertyFontRef, "VLFontReferenceProperty")
DEFINE_CONSTANT(kVLFontPropertyDirectory, "VLFontDirectoryProperty")
DEFINE_CONSTANT(kVLFontPropertyScope, "VLFontScopeProperty")
DEFINE_CONSTANT(kVLFontPropertyFlags, "VLFontFlagsProperty")
DEFINE_CONSTANT(kVLFontPropertyUnicodeRanges, "VLFontUnicodeRangesProperty")

DEFINE_CONSTANT(kVLFontPropertyManufacturerName, "VLFontManufacturerNameProperty")
DEFINE_CONSTANT(kVLFontPropertyDesignerName, "VLFontDesignerNameProperty")
DEFINE_CONSTANT(kVLFontPropertyPrimaryLanguage, "VLFontPropertyPrimaryLanguage")

DEFINE_CONSTANT(kVLVariationAxisIdentifier, "KSLDVariationAxisIdentifier")
DEFINE_CONSTANT(kVLVariationAxisName, "KSLDVariationAxisName")
DEFINE_CONSTANT(kVLVariationAxisMinValue, "KSLDVariationAxisMinimumValue")
DEFINE_CONSTANT(kVLVariationAxisMaxValue, "KSLDVariationAxisMaximumValue")
DEFINE_CONSTANT(kVLVariationAxisDefaultValue, "KSLDVariationAxisDefaultValue")

DEFINE_CONSTANT(kVLFontTraitSymbolic, "KSLDFontSymbolicTrait")
DEFINE_CONSTANT(kVLFontTraitWeight, "KSLDFontWeightTrait")
DEFINE_CONSTANT(kVLFontTraitWidth, "KSLDFontProportionTrait")
DEFINE_CONSTANT(kVLFontTraitSlant, "KSLDFontSlantTrait")

DEFINE_CONSTANT(kVLFontURLScheme, "file")
DEFINE_CONSTANT(kVLFontURLFragmentSeparator, "#")
DEFINE_CONSTANT(kVLFontURLAdditionalEscapedChars, "#")
DEFINE_CONSTANT(kVLFontURLParameterSeparator, ";")
DEFINE_CONSTANT(kVLFontURLParameterKeyValueSeparator, "=")
DEFINE_CONSTANT(kVLFontURLParameterPostScriptName, "postscript-name")
DEFINE_CONSTANT(kVLFontURLParameterFamilyName, "family-name")
DEFINE_CONSTANT(kVLFontURLParameterFullName, "full-name")
DEFINE_CONSTANT(kVLFontURLParameterSubfamilyName, "subfamily-name")
DEFINE_CONSTANT(kVLFontURLParameterVariationPrefix, "var:")
// clang-format on

#undef DEFINE_CONSTANT
