// SPDX-License-Identifier: MIT
// The names of a face, one or all of a kind: which sources there are, and in which order they stand.
#include "describe/entities.hpp"
#include "platform/locale/user_locale.hpp"
#include "values/string_uniquer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

// A kind of name that is chosen from the name table by language.
struct Kind {
    const char *title;
    Ref<const void> (TClientFontEntity::*copy)(bool all) const;
    std::vector<uint16_t> ids; // in order of preference
    const char *aliases;       // the key of the metadata, if there is one
};

const std::vector<Kind> &Kinds() {
    static const std::vector<Kind> kKinds = {
        {"family", &TClientFontEntity::CopyFamilyName, {16, 1}, "ID_FamilyName_Aliases"},
        {"style", &TClientFontEntity::CopySubfamilyName, {17, 2}, "ID_StyleName_Aliases"},
        {"full", &TClientFontEntity::CopyFullName, {4}, "ID_FullName_Aliases"},
        {"version", &TClientFontEntity::CopyVersionName, {5}, nullptr},
        {"copyright", &TClientFontEntity::CopyCopyrightName, {0}, nullptr},
    };
    return kKinds;
}

// Those of all kinds.
constexpr uint16_t kIds[] = {0, 1, 2, 4, 5, 16, 17};

std::string OfLanguage(const std::string &language, uint16_t id) {
    return language + " " + std::to_string(id);
}

// Names of every kind in a language, in the form of OfLanguage.
std::vector<NameRecord> NamesIn(const std::string &language, uint16_t number) {
    std::vector<NameRecord> names;
    for (const uint16_t id : kIds) names.push_back(WindowsName(id, OfLanguage(language, id), number));
    return names;
}

std::vector<NameRecord> Joined(const std::vector<std::vector<NameRecord>> &parts) {
    std::vector<NameRecord> names;
    for (const auto &part : parts) names.insert(names.end(), part.begin(), part.end());
    return names;
}

TEST(EntityNameLists, HaveTheNameTablesThenTheFacesLanguageThenTheUsersThenTheMachines) {
    // The machine's language is not the test's to choose: the font has names in whichever it is. Should it
    // be English, then the first of the English records is its, and the usual one the name table's.
    const std::string machine = UserLocale()->GetSystemLocale();
    for (const char *other : {"ja", "fr", "el"})
        if (machine == other) GTEST_SKIP() << "the machine reads one of the other languages";
    const auto names =
        Joined({NamesIn("French", kFrench), NamesIn("Machine", 0x8000), NamesIn("Greek", kGreek),
                NamesIn("Japanese", kJapanese), NamesIn("English", kEnglishUnitedStates)});
    const auto table = NameTable(names, {std::u16string(machine.begin(), machine.end())});
    const auto entity =
        EntityOf(FontBuilder().Table("name", table), {{"Repertoire_PrimaryLanguage", String("ja_JP")},
                                                      {"ID_FamilyName_Aliases", String("Alias")},
                                                      {"ID_StyleName_Aliases", String("Alias")},
                                                      {"ID_FullName_Aliases", String("Alias")}});
    for (const Kind &kind : Kinds()) {
        std::vector<std::string> expected;
        for (const char *language : {"English", "Japanese", "French", "Machine"})
            for (const uint16_t id : kind.ids) expected.push_back(OfLanguage(language, id));
        if (kind.aliases) expected.push_back("Alias");
        EXPECT_THAT(All((entity.*kind.copy)(true)), ElementsAreArray(expected)) << kind.title;
    }
}

TEST(EntityNameLists, OfAFaceWithoutALanguageGoOnWithTheUsers) {
    const auto names = Joined({NamesIn("English", kEnglishUnitedStates), NamesIn("Japanese", kJapanese),
                               NamesIn("French", kFrench)});
    for (const MetadataEntries &silent :
         {MetadataEntries(), MetadataEntries{{"Repertoire_PrimaryLanguage", MakeNumber(int32_t{11})}}})
        EXPECT_THAT(All(WithNames(names, silent).CopyFullName(true)), ElementsAre("English 4", "French 4"));
}

