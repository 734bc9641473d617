// SPDX-License-Identifier: MIT
#include "platform/font/name_language.hpp"
#include "platform/locale/locale_names.hpp"
#include "platform/locale/locale_tables.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TCase {
    std::string_view given;
    std::string_view canonical;
};

void ExpectCanonical(std::initializer_list<TCase> cases) {
    for (const auto &[given, canonical] : cases) {
        EXPECT_EQ(CanonicalLanguageIdentifier(given), canonical) << given;
        EXPECT_EQ(CanonicalLanguageIdentifier(canonical), canonical) << "again, from " << given;
    }
}

TEST(CanonicalLanguageIdentifier, FixesLetterCaseAndHyphens) {
    ExpectCanonical({{"JA", "ja"},
                     {"En_gB", "en-GB"},
                     {"SR-lATN", "sr-Latn"},
                     {"ZH_HANT_hk", "zh-Hant-HK"},
                     {"EL-POLYTON", "el-polyton"},
                     {"es_419", "es-419"}});
}

TEST(CanonicalLanguageIdentifier, LeavesThePrincipalRegionOut) {
    ExpectCanonical({{"ja-JP", "ja"},
                     {"en-US", "en"},
                     {"pt-BR", "pt"},
                     {"de-DE", "de"},
                     {"fil-PH", "fil"},
                     {"fur-IT", "fur"},
                     {"sr-Latn-RS", "sr-Latn"},
                     {"mn-Mong-CN", "mn-Mong"}});
}

TEST(CanonicalLanguageIdentifier, KeepsAnyOtherRegion) {
    ExpectCanonical({{"en-GB", "en-GB"},
                     {"pt-PT", "pt-PT"},
                     {"de_CH", "de-CH"},
                     {"en-029", "en-029"},
                     {"sr-Latn-BA", "sr-Latn-BA"},
                     {"zh-Hans-TW", "zh-Hans-TW"},
                     {"tlh-US", "tlh-US"},
                     {"qaa-Qaaa-QM", "qaa-Qaaa-QM"}});
}

TEST(CanonicalLanguageIdentifier, TellsChineseApartByScript) {
    ExpectCanonical({{"zh", "zh-Hans"},
                     {"zh-CN", "zh-Hans"},
                     {"zh-SG", "zh-Hans-SG"},
                     {"zh-TW", "zh-Hant"},
                     {"zh_tw", "zh-Hant"},
                     {"zh-HK", "zh-Hant-HK"},
                     {"zh-MO", "zh-Hant-MO"},
                     {"zh-Hant-TW", "zh-Hant"},
                     {"zh-Hans-CN", "zh-Hans"},
                     {"zh-Bopo", "zh-Bopo"}});
}

TEST(CanonicalLanguageIdentifier, LeavesTheUsualScriptOut) {
    ExpectCanonical({{"ja-Jpan", "ja"},
                     {"sr-Cyrl", "sr"},
                     {"sr-Cyrl-BA", "sr-BA"},
                     {"az-Latn-AZ", "az"},
                     {"yue-Hant-HK", "yue"}});
}

TEST(CanonicalLanguageIdentifier, NamesTheScriptThatARegionBringsAbout) {
    ExpectCanonical({{"pa-PK", "pa-Arab"},
                     {"az-IQ", "az-Arab-IQ"},
                     {"sr-ME", "sr-Latn-ME"},
                     {"uz-AF", "uz-Arab"},
                     {"yue-CN", "yue-Hans"}});
}

TEST(CanonicalLanguageIdentifier, KeepsTheUsualScriptWhereTheRegionHasAnother) {
    ExpectCanonical({{"sr-Cyrl-ME", "sr-Cyrl-ME"}, {"az-Latn-IQ", "az-Latn-IQ"}});
}

TEST(CanonicalLanguageIdentifier, ReadsPosixLocales) {
    ExpectCanonical({{"ja_JP.UTF-8", "ja"},
                     {"de_AT.UTF-8@euro", "de-AT"},
                     {"de_DE@euro", "de"},
                     {"en_US_POSIX", "en"},
                     {"ca_ES.UTF-8@valencia", "ca"},
                     {"C", "en"},
                     {"POSIX", "en"},
                     {"C.UTF-8", "en"}});
}

TEST(CanonicalLanguageIdentifier, TakesTheScriptOfAPosixModifier) {
    ExpectCanonical({{"sr_RS@latin", "sr-Latn"},
                     {"sr_RS.UTF-8@latin", "sr-Latn"},
                     {"uz_UZ@cyrillic", "uz-Cyrl"},
                     {"sd_IN@devanagari", "sd-Deva"},
                     {"sr_Cyrl_RS@latin", "sr"}});
}

