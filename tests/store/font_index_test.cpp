// SPDX-License-Identifier: MIT
// The two tables of an index: one face a key, or several.
#include "store/font_name_index.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr FontReference kFirst = 0x80000001, kSecond = 0x80010001, kThird = 0x80020001;

class FontIndex : public ::testing::Test {
protected:
    void Add(FontReference font, const char *key) { index.AddFontForKey(font, String(key).Get()); }
    void Remove(FontReference font, const char *key) { index.RemoveFontForKey(font, String(key).Get()); }
    std::vector<FontReference> Find(const char *key) const {
        const auto wanted = String(key);
        const auto found = References(index.CopyFontsForKey(wanted.Get()));
        EXPECT_EQ(index.FontsForKey(wanted.Get()), found);
        return found;
    }
    FontReference Direct(const char *key) const { return index.GetFontForKeyInternal(String(key).Get()); }
    const ValSet *SetOf(const char *key) const {
        return index.GetFontsSetForKeyInternal(String(key).Get());
    }

    TFontPostScriptNameIndex index;
};

TEST_F(FontIndex, AnEmptyIndexFindsNothing) {
    EXPECT_FALSE(index.CopyFontsForKey(String("Foo").Get()));
    EXPECT_EQ(ValArrayGetCount(index.CopyAllKeys().Get()), 0u);
    Remove(kFirst, "Foo");
    index.RemoveFontForAllKeys(kFirst);
}

TEST_F(FontIndex, OneFaceUnderAKeyNeedsNoSet) {
    Add(kFirst, "Foo");
    EXPECT_EQ(Direct("Foo"), kFirst);
    EXPECT_EQ(SetOf("Foo"), nullptr);
    EXPECT_THAT(Find("Foo"), ElementsAre(kFirst));
}

TEST_F(FontIndex, TheSameFaceUnderTheSameKeyIsEnteredOnce) {
    Add(kFirst, "Foo");
    Add(kFirst, "Foo");
    EXPECT_EQ(SetOf("Foo"), nullptr);
    EXPECT_THAT(Find("Foo"), ElementsAre(kFirst));
}

TEST_F(FontIndex, ASecondFaceMovesTheKeyIntoTheSetTable) {
    Add(kFirst, "Foo");
    Add(kSecond, "Foo");
    EXPECT_EQ(Direct("Foo"), 0u);
    EXPECT_THAT(Find("Foo"), ElementsAre(kFirst, kSecond));
    Add(kThird, "Foo");
    EXPECT_THAT(Find("Foo"), ElementsAre(kFirst, kSecond, kThird));
}

TEST_F(FontIndex, NamesThatDifferOnlyInLetterCaseShareOneKey) {
    Add(kFirst, "Foo-Bold");
    Add(kSecond, "foo-bold");
    EXPECT_THAT(Find("FOO-BOLD"), ElementsAre(kFirst, kSecond));
    EXPECT_EQ(ValArrayGetCount(index.CopyAllKeys().Get()), 1u);
}

TEST_F(FontIndex, AKeyThatHadTwoFacesKeepsItsSetWhenOneIsLeft) {
    Add(kFirst, "Foo");
    Add(kSecond, "Foo");
    Remove(kFirst, "Foo");
    EXPECT_EQ(Direct("Foo"), 0u);
    ASSERT_NE(SetOf("Foo"), nullptr);
    EXPECT_THAT(Find("Foo"), ElementsAre(kSecond));
}

TEST_F(FontIndex, AKeyGoesWithItsLastFace) {
    Add(kFirst, "Foo");
    Add(kSecond, "Foo");
    Remove(kFirst, "Foo");
    Remove(kSecond, "Foo");
    EXPECT_EQ(SetOf("Foo"), nullptr);
    EXPECT_FALSE(index.CopyFontsForKey(String("Foo").Get()));
}

TEST_F(FontIndex, RemovingAnotherFaceLeavesADirectKey) {
    Add(kFirst, "Foo");
    Remove(kSecond, "Foo");
    EXPECT_THAT(Find("Foo"), ElementsAre(kFirst));
}

TEST_F(FontIndex, AKeyWithASetIsAnsweredByTheSetItself) {
    Add(kFirst, "Foo");
    Add(kSecond, "Foo");
    const auto answer = index.CopyFontsForKey(String("Foo").Get());
    EXPECT_EQ(answer.Get(), SetOf("Foo"));
}

TEST_F(FontIndex, AllKeysAreThoseWithOneFaceFirst) {
    Add(kFirst, "Two");
    Add(kSecond, "Two");
    Add(kThird, "One");
    EXPECT_THAT(Texts(index.CopyAllKeys()), ElementsAre("One", "Two"));
}

TEST_F(FontIndex, AFaceCanBeRemovedFromUnderEveryKey) {
    Add(kFirst, "A");
    Add(kFirst, "B");
    Add(kSecond, "B");
    index.RemoveFontForAllKeys(kFirst);
    EXPECT_FALSE(index.CopyFontsForKey(String("A").Get()));
    EXPECT_THAT(Find("B"), ElementsAre(kSecond));
}

TEST_F(FontIndex, KeysThatAreNoStringsAreComparedAsTheyAre) {
    const auto one = Adopt(ValNumberCreateSInt32(1));
    index.AddFontForKey(kFirst, one.Get());
    const auto same = Adopt(ValNumberCreateSInt64(1));
    EXPECT_THAT(References(index.CopyFontsForKey(same.Get())), ElementsAre(kFirst));
}

TEST(NameIndexes, EachIndexesItsProperty) {
    EXPECT_EQ(TFontPostScriptNameIndex().GetIndexedProperty(), kVLFontPropertyName);
    EXPECT_EQ(TFontFullNameIndex().GetIndexedProperty(), kVLFontPropertyFullName);
    EXPECT_EQ(TFontFamilyNameIndex().GetIndexedProperty(), kVLFontPropertyFamilyName);
    EXPECT_EQ(TFontSubfamilyNameIndex().GetIndexedProperty(), kVLFontPropertySubfamilyName);
}

} // namespace
} // namespace vellum::test