TEST(EntityNameLists, PassOverWhatThereIsNot) {
    const auto entity =
        WithNames({WindowsName(1, "Plain"), WindowsName(16, "Japanese", kJapanese),
                   WindowsName(1, "French", kFrench), WindowsName(4, "Full"), WindowsName(6, "X")},
                  {{"Repertoire_PrimaryLanguage", String("ja")}});
    // The only preferred family there is stands for all languages in which there is none.
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Japanese", "Plain", "French"));
    EXPECT_THAT(All(entity.CopyFullName(true)), ElementsAre("Full"));
    EXPECT_THAT(All(entity.CopyVersionName(true)), ElementsAre("(null)"));
}

TEST(EntityNameLists, HoldANameThatSeveralSourcesGiveOnce) {
    const auto entity = WithNames({WindowsName(1, "Foo"), WindowsName(16, "Foo"),
                                   WindowsName(1, "Foo", kFrench), WindowsName(16, "Fou", kFrench),
                                   WindowsName(1, "Foo", kJapanese), WindowsName(16, "Fou", kJapanese)},
                                  {{"Repertoire_PrimaryLanguage", String("ja")}});
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("Foo", "Fou"));
}

TEST(EntityNameLists, TellNamesApartByEveryCharacter) {
    const auto entity =
        WithNames({WindowsName(1, "Foo"), WindowsName(16, "foo"), WindowsName(1, "Foo ", kFrench)});
    EXPECT_THAT(All(entity.CopyFamilyName(true)), ElementsAre("foo", "Foo", "Foo "));
}

// ---- one name -------------------------------------------------------------------------------------

TEST(EntityNameLists, AreNotWhatIsAskedForWithoutAll) {
    const auto entity = WithNames(
        Joined({NamesIn("French", kFrench), NamesIn("English", kEnglishUnitedStates)}),
        {{"Repertoire_PrimaryLanguage", String("fr")}, {"ID_FamilyName_Aliases", String("Alias")}});
    for (const Kind &kind : Kinds())
        EXPECT_EQ(TextOf((entity.*kind.copy)(false)), OfLanguage("English", kind.ids[0])) << kind.title;
}

TEST(EntityNameLists, OfVersionAndCopyrightAreTheNameTablesAlone) {
    const auto entity = WithNames(
        {WindowsName(1, "Foo"), WindowsName(6, "Foo")},
        {{"ID_VersionName_Aliases", String("Alias")}, {"ID_CopyrightName_Aliases", String("Alias")}});
    EXPECT_FALSE(entity.CopyVersionName(false));
    EXPECT_FALSE(entity.CopyVersionName(true));
    EXPECT_FALSE(entity.CopyCopyrightName(false));
    EXPECT_FALSE(entity.CopyCopyrightName(true));
}

TEST(EntityNameLists, OfAFontWithoutNamesAreNone) {
    const auto entity = EntityOf(FontBuilder().Without("name"));
    for (const Kind &kind : Kinds()) {
        if (kind.copy == &TClientFontEntity::CopySubfamilyName) continue; // which is derived
        EXPECT_FALSE((entity.*kind.copy)(false)) << kind.title;
        EXPECT_FALSE((entity.*kind.copy)(true)) << kind.title;
    }
    EXPECT_FALSE(entity.CopyPostScriptName(false));
    EXPECT_FALSE(entity.CopyPostScriptName(true));
}

// ---- aliases --------------------------------------------------------------------------------------

struct AliasRow {
    Ref<const void> aliases;
    std::vector<std::string> added;
};

// Every kind of name that may have aliases, the PostScript name too.
template <class Check>
void ForEveryKindWithAliases(Check check) {
    check(&TClientFontEntity::CopyPostScriptName, "ID_PostScriptName_Aliases");
    for (const Kind &kind : Kinds())
        if (kind.aliases) check(kind.copy, kind.aliases);
}

