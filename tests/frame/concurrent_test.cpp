// SPDX-License-Identifier: MIT
// Any thread may call any function at any time.
#include "support/installed_fonts.hpp"
#include "support/named_font.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vellum::test {
namespace {

TEST(ConcurrentExports, TheRegistersAreMadeOnceHoweverManyThreadsComeFirst) {
    const FontFolder system;
    ::setenv("VELLUM_IGNORE_SERVER", "1", 1); // the shared register is one of this process
    ::setenv("VELLUM_FONTS_ROOT", system.Path().c_str(), 1);
    system.Add("usr/share/fonts/system.ttf", NamedFace{"System"});
    OnEveryThread([](size_t) {
        for (int i = 0; i < 20; ++i) {
            const auto names = Adopt(VLCopyAvailableFontNames(kVLScopeAll));
            EXPECT_EQ(ValArrayGetCount(names.Get()), 1u);
        }
    });
}

TEST(ConcurrentExports, ThreadsThatChangeTheirOwnFontsDisturbNobodyElse) {
    const FontFolder folder;
    const auto keys = Keys({kVLFontPropertyName, kVLFontPropertyCharacterSet, kVLFontPropertyURL});
    OnEveryThread([&](size_t thread) {
        const std::string family = "Foo" + std::to_string(thread);
        const auto url = folder.Add(family + ".ttf", NamedFace{family});
        const auto data = AsData(MakeFont({family, "Data"}));
        for (int round = 0; round < 50; ++round) {
            EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
            EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
            const auto properties = Adopt(VLCopyPropertiesForFont(url.Get(), keys.Get(), kVLScopeProcess));
            EXPECT_EQ(TextOf(ValDictionaryGetValue(properties.Get(), kVLFontPropertyName)),
                      family + "-Regular");
            const auto all = Adopt(VLCopyPropertiesForAllFonts(keys.Get(), kVLScopeProcess));
            EXPECT_GE(ValArrayGetCount(all.Get()), 2u);
            VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
            EXPECT_EQ(VLGetScopeForFont(url.Get()) & kVLScopeProcess, 0u);
            VLEnableFonts(Array({url}).Get(), 0, kVLScopeProcess);
            EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess));
            EXPECT_TRUE(VLUnregisterFont(url.Get(), 0, kVLScopeProcess));
        }
    });
    EXPECT_FALSE(VLCopyAvailableFontURLs(kVLScopeProcess));
}

TEST(ConcurrentExports, OneProcessTakesAllInstalledFontsInAndOutAgain) {
    const auto urls = InstalledFonts();
    ASSERT_GT(urls.size(), 500u);
    const auto array = Array(urls);
    const ValArray *errors = nullptr;
    EXPECT_TRUE(VLRegisterFonts(array.Get(), 0, kVLScopeProcess, &errors))
        << ::testing::PrintToString(Texts(Adopt(errors)));

    const auto keys =
        Keys({kVLFontPropertyURL, kVLFontPropertyName, kVLFontPropertyFamilyName, kVLFontPropertyFullName,
              kVLFontPropertySubfamilyName, kVLFontPropertyVariations});
    OnEveryThread([&](size_t thread) {
        EXPECT_TRUE(Adopt(VLCopyAvailableFamilyNames(kVLScopeProcess)));
        EXPECT_TRUE(Adopt(VLCopyAvailableFontNames(kVLScopeProcess)));
        for (size_t i = thread; i < urls.size(); i += kThreads)
            EXPECT_TRUE(Adopt(VLCopyPropertiesForFont(urls[i].Get(), keys.Get(), kVLScopeProcess)));
    });
    EXPECT_TRUE(VLUnregisterFonts(array.Get(), 0, kVLScopeProcess, nullptr));
    EXPECT_FALSE(VLCopyAvailableFontURLs(kVLScopeProcess));
}

} // namespace
} // namespace vellum::test
