// SPDX-License-Identifier: MIT
#include "describe/locale_manager.hpp"
#include "platform/locale/exemplars.hpp"
#include "platform/locale/locale_names.hpp"
#include "support/allocations.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"
#include "values/string_uniquer.hpp"
#include "values/val_set.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <set>

namespace vellum::test {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;

using TTexts = std::vector<std::string>;

Ref<const ValCharacterSet> Range(uint32_t first, uint32_t last) {
    return Adopt(ValCharacterSetCreateWithRange(first, last));
}

Ref<const ValCharacterSet> Ascii() {
    return Range(0x20, 0x7E);
}

Ref<const ValCharacterSet> Everything() {
    return Range(0, 0x10FFFF);
}

Ref<const ValCharacterSet> ExemplarsOf(std::string_view language) {
    return TLocaleManager().CopyExamplarSetForLanguage(String(language).Get());
}

TTexts LanguagesOf(const ValCharacterSet *set) {
    return Texts(TLocaleManager().CopyLanguagesFromCharacterSet(set, nullptr, nullptr));
}

// The canonical identifiers of the supported languages, each once, by a walk that has nothing in common
// with the manager's but the tables.
template <class Predicate>
TTexts SupportedThat(Predicate predicate) {
    TTexts languages;
    for (size_t i = 0; i < CountSupportedLanguages(); ++i) {
        const std::string canonical = CanonicalLanguageIdentifier(SupportedLanguageAt(i));
        if (std::ranges::count(languages, canonical) == 0 && predicate(CreateExemplarSet(canonical)))
            languages.push_back(canonical);
    }
    return languages;
}

// Whether a set ends within ASCII, by its ranges.
bool IsWithinAscii(const Ref<const ValCharacterSet> &set) {
    uint32_t first = UINT32_MAX;
    uint32_t last = UINT32_MAX;
    while (ValCharacterSetNextRange(set.Get(), &first, &last)) {
        if (last > 0x7E) return false;
    }
    return true;
}

TEST(LocaleManager, KnowsTheLanguagesOfTheLocaleService) {
    TLocaleManager manager;
    const TTexts languages = Texts(Retain(manager.GetSupportedLanguages()));
    ASSERT_EQ(languages.size(), CountSupportedLanguages());
    for (size_t i = 0; i < languages.size(); ++i) EXPECT_EQ(languages[i], SupportedLanguageAt(i));
    EXPECT_TRUE(std::ranges::is_sorted(languages));
}

TEST(LocaleManager, BuildsTheSupportedLanguagesOnce) {
    const ValArray *first = TLocaleManager().GetSupportedLanguages();
    EXPECT_EQ(TLocaleManager().GetSupportedLanguages(), first);
}

TEST(LocaleManager, AFaceWithAsciiAloneHasTheLanguagesThatAreWrittenInAscii) {
    const TTexts languages = LanguagesOf(Ascii().Get());
    EXPECT_EQ(languages, SupportedThat(IsWithinAscii));
    EXPECT_THAT(languages, IsSupersetOf({"en", "id", "ms", "so", "sw", "xh", "zu"}));
    EXPECT_THAT(languages,
                AllOf(Not(Contains("de")), Not(Contains("fr")), Not(Contains("nl")), Not(Contains("ja"))));
}

TEST(LocaleManager, OneMissingCharacterIsEnoughNotToCoverALanguage) {
    const auto exemplars = ExemplarsOf("de");
    EXPECT_THAT(LanguagesOf(exemplars.Get()), Contains("de"));
    uint32_t first = UINT32_MAX;
    uint32_t last = UINT32_MAX;
    while (ValCharacterSetNextRange(exemplars.Get(), &first, &last)) {
        for (uint32_t character = first; character <= last; ++character) {
            auto less = Adopt(ValCharacterSetCreateMutableCopy(exemplars.Get()));
            ValCharacterSetRemoveRange(less.Get(), character, character);
            EXPECT_THAT(LanguagesOf(less.Get()), Not(Contains("de"))) << character;
        }
    }
}

TEST(LocaleManager, AFaceWithEverythingHasAllLanguagesInTheirOrder) {
    const TTexts languages = LanguagesOf(Everything().Get());
    EXPECT_EQ(languages, SupportedThat([](const auto &) { return true; }));
    EXPECT_TRUE(std::ranges::is_sorted(languages));
}

TEST(LocaleManager, AFaceWithNothingHasNoLanguages) {
    const auto empty = Adopt(ValCharacterSetCreateMutable());
    EXPECT_THAT(LanguagesOf(empty.Get()), IsEmpty());
    EXPECT_THAT(LanguagesOf(nullptr), IsEmpty());
    EXPECT_TRUE(TLocaleManager().CopyLanguagesFromCharacterSet(nullptr, nullptr, nullptr))
        << "but an array";
}

TEST(LocaleManager, LanguagesAreCanonicalAndEachFoundOnce) {
    const TTexts languages = LanguagesOf(Everything().Get());
    EXPECT_EQ(std::ranges::count(languages, "zh-Hans"), 1);
    EXPECT_EQ(std::ranges::count(languages, "zh-Hant"), 1);
    EXPECT_EQ(std::ranges::count(languages, "zh"), 0);
    EXPECT_EQ(std::set<std::string>(languages.begin(), languages.end()).size(), languages.size());
}

TEST(LocaleManager, TheGivenLanguagesStandFirstAsTheyAre) {
    const std::array<Ref<const ValString>, 3> given = {String("tlh"), String("en"), String("tlh")};
    const std::array<const void *, 3> items = {given[0].Get(), given[1].Get(), given[2].Get()};
    const auto languages = Adopt(ValArrayCreate(items.data(), items.size()));
    TTexts expected = {"tlh", "en", "tlh"};
    for (const std::string &found : LanguagesOf(Ascii().Get())) expected.push_back(found);
    const auto result =
        TLocaleManager().CopyLanguagesFromCharacterSet(Ascii().Get(), languages.Get(), nullptr);
    EXPECT_EQ(Texts(result), expected);
    EXPECT_EQ(ValArrayGetCount(languages.Get()), 3u) << "what was given is left alone";
}

TEST(LocaleManager, FoundLanguagesAreAddedToTheSetAndGivenOnesAreNot) {
    const auto tlh = String("tlh");
    const auto bo = String("bo");
    const void *const items[] = {tlh.Get()};
    const auto given = Adopt(ValArrayCreate(items, 1));
    TValMutableSet set;
    set.Add(bo.Get());
    const auto result =
        TLocaleManager().CopyLanguagesFromCharacterSet(Ascii().Get(), given.Get(), set.Get());
    EXPECT_EQ(set.Count(), ValArrayGetCount(result.Get()) - 1 + 1);
    EXPECT_TRUE(set.Contains(bo.Get()));
    EXPECT_TRUE(set.Contains(String("en").Get()));
    EXPECT_FALSE(set.Contains(tlh.Get()));
}

TEST(LocaleManager, LanguagesAreInterned) {
    const auto result = TLocaleManager().CopyLanguagesFromCharacterSet(Ascii().Get(), nullptr, nullptr);
    for (size_t i = 0; i < ValArrayGetCount(result.Get()); ++i) {
        const auto *language = static_cast<const ValString *>(ValArrayGetValue(result.Get(), i));
        EXPECT_EQ(TValStringUniquer().GetUniqueString(language).Get(), language);
    }
}

TEST(LocaleManager, ExemplarsAreThoseOfTheLanguageByAnyOfItsNames) {
    const auto hebrew = ExemplarsOf("he");
    ASSERT_TRUE(hebrew);
    EXPECT_TRUE(ValEqual(hebrew.Get(), CreateExemplarSet("he").Get()));
    for (const char *name : {"iw", "he-IL", "HE", "heb", "he_IL.UTF-8"})
        EXPECT_EQ(ExemplarsOf(name).Get(), hebrew.Get()) << name;
    EXPECT_FALSE(ValEqual(ExemplarsOf("zh-TW").Get(), ExemplarsOf("zh-CN").Get()));
}

TEST(LocaleManager, ExemplarsAreFetchedOnce) {
    TLocaleManagerImp manager;
    const auto first = manager.CopyExamplarSetForLanguage(String("ru").Get());
    ASSERT_TRUE(first);
    EXPECT_EQ(manager.CopyExamplarSetForLanguage(String("ru").Get()).Get(), first.Get());
    EXPECT_EQ(manager.CopyCachedExamplarSet(String("ru").Get()).Get(), first.Get());
}

TEST(LocaleManager, OnlyWhatWasFetchedIsCached) {
    TLocaleManagerImp manager;
    EXPECT_FALSE(manager.CopyCachedExamplarSet(String("ru").Get()));
    EXPECT_FALSE(manager.CopyCachedExamplarSet(nullptr));
    manager.CopyExamplarSetForLanguage(String("ru").Get());
    EXPECT_TRUE(manager.CopyCachedExamplarSet(String("rus").Get()));
    EXPECT_FALSE(manager.CopyCachedExamplarSet(String("de").Get()));
    manager.CopyLanguagesFromCharacterSet(nullptr, nullptr, nullptr);
    EXPECT_TRUE(manager.CopyCachedExamplarSet(String("de").Get()));
    EXPECT_FALSE(manager.CopyCachedExamplarSet(String("tlh").Get()));
}

TEST(LocaleManager, UnknownLanguagesHaveNoExemplarsHoweverOftenAsked) {
    for (int i = 0; i < 3; ++i) {
        for (const char *language : {"tlh", "de-Cyrl", "und", "no language", ""})
            EXPECT_FALSE(ExemplarsOf(language)) << language;
        EXPECT_FALSE(TLocaleManager().CopyExamplarSetForLanguage(nullptr));
    }
}

// More identifiers than are remembered, of all of which some have exemplars.
TEST(LocaleManager, AnswersTheSameForMoreLanguagesThanItRemembers) {
    TLocaleManagerImp manager;
    for (int i = 10000; i < 15000; ++i) {
        const std::string variant = '-' + std::to_string(i);
        ASSERT_TRUE(manager.CopyExamplarSetForLanguage(String("de" + variant).Get())) << i;
        ASSERT_FALSE(manager.CopyExamplarSetForLanguage(String("tlh" + variant).Get())) << i;
    }
    EXPECT_TRUE(manager.CopyCachedExamplarSet(String("de-10000").Get()));
    EXPECT_FALSE(manager.CopyCachedExamplarSet(String("de-14999").Get()));
    EXPECT_EQ(Texts(manager.CopyLanguagesFromCharacterSet(Ascii().Get(), nullptr, nullptr)),
              LanguagesOf(Ascii().Get()));
}

TEST(LocaleManager, AHandleLetsGoWhenItDies) {
    for (int i = 0; i < 3; ++i) {
        TLocaleManager manager;
        EXPECT_TRUE(manager.GetSupportedLanguages());
    }
}

TEST(ConcurrentLocaleManager, ThreadsThatBeginTogetherSeeOneManager) {
    std::array<const ValArray *, kThreads> supported = {};
    std::array<TTexts, kThreads> languages;
    OnEveryThread([&](size_t i) {
        supported[i] = TLocaleManager().GetSupportedLanguages();
        languages[i] = LanguagesOf(i % 2 ? Ascii().Get() : Everything().Get());
    });
    for (size_t i = 0; i < kThreads; ++i) {
        EXPECT_EQ(supported[i], supported[0]);
        EXPECT_EQ(languages[i], languages[i % 2]);
    }
}

TEST(ConcurrentLocaleManager, ThreadsFillTheCachesTogether) {
    constexpr std::array<const char *, 6> kLanguages = {"de", "tlh", "zh-TW", "en-GB", "und", "iw"};
    std::array<std::array<Ref<const ValCharacterSet>, kLanguages.size()>, kThreads> seen;
    OnEveryThread([&](size_t i) {
        for (size_t round = 0; round < 50; ++round) {
            const size_t at = (i + round) % kLanguages.size();
            seen[i][at] = ExemplarsOf(kLanguages[at]);
            TLocaleManager().CopyCachedExamplarSet(String(kLanguages[at]).Get());
        }
    });
    for (const auto &sets : seen) {
        for (size_t at = 0; at < kLanguages.size(); ++at) EXPECT_EQ(sets[at].Get(), seen[0][at].Get());
    }
    EXPECT_TRUE(seen[0][0]);
    EXPECT_FALSE(seen[0][1]);
}

class LocaleManagerWithoutMemory : public ExhaustedMemoryTest {
protected:
    // Calls ask(manager), which says whether the answer was right or throws, for a new manager each time
    // and with one allocation failing, from the first to the last. What fails must be told by an
    // exception, and must leave a manager that gives the right answer next. Returns how many allocations
    // there are.
    template <class Ask>
    static int FailEachOnce(Ask ask) {
        for (int n = 0;; ++n) {
            std::optional<TLocaleManagerImp> manager;
            bool is_right = true;
            const bool failed = FailAfter(n, [&] {
                manager.emplace();
                try {
                    is_right = ask(*manager);
                } catch (const std::bad_alloc &) {
                }
            });
            EXPECT_TRUE(is_right) << "allocation " << n;
            EXPECT_TRUE(ask(*manager)) << "after allocation " << n;
            if (!failed) return n;
        }
    }
};

TEST_F(LocaleManagerWithoutMemory, SaysSoAndFindsTheLanguagesNextTime) {
    const auto set = Ascii();
    const TTexts expected = LanguagesOf(set.Get());
    const auto ask = [&](TLocaleManagerImp &manager) {
        return ValArrayGetCount(manager.CopyLanguagesFromCharacterSet(set.Get(), nullptr, nullptr).Get()) ==
               expected.size();
    };
    EXPECT_GT(FailEachOnce(ask), 200);
}

TEST_F(LocaleManagerWithoutMemory, SaysSoAndHasTheSupportedLanguagesNextTime) {
    const auto ask = [](TLocaleManagerImp &manager) {
        return ValArrayGetCount(manager.GetSupportedLanguages()) == CountSupportedLanguages();
    };
    EXPECT_GT(FailEachOnce(ask), 0);
}

// Null says too that there is nothing to remember it in.
TEST_F(LocaleManagerWithoutMemory, SaysSoOrHasNoExemplarsAndHasThemNextTime) {
    const auto german = String("de");
    for (int n = 0;; ++n) {
        std::optional<TLocaleManagerImp> manager;
        const bool failed = FailAfter(n, [&] {
            manager.emplace();
            try {
                manager->CopyExamplarSetForLanguage(german.Get());
            } catch (const std::bad_alloc &) {
            }
        });
        EXPECT_TRUE(manager->CopyExamplarSetForLanguage(german.Get())) << "after allocation " << n;
        if (!failed) break;
    }
}

} // namespace
} // namespace vellum::test
