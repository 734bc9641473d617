// SPDX-License-Identifier: MIT
// The entity over properties that somebody has told.
#include "describe/basic_font_entity.hpp"
#include "support/allocations.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

namespace vellum::test {
namespace {

using ::testing::UnorderedElementsAre;

const ValString *const kNameKeys[] = {kVLFontPropertyName,        kVLFontPropertyFamilyName,
                                      kVLFontPropertyFullName,    kVLFontPropertySubfamilyName,
                                      kVLFontPropertyVersionName, kVLFontPropertyCopyrightName};

const ValString *const kOtherKeys[] = {kVLFontPropertyInstanceName,    kVLFontPropertySupportedLanguages,
                                       kVLFontPropertyDesignLanguages, kVLFontPropertyVariationAxes,
                                       kVLFontPropertyUnicodeRanges,   kVLFontPropertyManufacturerName,
                                       kVLFontPropertyDesignerName};

// An entity that was told one property.
TBasicFontEntity Told(const ValString *key, const void *value) {
    TValMutableDict properties;
    properties.Set(key, value);
    return TBasicFontEntity(properties.Publish());
}

Ref<const ValArray> ArrayOf(const std::vector<Ref<const void>> &items) {
    TValMutableArray array;
    for (const auto &item : items) array.Append(item.Get());
    return array.Publish();
}

TEST(BasicFontEntity, AnswersWhatItWasToldAndNothingElse) {
    const auto number = MakeNumber(int32_t{7});
    const auto entity = Told(kVLFontPropertyPriority, number.Get());
    EXPECT_EQ(entity.CopyProperty(kVLFontPropertyPriority, false).Get(), number.Get());
    EXPECT_EQ(entity.CopyProperty(kVLFontPropertyPriority, true).Get(), number.Get());
    EXPECT_FALSE(entity.CopyProperty(kVLFontPropertyName, false));
    EXPECT_FALSE(entity.CopyProperty(nullptr, false));
}

TEST(BasicFontEntity, AnswersByKeysThatNobodyKnows) {
    const auto value = String("Value");
    const auto entity = Told(String("A key of somebody's").Get(), value.Get());
    EXPECT_EQ(entity.CopyProperty(String("A key of somebody's").Get(), false).Get(), value.Get());
}

TEST(BasicFontEntity, FindsAKeyThatIsEqual) {
    const auto value = String("Foo");
    const auto entity = Told(kVLFontPropertyName, value.Get());
    EXPECT_EQ(entity.CopyProperty(String("KSFontNameAttribute").Get(), false).Get(), value.Get());
}

TEST(BasicFontEntity, TakesTheFirstOfSeveralNames) {
    const auto names = ArrayOf({String("First"), String("Second")});
    for (const ValString *key : kNameKeys) {
        const auto entity = Told(key, names.Get());
        EXPECT_EQ(entity.CopyProperty(key, false).Get(), ValArrayGetValue(names.Get(), 0)) << TextOf(key);
        EXPECT_EQ(entity.CopyProperty(key, true).Get(), names.Get()) << TextOf(key);
    }
}

TEST(BasicFontEntity, TakesTheFirstWhateverItIs) {
    const auto number = MakeNumber(int32_t{7});
    const auto entity = Told(kVLFontPropertyName, ArrayOf({number}).Get());
    EXPECT_EQ(entity.CopyProperty(kVLFontPropertyName, false).Get(), number.Get());
}

TEST(BasicFontEntity, HasNoNameInAnEmptyArray) {
    const auto none = ArrayOf({});
    for (const ValString *key : kNameKeys) {
        const auto entity = Told(key, none.Get());
        EXPECT_FALSE(entity.CopyProperty(key, false)) << TextOf(key);
        EXPECT_EQ(entity.CopyProperty(key, true).Get(), none.Get()) << TextOf(key);
    }
}

TEST(BasicFontEntity, AnswersANameThatIsNoArrayAsItStands) {
    for (const ValString *key : kNameKeys) {
        const auto name = String("Foo");
        for (const bool all : {false, true})
            EXPECT_EQ(Told(key, name.Get()).CopyProperty(key, all).Get(), name.Get()) << TextOf(key);
    }
}

TEST(BasicFontEntity, AnswersOtherArraysWhole) {
    const auto array = ArrayOf({String("First"), String("Second")});
    for (const ValString *key : kOtherKeys)
        for (const bool all : {false, true})
            EXPECT_EQ(Told(key, array.Get()).CopyProperty(key, all).Get(), array.Get()) << TextOf(key);
}

TEST(BasicFontEntity, HasTheURLThatItWasTold) {
    const auto url = MakeURL("file:///a.ttf#postscript-name=A");
    EXPECT_EQ(Told(kVLFontPropertyURL, url.Get()).CopyURL().Get(), url.Get());
    EXPECT_FALSE(Told(kVLFontPropertyName, String("A").Get()).CopyURL());
}

TEST(BasicFontEntity, HasNoURLInAnotherKindOfValue) {
    EXPECT_FALSE(Told(kVLFontPropertyURL, String("file:///a.ttf").Get()).CopyURL());
    EXPECT_FALSE(Told(kVLFontPropertyURL, ArrayOf({MakeURL("file:///a.ttf")}).Get()).CopyURL());
}

TEST(BasicFontEntity, ThatWasToldNothingAnswersNothing) {
    const TBasicFontEntity entity(nullptr);
    EXPECT_FALSE(entity.CopyURL());
    EXPECT_FALSE(entity.CopyProperty(kVLFontPropertyName, true));
    EXPECT_EQ(ValDictionaryGetCount(entity.CopyRegistrationProperties().Get()), 0u);
}

TEST(BasicFontEntity, KeepsWhatItWasToldAlive) {
    Ref<const ValDictionary> properties;
    {
        TValMutableDict told;
        told.Set(kVLFontPropertyName, String("Foo").Get());
        properties = told.Publish();
    }
    const TBasicFontEntity entity(std::move(properties));
    EXPECT_EQ(TextOf(entity.CopyProperty(kVLFontPropertyName, false)), "Foo");
}

TEST(BasicFontEntity, HasThoseOfASetOfPropertiesThatItWasTold) {
    const auto entity = Told(kVLFontPropertyName, ArrayOf({String("A"), String("B")}).Get());
    const auto keys = Keys({kVLFontPropertyName, kVLFontPropertyURL});
    const auto one = entity.CopyProperties(keys.Get(), false),
               all = entity.CopyProperties(keys.Get(), true);
    EXPECT_EQ(ValDictionaryGetCount(one.Get()), 1u);
    EXPECT_EQ(TextOf(ValDictionaryGetValue(one.Get(), kVLFontPropertyName)), "A");
    EXPECT_EQ(ValGetType(ValDictionaryGetValue(all.Get(), kVLFontPropertyName)), kValTypeArray);
}

// ---- what faces are ordered by ----------------------------------------------------------------------

TEST(BasicFontEntity, IsOrderedByFiveProperties) {
    std::vector<std::string> keys;
    const ValSet *set = TBasicFontEntity::GetBasicProperties();
    size_t cursor = 0;
    for (const void *key; ValSetNext(set, &cursor, &key);) keys.push_back(TextOf(key));
    EXPECT_THAT(keys, UnorderedElementsAre(TextOf(kVLFontPropertyURL), TextOf(kVLFontPropertyFamilyName),
                                           TextOf(kVLFontPropertySubfamilyName),
                                           TextOf(kVLFontPropertyTraits), TextOf(kVLFontPropertyPriority)));
}

TEST(BasicFontEntity, HasOneSetOfPropertiesForTheProcess) {
    EXPECT_EQ(TBasicFontEntity::GetBasicProperties(), TBasicFontEntity::GetBasicProperties());
}

class BasicFontEntityWithoutMemory : public ExhaustedMemoryTest {};

TEST_F(BasicFontEntityWithoutMemory, SaysSoAndHasTheSetOfPropertiesNextTime) {
    for (int n = 0;; ++n) {
        bool threw = false;
        const ValSet *set = nullptr;
        const bool failed = FailAfter(n, [&] {
            try {
                set = TBasicFontEntity::GetBasicProperties();
            } catch (const std::bad_alloc &) {
                threw = true;
            }
        });
        EXPECT_EQ(threw, failed) << n;
        if (!failed) {
            EXPECT_EQ(ValSetGetCount(set), 5u);
            break;
        }
    }
}

} // namespace
} // namespace vellum::test
