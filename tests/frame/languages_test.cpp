// SPDX-License-Identifier: MIT
// The languages whose characters are known, and those characters.
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

TEST(ExemplarExports, KnowsTheCharactersOfEachOfTheLanguagesThatItLists) {
    const auto list = Adopt(VLCopyExemplarLanguages());
    const auto languages = Texts(list);
    EXPECT_TRUE(std::ranges::is_sorted(languages));
    EXPECT_EQ(std::ranges::adjacent_find(languages), languages.end());
    EXPECT_THAT(languages, ::testing::IsSupersetOf({"de", "el", "en", "ja", "zh-Hans", "zh-Hant"}));
    for (const std::string &language : languages)
        EXPECT_GT(ValCharacterSetGetCount(Adopt(VLCopyExemplarCharacterSet(String(language).Get())).Get()),
                  0u)
            << language;
}

TEST(ExemplarExports, KnowsALanguageByAnySpelling) {
    const auto characters = [](std::string_view language) {
        return Adopt(VLCopyExemplarCharacterSet(String(language).Get()));
    };
    const auto german = characters("de");
    for (const uint32_t character : {0xE4u, 0xF6u, 0xFCu, 0xDFu, uint32_t{'a'}, uint32_t{'z'}})
        EXPECT_TRUE(ValCharacterSetContains(german.Get(), character)) << character;
    EXPECT_FALSE(ValCharacterSetContains(german.Get(), 0x3B1));
    EXPECT_TRUE(ValEqual(characters("de_DE.UTF-8").Get(), german.Get()));
    EXPECT_TRUE(ValEqual(characters("DE").Get(), german.Get()));
    EXPECT_TRUE(ValEqual(characters("ja_JP.UTF-8").Get(), characters("ja").Get()));
    EXPECT_TRUE(ValEqual(characters("zh_TW").Get(), characters("zh-Hant").Get()));
    EXPECT_FALSE(ValEqual(characters("zh-Hant").Get(), characters("zh-Hans").Get()));
}

TEST(ExemplarExports, KnowsNoOtherLanguages) {
    EXPECT_FALSE(VLCopyExemplarCharacterSet(nullptr));
    for (const char *language : {"", "xx", "qaa", "no language", "-", "12"})
        EXPECT_FALSE(VLCopyExemplarCharacterSet(String(language).Get())) << language;
}

} // namespace
} // namespace vellum::test