TEST(EntityNameLists, EndWithTheAliasesAsTheyStand) {
    const AliasRow rows[] = {
        {String("Alias"), {"Alias"}},
        {String("Foo"), {"Foo"}}, // which is in every one of the lists already
        {Strings({"B", "A", "Foo"}), {"B", "A", "Foo"}},
        {Strings({"A", "A", "Foo", "Foo"}), {"A", "A", "Foo", "Foo"}},
        {Strings({}), {}},
    };
    const std::vector<NameRecord> names = {WindowsName(1, "Foo"), WindowsName(2, "Foo"),
                                           WindowsName(4, "Foo"), WindowsName(6, "Foo")};
    ForEveryKindWithAliases([&](auto copy, const char *key) {
        for (const AliasRow &row : rows) {
            std::vector<std::string> expected = {"Foo"};
            expected.insert(expected.end(), row.added.begin(), row.added.end());
            const auto entity = WithNames(names, {{key, row.aliases}});
            EXPECT_THAT(All((entity.*copy)(true)), ElementsAreArray(expected)) << key;
            EXPECT_EQ(TextOf((entity.*copy)(false)), "Foo") << key;
        }
    });
}

TEST(EntityNameLists, PassOverAliasesThatAreNoNames) {
    const std::vector<NameRecord> names = {WindowsName(1, "Foo"), WindowsName(2, "Foo"),
                                           WindowsName(4, "Foo"), WindowsName(6, "Foo")};
    ForEveryKindWithAliases([&](auto copy, const char *key) {
        for (const auto &value : NoNames())
            EXPECT_THAT(All((WithNames(names, {{key, value}}).*copy)(true)), ElementsAre("Foo")) << key;
    });
}

TEST(EntityNameLists, MayBeOfAliasesAlone) {
    const auto entity = EntityOf(FontBuilder().Without("name"), {{"ID_FullName_Aliases", String("Alias")}});
    EXPECT_THAT(All(entity.CopyFullName(true)), ElementsAre("Alias"));
    EXPECT_FALSE(entity.CopyFullName(false));
}

// ---- one object for each name ---------------------------------------------------------------------

// The very objects that the lists of an entity hold.
std::set<const void *> ObjectsOf(const TClientFontEntity &entity) {
    std::set<const void *> objects;
    const auto add = [&](const Ref<const void> &list) {
        for (const void *name : Elements(Cast<ValArray>(list.Get()))) objects.insert(name);
    };
    add(entity.CopyPostScriptName(true));
    for (const Kind &kind : Kinds()) add((entity.*kind.copy)(true));
    return objects;
}

TEST(EntityNameLists, OfDifferentFacesHoldOneObjectForEachName) {
    const auto names = Joined(
        {NamesIn("English", kEnglishUnitedStates), NamesIn("French", kFrench), {WindowsName(6, "Foo")}});
    const MetadataEntries aliases = {{"ID_PostScriptName_Aliases", Strings({"Alias", "Other"})},
                                     {"ID_FamilyName_Aliases", String("Family Alias")},
                                     {"ID_FullName_Aliases", String("Full Alias")},
                                     {"ID_StyleName_Aliases", String("Style Alias")}};
    auto reversed = names;
    std::ranges::reverse(reversed);
    const auto a = WithNames(names, aliases), b = WithNames(reversed, aliases);
    const auto objects = ObjectsOf(a);
    EXPECT_EQ(objects.size(), 2 * 7 + 1 + 5u);
    EXPECT_EQ(objects, ObjectsOf(b));
    for (const void *name : objects)
        EXPECT_EQ(TValStringUniquer().GetUniqueString(Cast<ValString>(name)).Get(), name) << TextOf(name);
}

TEST(EntityNameLists, HoldTheObjectThatIsAnsweredForOneName) {
    const auto entity =
        WithNames(Joined({NamesIn("English", kEnglishUnitedStates), {WindowsName(6, "English-Name")}}));
    const auto check = [&](auto copy) {
        const auto all = (entity.*copy)(true);
        EXPECT_EQ((entity.*copy)(false).Get(), ValArrayGetValue(Cast<ValArray>(all.Get()), 0));
    };
    check(&TClientFontEntity::CopyPostScriptName);
    for (const Kind &kind : Kinds()) check(kind.copy);
}

} // namespace
} // namespace vellum::test
