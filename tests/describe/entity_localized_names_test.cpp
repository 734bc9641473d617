// SPDX-License-Identifier: MIT
// The names of a face by language, and the one in the language that the user reads.
#include "describe/entities.hpp"
#include "support/type1_font.hpp"
#include "values/string_uniquer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The names in one language.
Ref<const ValDictionary> NamesIn(const Ref<const ValDictionary> &localized, std::string_view language) {
    return Retain(Cast<ValDictionary>(ValDictionaryGetValue(localized.Get(), String(language).Get())));
}

struct KindRow {
    const ValString *key;
    std::vector<uint16_t> ids; // in order of preference
};

const std::vector<KindRow> &Kinds() {
    static const std::vector<KindRow> kKinds = {
        {kVLFontPropertyFamilyName, {16, 1}},   {kVLFontPropertySubfamilyName, {17, 2}},
        {kVLFontPropertyFullName, {4}},         {kVLFontPropertyVersionName, {5}},
        {kVLFontPropertyManufacturerName, {8}}, {kVLFontPropertyDesignerName, {9}},
        {kVLFontPropertyCopyrightName, {0}}};
    return kKinds;
}

// ---- all of them ----------------------------------------------------------------------------------

TEST(EntityLocalizedNames, AreInTheOrderOfTheNameTable) {
    const auto names =
        WithNames({WindowsName(1, "F", kFrench), WindowsName(1, "J", kJapanese), WindowsName(4, "E"),
                   WindowsName(2, "F", kFrench), WindowsName(1, "G", kGerman)})
            .CopyLocalizedNames();
    EXPECT_THAT(KeysOf(names), ElementsAre("fr", "ja", "en", "de"));
}

TEST(EntityLocalizedNames, AreOfSevenKinds) {
    std::vector<NameRecord> records;
    for (uint16_t id = 0; id <= 25; ++id) records.push_back(WindowsName(id, "Name " + std::to_string(id)));
    const auto english = NamesIn(WithNames(records).CopyLocalizedNames(), "en");
    EXPECT_EQ(ValDictionaryGetCount(english.Get()), Kinds().size());
    for (const KindRow &kind : Kinds())
        EXPECT_EQ(TextIn(english.Get(), kind.key), "Name " + std::to_string(kind.ids[0]))
            << TextOf(kind.key);
}

TEST(EntityLocalizedNames, OfEachKindAreFoundUnderEachOfItsIdentifiersAndUnderNoOther) {
    for (uint16_t id = 0; id <= 25; ++id) {
        const auto names = WithNames({WindowsName(id, "Name"), WindowsName(6, "Foo")}).CopyLocalizedNames();
        const auto english = NamesIn(names, "en");
        size_t count = 0;
        for (const KindRow &kind : Kinds()) {
            const bool is_of_kind = std::ranges::count(kind.ids, id) != 0;
            EXPECT_EQ(TextIn(english.Get(), kind.key), is_of_kind ? "Name" : "(null)") << id;
            count += is_of_kind;
        }
        EXPECT_EQ(ValDictionaryGetCount(english.Get()), count) << id;
    }
}

TEST(EntityLocalizedNames, ArePreferredInEachLanguageForItself) {
    const auto names =
        WithNames({WindowsName(16, "Pref"), WindowsName(1, "Plain"), WindowsName(1, "Uni", kFrench),
                   WindowsName(17, "Maigre", kFrench), WindowsName(2, "Light")})
            .CopyLocalizedNames();
    EXPECT_EQ(TextIn(NamesIn(names, "en").Get(), kVLFontPropertyFamilyName), "Pref");
    EXPECT_EQ(TextIn(NamesIn(names, "fr").Get(), kVLFontPropertyFamilyName), "Uni");
    EXPECT_EQ(TextIn(NamesIn(names, "en").Get(), kVLFontPropertySubfamilyName), "Light");
    EXPECT_EQ(TextIn(NamesIn(names, "fr").Get(), kVLFontPropertySubfamilyName), "Maigre");
}

TEST(EntityLocalizedNames, AreKnownByCanonicalIdentifiers) {
    const auto names =
        WithNames({WindowsName(1, "A", 0x804), WindowsName(1, "B", 0x404), WindowsName(1, "C", 0xC07),
                   WindowsName(1, "D", 0x80C), MacintoshName(1, "E", 3)})
            .CopyLocalizedNames();
    EXPECT_THAT(KeysOf(names), ElementsAre("zh-Hans", "zh-Hant", "de-AT", "fr-BE", "it"));
}

TEST(EntityLocalizedNames, OfNoLanguageCountAsEnglish) {
    const auto names = WithNames({UnicodeName(1, u"Unicode")}).CopyLocalizedNames();
    EXPECT_THAT(KeysOf(names), ElementsAre("en"));
    EXPECT_EQ(TextIn(NamesIn(names, "en").Get(), kVLFontPropertyFamilyName), "Unicode");
}

TEST(EntityLocalizedNames, UnderOneIdentifierAreThoseOfTheFirstLanguage) {
    const auto unicode = UnicodeName(1, u"Unicode");
    const auto english = WindowsName(1, "English"), style = WindowsName(2, "Bold");
    const auto first = NamesIn(WithNames({unicode, english, style}).CopyLocalizedNames(), "en");
    EXPECT_EQ(TextIn(first.Get(), kVLFontPropertyFamilyName), "Unicode");
    EXPECT_EQ(ValDictionaryGetCount(first.Get()), 1u); // nothing is added to it
    const auto second = NamesIn(WithNames({english, unicode, style}).CopyLocalizedNames(), "en");
    EXPECT_EQ(TextIn(second.Get(), kVLFontPropertyFamilyName), "English");
    EXPECT_EQ(TextIn(second.Get(), kVLFontPropertySubfamilyName), "Bold");
}

