// SPDX-License-Identifier: MIT
#include "describe/font_properties.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

struct Row {
    const ValString *const *key;
    uint32_t identifier;
    const char *text;
};

// Written out, not taken from the code: other programs depend on these texts and numbers.
constexpr Row kRows[] = {
    {&kVLFontPropertyName, 1, "KSFontNameAttribute"},
    {&kVLFontPropertyFamilyName, 2, "KSFontFamilyAttribute"},
    {&kVLFontPropertyFullName, 3, "KSFontVisibleNameAttribute"},
    {&kVLFontPropertySubfamilyName, 4, "KSFontFaceAttribute"},
    {&kVLFontPropertyVersionName, 5, "VLFontVersionNameProperty"},
    {&kVLFontPropertyCopyrightName, 6, "VLFontCopyrightNameProperty"},
    {&kVLFontPropertyInstanceName, 7, "VLFontInstanceNameProperty"},
    {&kVLFontPropertyLocalizedNames, 8, "VLFontLocalizedNamesProperty"},
    {&kVLFontPropertyTraits, 9, "KSLDFontTraitsAttribute"},
    {&kVLFontPropertyURL, 10, "KSLDFontFileURLAttribute"},
    {&kVLFontPropertyUUID, 11, "VLFontUUIDProperty"},
    {&kVLFontPropertyBookmark, 12, "VLFontBookmarkProperty"},
    {&kVLFontPropertyCharacterSet, 13, "KSLDFontCharacterSetAttribute"},
    {&kVLFontPropertyVariationAxes, 14, "KSLDFontVariationAxes"},
    {&kVLFontPropertyVariations, 15, "KSLDFontVariationAttribute"},
    {&kVLFontPropertySupportedLanguages, 16, "KSLDFontLanguagesAttribute"},
    {&kVLFontPropertyDesignLanguages, 17, "KSLDFontDesignLanguagesAttribute"},
    {&kVLFontPropertyEnabled, 18, "KSLDFontEnabledAttribute"},
    {&kVLFontPropertyPriority, 19, "KSLDFontPriorityAttribute"},
    {&kVLFontPropertyFormat, 20, "KSLDFontFormatAttribute"},
    {&kVLFontPropertyStringEncoding, 21, "KSLDFontStringEncodingAttribute"},
    {&kVLFontPropertyIgnoreScriptAnalysis, 22, "KSLDFontIgnoreScriptAnalysisAttribute"},
    {&kVLFontPropertyFontRef, 23, "VLFontReferenceProperty"},
    {&kVLFontPropertyDirectory, 24, "VLFontDirectoryProperty"},
    {&kVLFontPropertyScope, 25, "VLFontScopeProperty"},
    {&kVLFontPropertyFlags, 26, "VLFontFlagsProperty"},
    {&kVLFontPropertyUnicodeRanges, 27, "VLFontUnicodeRangesProperty"},
    {&kVLFontPropertyManufacturerName, 0, "VLFontManufacturerNameProperty"},
    {&kVLFontPropertyDesignerName, 0, "VLFontDesignerNameProperty"},
    {&kVLFontPropertyPrimaryLanguage, 0, "VLFontPropertyPrimaryLanguage"},
};

uint32_t IdentifierOf(const ValString *key) {
    return static_cast<uint32_t>(TFontProperties::GetPropertyID(key));
}

TEST(FontProperties, EveryKeyHasItsTextAndItsIdentifier) {
    for (const Row &row : kRows) {
        EXPECT_EQ(TextOf(*row.key), row.text);
        EXPECT_EQ(IdentifierOf(*row.key), row.identifier) << row.text;
    }
}

TEST(FontProperties, AnEqualStringThatIsAnotherObjectIsTheSameKey) {
    for (const Row &row : kRows) {
        const auto copy = String(row.text);
        ASSERT_NE(copy.Get(), *row.key);
        EXPECT_EQ(IdentifierOf(copy.Get()), row.identifier) << row.text;
    }
}

TEST(FontProperties, AnyOtherKeyIsUnknown) {
    EXPECT_EQ(IdentifierOf(nullptr), 0u);
    EXPECT_EQ(IdentifierOf(String("").Get()), 0u);
    EXPECT_EQ(IdentifierOf(String("ksfontnameattribute").Get()), 0u);
}

