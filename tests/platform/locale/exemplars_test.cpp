// SPDX-License-Identifier: MIT
#include "platform/locale/exemplars.hpp"
#include "platform/locale/locale_names.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace vellum::test {
namespace {

using ::testing::IsSupersetOf;

std::vector<std::string> Supported() {
    std::vector<std::string> languages;
    for (size_t i = 0; i < CountSupportedLanguages(); ++i) languages.emplace_back(SupportedLanguageAt(i));
    return languages;
}

Ref<const ValCharacterSet> ExemplarsOf(std::string_view language) {
    return CreateExemplarSet(CanonicalLanguageIdentifier(language));
}

bool Contains(std::string_view language, uint32_t character) {
    return ValCharacterSetContains(ExemplarsOf(language).Get(), character);
}

bool AreEqual(std::string_view language, std::string_view other) {
    return ValEqual(ExemplarsOf(language).Get(), ExemplarsOf(other).Get());
}

TEST(SupportedLanguages, AreSortedAndEachNamedOnce) {
    const auto languages = Supported();
    EXPECT_TRUE(std::ranges::is_sorted(languages));
    EXPECT_EQ(std::ranges::adjacent_find(languages), languages.end());
    EXPECT_EQ(SupportedLanguageAt(CountSupportedLanguages()), "");
}

TEST(SupportedLanguages, AreBareCodesAndTheTwoScriptsOfChinese) {
    const auto languages = Supported();
    EXPECT_THAT(languages, IsSupersetOf({"ar", "chr", "de", "en", "fil", "he", "ja", "ko", "ru", "sr", "th",
                                         "vi", "zh", "zh-Hans", "zh-Hant", "zu"}));
    for (const std::string &language : languages)
        EXPECT_TRUE(language.size() <= 3 || language == "zh-Hans" || language == "zh-Hant") << language;
}

TEST(SupportedLanguages, AllHaveExemplars) {
    for (const std::string &language : Supported()) {
        const auto set = ExemplarsOf(language);
        EXPECT_GT(ValCharacterSetGetCount(set.Get()), 0u) << language;
        EXPECT_TRUE(HasExemplars(CanonicalLanguageIdentifier(language))) << language;
    }
}

TEST(Exemplars, AreTheLowerCaseLettersOfTheLanguage) {
    EXPECT_EQ(ValCharacterSetGetCount(ExemplarsOf("en").Get()), 26u);
    for (uint32_t letter = 'a'; letter <= 'z'; ++letter) EXPECT_TRUE(Contains("en", letter)) << letter;
    EXPECT_TRUE(Contains("de", 0xDF));
    EXPECT_FALSE(Contains("de", 'A'));
    EXPECT_TRUE(Contains("ru", 0x44F));
    EXPECT_TRUE(Contains("ja", 0x3042));
    EXPECT_TRUE(Contains("ko", 0xAC00));
}

TEST(Exemplars, OfALanguageWithoutASetOfItsOwnAreItsParents) {
    EXPECT_TRUE(AreEqual("de-AT", "de"));
    EXPECT_TRUE(AreEqual("zh-HK", "zh-Hant"));
    EXPECT_TRUE(AreEqual("el-polyton", "el"));
    EXPECT_FALSE(AreEqual("el", "de"));
}

TEST(Exemplars, OfARegionOrAScriptMayBeOthers) {
    EXPECT_FALSE(Contains("de-CH", 0xDF));
    EXPECT_TRUE(Contains("sr", 0x436));
    EXPECT_FALSE(Contains("sr-Latn", 0x436));
    EXPECT_TRUE(Contains("sr-Latn-ME", 'a'));
    EXPECT_TRUE(Contains("zh-Hans", 0x4E1C));
    EXPECT_FALSE(Contains("zh-Hant", 0x4E1C));
}

TEST(Exemplars, OfAnotherScriptAreNotThoseOfTheLanguage) {
    EXPECT_FALSE(HasExemplars("de-Cyrl"));
    EXPECT_FALSE(CreateExemplarSet("de-Cyrl"));
}

TEST(Exemplars, OfUnknownLanguagesAreNone) {
    for (const std::string_view language : {"", "tlh", "qaa", "xx-Latn-US", "mul"}) {
        EXPECT_FALSE(HasExemplars(language)) << language;
        EXPECT_FALSE(CreateExemplarSet(language)) << language;
    }
}

} // namespace
} // namespace vellum::test
