// SPDX-License-Identifier: MIT
#include "platform/locale/user_locale.hpp"
#include "support/temp_dir.hpp"
#include "support/threads.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdlib>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;

std::string CurrentOf(const LocaleEnvironment &environment) {
    return TUserLocale(environment).GetCurrentLocale();
}

std::vector<std::string> PreferredOf(const LocaleEnvironment &environment) {
    return TUserLocale(environment).GetPreferredLanguages();
}

TEST(CurrentLocale, IsTheFirstVariableThatIsSetToSomething) {
    EXPECT_EQ(CurrentOf({.all = "ja_JP.UTF-8", .messages = "de_DE", .lang = "fr_FR"}), "ja");
    EXPECT_EQ(CurrentOf({.messages = "de_AT.UTF-8", .lang = "fr_FR"}), "de-AT");
    EXPECT_EQ(CurrentOf({.all = "", .messages = "", .lang = "fr_FR"}), "fr");
}

TEST(CurrentLocale, IsEnglishWhereNothingIsSet) {
    EXPECT_EQ(CurrentOf({}), "en");
    EXPECT_EQ(CurrentOf({.lang = ""}), "en");
}

TEST(CurrentLocale, IsEnglishWhereTheVariableNamesNoLanguage) {
    EXPECT_EQ(CurrentOf({.lang = "C.UTF-8"}), "en");
    EXPECT_EQ(CurrentOf({.all = "deutsch", .lang = "fr_FR"}), "en");
}

TEST(PreferredLanguages, AreTheListOfTheUser) {
    EXPECT_THAT(PreferredOf({.lang = "de_DE", .language = "de_AT:ja:en_US"}),
                ElementsAre("de-AT", "ja", "en"));
}

TEST(PreferredLanguages, AreEachNamedOnce) {
    EXPECT_THAT(PreferredOf({.lang = "de_DE", .language = "de_DE:de:zh_TW:deu:zh_Hant"}),
                ElementsAre("de", "zh-Hant"));
}

TEST(PreferredLanguages, PassOverWhatNamesNone) {
    EXPECT_THAT(PreferredOf({.lang = "de_DE", .language = "::nonsense:ja:?:"}), ElementsAre("ja"));
}

TEST(PreferredLanguages, AreTheCurrentOneWithoutAList) {
    EXPECT_THAT(PreferredOf({.lang = "de_CH"}), ElementsAre("de-CH"));
    EXPECT_THAT(PreferredOf({.lang = "de_CH", .language = ""}), ElementsAre("de-CH"));
    EXPECT_THAT(PreferredOf({.lang = "de_CH", .language = "::"}), ElementsAre("de-CH"));
    EXPECT_THAT(PreferredOf({}), ElementsAre("en"));
}

TEST(PreferredLanguages, AreEnglishInTheUntranslatedLocaleWhateverTheList) {
    for (const char *locale : {"C", "POSIX", "C.UTF-8"})
        EXPECT_THAT(PreferredOf({.all = locale, .language = "ja:de"}), ElementsAre("en")) << locale;
    EXPECT_THAT(PreferredOf({.language = "ja:de"}), ElementsAre("en"));
    EXPECT_THAT(PreferredOf({.lang = "en_US.UTF-8", .language = "ja:de"}), ElementsAre("ja", "de"));
}

TEST(PreferredLanguages, AreLimitedInNumber) {
    std::string list;
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) list += {first, second, ':'};
    }
    EXPECT_EQ(PreferredOf({.lang = "en_US", .language = list.c_str()}).size(), 32u);
}

class SystemLocale : public ::testing::Test {
protected:
    std::string Of(std::string_view first, std::string_view second = "") const {
        const std::string one = folder_.Write("locale.conf", first);
        const std::string two = folder_.Write("default", second);
        return OfFiles(one, two);
    }

    static std::string OfFiles(const std::string &first, const std::string &second) {
        const std::array<const char *, 2> files = {first.c_str(), second.c_str()};
        return TUserLocale({.lang = "fr_FR", .configuration_files = files}).GetSystemLocale();
    }

    const TempDir folder_;
};

TEST_F(SystemLocale, IsTheMachinesAndNotTheUsers) {
    EXPECT_EQ(Of("LANG=ja_JP.UTF-8\n"), "ja");
}

TEST_F(SystemLocale, MayBeQuotedExportedAndAmongOthers) {
    EXPECT_EQ(Of("LC_TIME=de_DE\nLANG=\"pt_PT.UTF-8\"\nLANGUAGE=fr\n"), "pt-PT");
    EXPECT_EQ(Of("LANG='pt_PT.UTF-8'"), "pt-PT");
    EXPECT_EQ(Of("  export LANG=ja_JP \r\n"), "ja");
}

TEST_F(SystemLocale, IsNoneOfACommentOrAnotherKey) {
    EXPECT_EQ(Of("#LANG=ja_JP\nLANGUAGE=de\nMYLANG=fr\nLANG\nLANG = it\n"), "en");
}

TEST_F(SystemLocale, IsWhatIsSetLast) {
    EXPECT_EQ(Of("LANG=ja_JP\nLANG=de_DE\nLANG=\n"), "de");
}

TEST_F(SystemLocale, IsInTheSecondFileWhereTheFirstHasNone) {
    EXPECT_EQ(Of("LC_TIME=C\n", "LANG=de_DE\n"), "de");
    EXPECT_EQ(Of("LANG=ja_JP\n", "LANG=de_DE\n"), "ja");
    EXPECT_EQ(OfFiles(folder_.File("missing"), folder_.Write("there", "LANG=de_DE")), "de");
}

TEST_F(SystemLocale, IsEnglishWhereNothingIsConfigured) {
    EXPECT_EQ(Of("", ""), "en");
    EXPECT_EQ(OfFiles(folder_.File("missing"), folder_.MakeFolder("a_folder")), "en");
    EXPECT_EQ(TUserLocale({.lang = "fr_FR"}).GetSystemLocale(), "en");
}

TEST_F(SystemLocale, IsEnglishWhereTheConfigurationNamesNoLanguage) {
    EXPECT_EQ(Of("LANG=C.UTF-8\n"), "en");
    EXPECT_EQ(Of("LANG=deutsch\n"), "en");
}

TEST_F(SystemLocale, IsNotWaitedForInAPipeNorReadFromAHugeFile) {
    const std::string pipe = folder_.File("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(OfFiles(pipe, folder_.Write("there", "LANG=de_DE")), "de");
    EXPECT_EQ(Of("LANG=ja_JP\n" + std::string(1 << 20, '#')), "en");
}

// Each of these is a process of its own.
TEST(UserLocale, ReadsTheEnvironmentOnce) {
    setenv("LC_ALL", "", 1);
    setenv("LC_MESSAGES", "ja_JP.UTF-8", 1);
    setenv("LANGUAGE", "de:ja", 1);
    EXPECT_EQ(UserLocale()->GetCurrentLocale(), "ja");
    setenv("LC_ALL", "fr_FR", 1);
    EXPECT_EQ(UserLocale()->GetCurrentLocale(), "ja");
    EXPECT_THAT(UserLocale()->GetPreferredLanguages(), ElementsAre("de", "ja"));
    EXPECT_NE(UserLocale()->GetSystemLocale(), "");
}

TEST(ConcurrentUserLocale, IsOneForAllThreads) {
    std::array<const TUserLocale *, kThreads> seen = {};
    OnEveryThread([&](size_t i) { seen[i] = UserLocale().get(); });
    for (const TUserLocale *locale : seen) EXPECT_EQ(locale, UserLocale().get());
}

} // namespace
} // namespace vellum::test