TEST(CanonicalLanguageIdentifier, ReplacesNamesOfLanguages) {
    ExpectCanonical({{"iw", "he"},
                     {"in", "id"},
                     {"ji", "yi"},
                     {"mo", "ro"},
                     {"tl", "fil"},
                     {"sh", "sr-Latn"},
                     {"jpn", "ja"},
                     {"ger", "de"},
                     {"deu", "de"},
                     {"cmn-TW", "zh-Hant"},
                     {"arb", "ar"},
                     {"prs", "fa-AF"},
                     {"iw_IL", "he"},
                     {"sh-BA", "sr-Latn-BA"},
                     {"swc", "sw-CD"},
                     {"cnr", "sr-Latn-ME"},
                     {"prs-IR", "fa"},
                     {"no", "no"},
                     {"nb_NO", "nb"}});
}

TEST(CanonicalLanguageIdentifier, ReplacesTagsThatWereRegisteredAsAWhole) {
    ExpectCanonical({{"i-klingon", "tlh"},
                     {"i-navajo", "nv"},
                     {"no-bok", "nb"},
                     {"no-nynorsk", "nn"},
                     {"art-lojban", "jbo"},
                     {"zh-min-nan", "nan"},
                     {"sgn-BR", "bzs"},
                     {"sgn-BE-FR", "sfb"},
                     {"hy-arevmda", "hyw"},
                     {"hy-AM-arevmda", "hyw-AM"}});
}

TEST(CanonicalLanguageIdentifier, TakesADialectForTheLanguageThatItIs) {
    ExpectCanonical({{"zh-yue", "yue"},
                     {"zh-yue-HK", "yue"},
                     {"zh-cmn-Hant", "zh-Hant"},
                     {"ar-arz", "arz"},
                     {"sgn-ase", "ase"}});
}

TEST(CanonicalLanguageIdentifier, ReplacesNamesOfRegionsScriptsAndVariants) {
    ExpectCanonical({{"en-UK", "en-GB"},
                     {"en-840", "en"},
                     {"en_USA", "en"},
                     {"my-BU", "my"},
                     {"de-DD", "de"},
                     {"en-Qaai", "en-Zinh"},
                     {"el-polytoni", "el-polyton"},
                     {"sgn-840", "ase"}});
}

TEST(CanonicalLanguageIdentifier, TakesThePartOfADividedRegionThatIsTheLanguages) {
    ExpectCanonical(
        {{"ru-SU", "ru"}, {"hy-SU", "hy"}, {"en-SU", "en-RU"}, {"sr-YU", "sr"}, {"cs-200", "cs"}});
}

TEST(CanonicalLanguageIdentifier, SortsVariantsAndDropsRepeatedOnes) {
    ExpectCanonical({{"sl-rozaj-biske-1994", "sl-1994-biske-rozaj"}, {"de-1996-1996", "de-1996"}});
}

TEST(CanonicalLanguageIdentifier, DropsExtensionsAndPrivateUse) {
    ExpectCanonical({{"de-AT-u-co-phonebk", "de-AT"},
                     {"ja-JP-u-ca-japanese", "ja"},
                     {"en-x-klingon", "en"},
                     {"en-a-bbb-x-a-ccc", "en"},
                     {"ja@calendar=japanese", "ja"}});
}

TEST(CanonicalLanguageIdentifier, ReadsNothingBehindAnIllFormedPart) {
    ExpectCanonical({{"de--AT", "de"},
                     {"de-?-AT", "de"},
                     {"de-AT-Latn", "de-AT"},
                     {"de-abcdefghi-AT", "de"},
                     {"de-", "de"},
                     {"de_AT ", "de"}});
}

TEST(CanonicalLanguageIdentifier, IsEmptyForWhatNamesNoLanguage) {
    for (const std::string_view given :
         {"", "-", "_", ".", "@", "d", "german", "und", "und-JP", "root", "x-foo", "i-nothing", "123",
          "-de", " de", "d1", "\xC3\xA4\xC3\xB6", "@latin"})
        EXPECT_EQ(CanonicalLanguageIdentifier(given), "") << given;
    EXPECT_EQ(CanonicalLanguageIdentifier(std::string_view("\0de", 3)), "");
    EXPECT_EQ(CanonicalLanguageIdentifier(std::string_view("de\0AT", 5)), "");
    EXPECT_EQ(CanonicalLanguageIdentifier(std::string_view()), "");
}

TEST(CanonicalLanguageIdentifier, IsEmptyForMoreThanTheLongest) {
    const std::string longest = "de_AT." + std::string(kMaximumLanguageIdentifier - 6, 'x');
    EXPECT_EQ(CanonicalLanguageIdentifier(longest), "de-AT");
    EXPECT_EQ(CanonicalLanguageIdentifier(longest + 'x'), "");
    EXPECT_EQ(CanonicalLanguageIdentifier(std::string(1 << 20, 'a')), "");
}

