// SPDX-License-Identifier: MIT
// What an entity over a live font answers: names, formats, axes.
#include "describe/entities.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

TClientFontEntity Entity(const Bytes &bytes) {
    return TClientFontEntity(FontOf(bytes));
}

TEST(EntityNames, ThePreferredOneIsAString) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_EQ(TextOf(entity.CopyPostScriptName(false)), "Foo-Bold");
    EXPECT_EQ(TextOf(entity.CopyFamilyName(false)), "Foo");
    EXPECT_EQ(TextOf(entity.CopyFullName(false)), "Foo Bold");
    EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), "Bold");
}

TEST(EntityNames, AllOfThemAreAnArrayWithoutRepetition) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_THAT(All(entity.CopyPostScriptName(true)), ElementsAre("Foo-Bold"));
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Foo"));
}

TEST(EntityNames, ThePreferredFamilyAndStyleComeFirst) {
    const auto entity =
        WithNames({WindowsName(1, "Foo Light"), WindowsName(2, "Regular"), WindowsName(4, "Foo Light"),
                   WindowsName(6, "Foo-Light"), WindowsName(16, "Foo"), WindowsName(17, "Light")});
    EXPECT_EQ(TextOf(entity.CopyFamilyName(false)), "Foo");
    EXPECT_EQ(TextOf(entity.CopySubfamilyName(false)), "Light");
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Foo", "Foo Light"));
    EXPECT_THAT(All(entity.CopySubfamilyName(true)), ElementsAre("Light", "Regular"));
}

TEST(EntityNames, EqualNamesOfDifferentFacesAreOneObject) {
    const auto a = Entity(MakeFont({"Foo", "Bold"})), b = Entity(MakeFont({"Foo", "Light"}));
    EXPECT_EQ(a.CopyFamilyName(false).Get(), b.CopyFamilyName(false).Get());
}

TEST(EntityProperties, AnswerByKey) {
    const auto entity = Entity(MakeFont({"Foo", "Bold"}));
    EXPECT_EQ(TextOf(entity.CopyProperty(kVLFontPropertyName, false)), "Foo-Bold");
    EXPECT_THAT(All(entity.CopyProperty(kVLFontPropertyFullName, true)), ElementsAre("Foo Bold"));
    EXPECT_EQ(ValGetType(entity.CopyProperty(kVLFontPropertyURL, false).Get()), kValTypeURL);
    const auto characters = entity.CopyCharacterSet();
    EXPECT_TRUE(ValCharacterSetContains(characters.Get(), 'A'));
    EXPECT_FALSE(ValCharacterSetContains(characters.Get(), 'B'));
}

TEST(EntityProperties, TheRegistersOwnAreNotTheFaces) {
    const auto entity = Entity(MakeFont({"Foo"}));
    for (const ValString *key :
         {kVLFontPropertyInstanceName, kVLFontPropertyEnabled, kVLFontPropertyPriority,
          kVLFontPropertyFontRef, kVLFontPropertyDirectory, kVLFontPropertyScope,
          kVLFontPropertyManufacturerName, kVLFontPropertyDesignerName, kVLFontPropertyPrimaryLanguage})
        EXPECT_FALSE(entity.CopyProperty(key, false)) << TextOf(key);
}

TEST(EntityProperties, ASetOfKeysGivesThoseThatHaveValues) {
    const auto entity = Entity(MakeFont({"Foo"}));
    const auto some = entity.CopyProperties(Keys({kVLFontPropertyName, kVLFontPropertyScope}).Get(), false);
    EXPECT_EQ(ValDictionaryGetCount(some.Get()), 1u);
    const auto none = entity.CopyProperties(Keys({kVLFontPropertyScope}).Get(), false);
    ASSERT_TRUE(none);
    EXPECT_EQ(ValDictionaryGetCount(none.Get()), 0u);
}

TEST(EntityAxes, AreDictionariesInTheFontsOrder) {
    const auto axes = Entity(VariableFont().Build()).CopyVariationAxes();
    ASSERT_EQ(ValArrayGetCount(axes.Get()), 2u);
    const auto *weight = static_cast<const ValDictionary *>(ValArrayGetValue(axes.Get(), 0));
    const auto number = [&](const ValString *key) {
        return ValNumberGetFloat64(static_cast<const ValNumber *>(ValDictionaryGetValue(weight, key)));
    };
    EXPECT_EQ(number(kVLVariationAxisIdentifier), 0x77676874); // wght
    EXPECT_EQ(number(kVLVariationAxisMinValue), 100);
    EXPECT_EQ(number(kVLVariationAxisDefaultValue), 400);
    EXPECT_EQ(number(kVLVariationAxisMaxValue), 900);
    EXPECT_EQ(ValGetType(ValDictionaryGetValue(weight, kVLVariationAxisName)), kValTypeString);
}

TEST(EntityAxes, AFontWithoutAxesHasNone) {
    const auto entity = Entity(MakeFont({"Foo"}));
    EXPECT_FALSE(entity.CopyVariationAxes());
    EXPECT_FALSE(entity.CopyVariations());
}

} // namespace
} // namespace vellum::test