TEST(Constants, TheRestOfThePublicStringsHaveTheirTexts) {
    EXPECT_EQ(TextOf(kVLVariationAxisIdentifier), "KSLDVariationAxisIdentifier");
    EXPECT_EQ(TextOf(kVLVariationAxisName), "KSLDVariationAxisName");
    EXPECT_EQ(TextOf(kVLVariationAxisMinValue), "KSLDVariationAxisMinimumValue");
    EXPECT_EQ(TextOf(kVLVariationAxisMaxValue), "KSLDVariationAxisMaximumValue");
    EXPECT_EQ(TextOf(kVLVariationAxisDefaultValue), "KSLDVariationAxisDefaultValue");
    EXPECT_EQ(TextOf(kVLFontTraitSymbolic), "KSLDFontSymbolicTrait");
    EXPECT_EQ(TextOf(kVLFontTraitWeight), "KSLDFontWeightTrait");
    EXPECT_EQ(TextOf(kVLFontTraitWidth), "KSLDFontProportionTrait");
    EXPECT_EQ(TextOf(kVLFontTraitSlant), "KSLDFontSlantTrait");
    EXPECT_EQ(TextOf(kVLFontURLScheme), "file");
    EXPECT_EQ(TextOf(kVLFontURLFragmentSeparator), "#");
    EXPECT_EQ(TextOf(kVLFontURLAdditionalEscapedChars), "#");
    EXPECT_EQ(TextOf(kVLFontURLParameterSeparator), ";");
    EXPECT_EQ(TextOf(kVLFontURLParameterKeyValueSeparator), "=");
    EXPECT_EQ(TextOf(kVLFontURLParameterPostScriptName), "postscript-name");
    EXPECT_EQ(TextOf(kVLFontURLParameterFamilyName), "family-name");
    EXPECT_EQ(TextOf(kVLFontURLParameterFullName), "full-name");
    EXPECT_EQ(TextOf(kVLFontURLParameterSubfamilyName), "subfamily-name");
    EXPECT_EQ(TextOf(kVLFontURLParameterVariationPrefix), "var:");
}

TEST(FontProperties, HaveTheRuleThatRequestsForThemAreMatchedBy) {
    constexpr MatchRule kNever = MatchRule::kNever, kName = MatchRule::kName;
    constexpr MatchRule kRules[] = {
        kName, // 1
        kName,
        kName,
        kNever, // the subfamily name
        kName,
        kName,
        kName,
        kNever,
        MatchRule::kTraits, // 9
        MatchRule::kURL,
        kNever,
        kNever,
        MatchRule::kCharacterSet, // 13
        MatchRule::kEqual,
        MatchRule::kAlways,
        MatchRule::kLanguages,
        kNever,
        MatchRule::kAlways, // 18
        kNever,
        kNever,
        kNever,
        kNever,
        kNever,
        kNever,
        kNever,
        kNever,
        kNever,
    };
    size_t i = 0;
    for (const PropertyRow &row : TFontProperties::Rows()) EXPECT_EQ(row.match, kRules[i++]) << i;
}

TEST(FontProperties, AreDerivedByFacesButWhatRegistersSayOfThem) {
    for (const PropertyRow &row : TFontProperties::Rows()) {
        const bool is_registers = row.id == PropertyID::kInstanceName || row.id == PropertyID::kEnabled ||
                                  row.id == PropertyID::kPriority || row.id == PropertyID::kFontRef ||
                                  row.id == PropertyID::kDirectory || row.id == PropertyID::kScope;
        EXPECT_EQ(row.derive == nullptr, is_registers) << static_cast<uint32_t>(row.id);
    }
}

TEST(FontProperties, OfNamesAreTheSixThatFacesHaveManyOf) {
    for (const PropertyRow &row : TFontProperties::Rows())
        EXPECT_EQ(TFontProperties::IsNameKey(*row.key), static_cast<uint32_t>(row.id) <= 6);
    EXPECT_FALSE(TFontProperties::IsNameKey(kVLFontPropertyDesignerName));
    EXPECT_FALSE(TFontProperties::IsNameKey(nullptr));
}

} // namespace
} // namespace vellum::test