TEST(CanonicalLanguageIdentifier, IsNeverLongerThanWhatItReads) {
    // The alias adds a script and a region to a text that has no room for them.
    const std::string full = "cnr-variant1-variant2-variant3-variant4-variant5-variant6-12345";
    ASSERT_LE(full.size(), kMaximumLanguageIdentifier);
    const std::string canonical = CanonicalLanguageIdentifier(full);
    EXPECT_TRUE(canonical.starts_with("sr-Latn-ME-"));
    EXPECT_LE(canonical.size(), kMaximumLanguageIdentifier);
    EXPECT_EQ(CanonicalLanguageIdentifier(canonical), canonical);
}

TEST(CanonicalLanguageIdentifier, IsItsOwnForEveryLanguageScriptAndRegionOfTheTables) {
    const auto check = [](const std::string &given) {
        const std::string canonical = CanonicalLanguageIdentifier(given);
        ASSERT_NE(canonical, "") << given;
        ASSERT_EQ(CanonicalLanguageIdentifier(canonical), canonical) << given;
    };
    std::vector<std::string> regions = {"", "-US", "-001"};
    for (size_t i = 0; i < kSubtagAliasCount; i += 150)
        regions.push_back('-' + std::string(kSubtagAliases[i].from.View()));
    for (size_t i = 0; i < kLikelySubtagsCount; ++i) {
        const std::string language(kLikelySubtags[i].language.View());
        for (const std::string &region : regions) {
            check(language + region);
            check(language + "-Latn" + region);
            check(language + "-Cyrl" + region);
        }
    }
    for (const auto rows :
         {std::span(kLikelyScripts, kLikelyScriptCount), std::span(kLikelyRegions, kLikelyRegionCount)}) {
        for (const auto &row : rows) {
            const std::string language(row.language.View());
            const std::string script = '-' + std::string(kScripts[row.script].View());
            const std::string region = '-' + std::string(row.region.View());
            for (const std::string &more :
                 {script, region, script + region, "-Latn" + region, "-Cyrl" + region})
                check(language + more);
        }
    }
    for (size_t i = 0; i < kLanguageAliasCount; ++i) check(std::string(kLanguageAliases[i].from.View()));
}

TEST(CanonicalLanguageIdentifier, IsItsOwnForAnyBytes) {
    constexpr std::string_view kBytes = "adehjnpsxyz-__-ATJPUSLatn0149.@u\0\xFF";
    std::mt19937 random(20110);
    for (int i = 0; i < 50000; ++i) {
        std::string given(random() % 24, ' ');
        for (char &c : given) c = kBytes[random() % kBytes.size()];
        const std::string canonical = CanonicalLanguageIdentifier(given);
        ASSERT_EQ(CanonicalLanguageIdentifier(canonical), canonical) << ::testing::PrintToString(given);
    }
}

TEST(CanonicalLanguageIdentifier, IsWhatNameRecordsAreToldApartBy) {
    int known = 0;
    for (uint32_t number = 0; number <= 0xFFFF; ++number) {
        for (const std::string_view language : {LanguageOfWindowsNumber(static_cast<uint16_t>(number)),
                                                LanguageOfMacintoshNumber(static_cast<uint16_t>(number))}) {
            if (!language.data()) continue;
            ++known;
            EXPECT_EQ(CanonicalLanguageIdentifier(language), language) << number;
        }
    }
    EXPECT_GT(known, 300);
}

TEST(LanguageAndParents, ShortensFromTheEndToTheLanguage) {
    EXPECT_THAT(LanguageAndParents("de-AT"), ElementsAre("de-AT", "de"));
    EXPECT_THAT(LanguageAndParents("de"), ElementsAre("de"));
    EXPECT_THAT(LanguageAndParents("sl-1994-rozaj"), ElementsAre("sl-1994-rozaj", "sl-1994", "sl"));
}

TEST(LanguageAndParents, NeverLeavesAScriptOut) {
    EXPECT_THAT(LanguageAndParents("zh-Hant-HK"), ElementsAre("zh-Hant-HK", "zh-Hant"));
    EXPECT_THAT(LanguageAndParents("zh-Hant"), ElementsAre("zh-Hant"));
    EXPECT_THAT(LanguageAndParents("sr-Latn-ME"), ElementsAre("sr-Latn-ME", "sr-Latn"));
}

TEST(LanguageAndParents, AreCanonical) {
    EXPECT_THAT(LanguageAndParents("sr-Cyrl-ME"), ElementsAre("sr-Cyrl-ME", "sr"));
}

TEST(LanguageAndParents, OfNothingAreNone) {
    EXPECT_THAT(LanguageAndParents(""), IsEmpty());
}

} // namespace
} // namespace vellum::test