TEST(EntityLocalizedNames, LeaveOutLanguagesWithoutAnyOfTheSevenKinds) {
    const auto names = WithNames({UnicodeName(6, u"Foo"), WindowsName(13, "Licence", kFrench),
                                  WindowsName(1, "English"), WindowsName(3, "Unique", kGerman)})
                           .CopyLocalizedNames();
    EXPECT_THAT(KeysOf(names), ElementsAre("en"));
    // What was left out does not stand for the identifier.
    EXPECT_EQ(TextIn(NamesIn(names, "en").Get(), kVLFontPropertyFamilyName), "English");
}

TEST(EntityLocalizedNames, OfANameTableWithoutAnyOfTheSevenKindsAreEmpty) {
    const auto names = WithNames({WindowsName(6, "Foo")}).CopyLocalizedNames();
    ASSERT_TRUE(names);
    EXPECT_THAT(KeysOf(names), IsEmpty());
}

TEST(EntityLocalizedNames, OfAFontWithoutANameTableAreNone) {
    EXPECT_FALSE(EntityOf(FontBuilder().Without("name")).CopyLocalizedNames());
    EXPECT_FALSE(TClientFontEntity(FontOf(BuildPfb()), nullptr).CopyLocalizedNames());
}

TEST(EntityLocalizedNames, AreOneObjectForEachName) {
    const auto a = WithNames({WindowsName(1, "Foo"), WindowsName(1, "Fou", kFrench)}).CopyLocalizedNames();
    for (const char *language : {"en", "fr"}) {
        const auto names = NamesIn(a, language);
        const auto *name = Cast<ValString>(ValDictionaryGetValue(names.Get(), kVLFontPropertyFamilyName));
        EXPECT_EQ(TValStringUniquer().GetUniqueString(name).Get(), name);
    }
}

// ---- the user's -----------------------------------------------------------------------------------

std::string Family(const std::vector<NameRecord> &names) {
    return TextOf(WithNames(names).CopyLocalizedName(kVLFontPropertyFamilyName, false));
}

TEST(EntityUsersName, IsInThePreferredLanguageThatComesFirst) {
    const auto french = WindowsName(1, "French", kFrench), german = WindowsName(1, "German", kGerman);
    const auto english = WindowsName(1, "English"), swedish = WindowsName(1, "Swedish", 0x41D);
    EXPECT_EQ(Family({english, french, german, swedish}), "Swedish");
    EXPECT_EQ(Family({english, french, german}), "German");
    EXPECT_EQ(Family({english, french}), "French");
}

TEST(EntityUsersName, IsNoneWhenThereAreOnlyOtherLanguages) {
    EXPECT_EQ(Family({WindowsName(1, "English"), WindowsName(1, "Greek", kGreek)}), "(null)");
    EXPECT_EQ(Family({UnicodeName(1, u"None")}), "(null)");
    EXPECT_FALSE(
        EntityOf(FontBuilder().Without("name")).CopyLocalizedName(kVLFontPropertyFamilyName, false));
}

TEST(EntityUsersName, IsOfEveryKind) {
    std::vector<NameRecord> records;
    for (const KindRow &kind : Kinds())
        for (const uint16_t id : kind.ids)
            records.push_back(WindowsName(id, "Name " + std::to_string(id), kGerman));
    const auto entity = WithNames(records);
    for (const KindRow &kind : Kinds())
        EXPECT_EQ(TextOf(entity.CopyLocalizedName(kind.key, false)), "Name " + std::to_string(kind.ids[0]))
            << TextOf(kind.key);
    for (const ValString *key : {kVLFontPropertyName, kVLFontPropertyURL, kVLFontPropertyPrimaryLanguage})
        EXPECT_FALSE(entity.CopyLocalizedName(key, false)) << TextOf(key);
    EXPECT_FALSE(entity.CopyLocalizedName(nullptr, false));
}

TEST(EntityUsersName, IsAskedForByAnEqualKey) {
    const auto entity = WithNames({WindowsName(1, "German", kGerman)});
    const auto key = String("KSFontFamilyAttribute");
    EXPECT_EQ(TextOf(entity.CopyLocalizedName(key.Get(), false)), "German");
}

TEST(EntityUsersName, IsOfTheFirstLanguageEvenWhereThatHasNoneOfTheKind) {
    EXPECT_EQ(Family({WindowsName(1, "French", kFrench), WindowsName(0, "(c)", kGerman)}), "(null)");
}

TEST(EntityUsersName, IsOfALanguageThatIsTheVeryOne) {
    // Who reads German is not given Austrian German by this.
    EXPECT_EQ(Family({WindowsName(1, "Austrian", 0xC07), WindowsName(1, "French", kFrench)}), "French");
}

TEST(EntityUsersName, InEveryPreferredLanguageIsAList) {
    const auto entity = WithNames(
        {WindowsName(1, "French", kFrench), WindowsName(1, "English"), WindowsName(1, "German", kGerman)});
    EXPECT_THAT(All(entity.CopyLocalizedName(kVLFontPropertyFamilyName, true)),
                ElementsAre("German", "French"));
    EXPECT_FALSE(WithNames({WindowsName(1, "E")}).CopyLocalizedName(kVLFontPropertyFamilyName, true));
}

} // namespace
} // namespace vellum::test
