// SPDX-License-Identifier: MIT
// The exported functions: what they check, which register they ask, what they answer.
//
// The registers are singletons of the process: each test runs in a process of its own.
#include "frame/exports/changes.hpp"
#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "frame/registry/scope.hpp"
#include "ipc/notify/framework_callback.hpp"
#include "platform/late/freetype.hpp"
#include "platform/late/harfbuzz.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A font for the process's register and a font tree of one font for the shared one.
class Exports : public ::testing::Test {
protected:
    Exports() {
        ::setenv("VELLUM_IGNORE_SERVER", "1", 1); // the shared register is one of this process
        ::setenv("VELLUM_FONTS_ROOT", system.Path().c_str(), 1);
        system.Add("usr/share/fonts/system.ttf", NamedFace{"System"});
    }

    Ref<const ValURL> SystemURL() const { return FileURL(system.Path() + "//usr/share/fonts/system.ttf"); }
    static std::string NameOf(const Ref<const ValURL> &url, VLScope scope) {
        const auto properties =
            Adopt(VLCopyPropertiesForFont(url.Get(), Keys({kVLFontPropertyName}).Get(), scope));
        return TextOf(ValDictionaryGetValue(properties.Get(), kVLFontPropertyName));
    }
    static std::vector<std::string> FontNames(VLScope scope) {
        return Texts(Adopt(VLCopyAvailableFontNames(scope)));
    }

    FontFolder folder, system;
    Ref<const ValURL> url = folder.Add("foo.ttf", NamedFace{"Foo"});
};

// ---- which register ----

TEST_F(Exports, AskingNoRegisterMakesNone) {
    EXPECT_EQ(NameOf(url, 0), "(null)");
    EXPECT_FALSE(VLCopyAvailableFontURLs(0));
    EXPECT_FALSE(TLocalGlyphary::IsCreated());
    EXPECT_FALSE(TGlobalGlyphary::IsCreated());
}

TEST_F(Exports, BadArgumentsMakeNoRegister) {
    EXPECT_FALSE(VLCopyPropertiesForFont(nullptr, Keys({}).Get(), kVLScopeAll));
    EXPECT_FALSE(VLCopyPropertiesForFont(url.Get(), nullptr, kVLScopeAll));
    EXPECT_FALSE(VLRegisterFonts(nullptr, 0, kVLScopeAll, nullptr));
    EXPECT_FALSE(VLRegisterDataFont(nullptr, 0, 0, kVLScopeProcess));
    EXPECT_EQ(VLGetScopeForFont(nullptr), 0u);
    EXPECT_FALSE(TLocalGlyphary::IsCreated());
    EXPECT_FALSE(TGlobalGlyphary::IsCreated());
}

TEST_F(Exports, ARegisterOfTheProcessOpensTheLibrariesThatReadFontsBeforeItReadsAny) {
    EXPECT_EQ(NameOf(url, 0), "(null)");
    EXPECT_FALSE(sHarfBuzz.IsOpen() || sFreeType.IsOpen());
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_TRUE(sHarfBuzz.IsOpen() && sFreeType.IsOpen());
}

TEST_F(Exports, EachSharedBitAsksTheSharedRegisterAlone) {
    EXPECT_EQ(NameOf(SystemURL(), kVLScopeSession), "System-Regular");
    EXPECT_EQ(NameOf(SystemURL(), kVLScopeUser), "System-Regular");
    EXPECT_FALSE(TLocalGlyphary::IsCreated());
}

TEST_F(Exports, TheProcessBitAsksTheProcessRegisterAlone) {
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_EQ(NameOf(url, kVLScopeProcess), "Foo-Regular");
    EXPECT_EQ(NameOf(SystemURL(), kVLScopeProcess), "(null)");
    EXPECT_FALSE(TGlobalGlyphary::IsCreated());
}

TEST_F(Exports, TheSharedRegisterIsAskedWhenTheProcessHasNothing) {
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_EQ(NameOf(url, kVLScopeAll), "Foo-Regular");
    EXPECT_FALSE(TGlobalGlyphary::IsCreated());
    EXPECT_EQ(NameOf(SystemURL(), kVLScopeAll), "System-Regular");
}

TEST_F(Exports, TheScopeOfAFontIsWhatBothRegistersAnswer) {
    EXPECT_EQ(VLGetScopeForFont(url.Get()), 0u);
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    EXPECT_EQ(VLGetScopeForFont(url.Get()), kVLScopeProcess);
    // The shared register is one in this process here.
    EXPECT_EQ(VLGetScopeForFont(SystemURL().Get()), kVLScopeProcess);
}

TEST_F(Exports, OnlyExactlyOneOrYesKeepsAwayFromTheServer) {
    struct Row {
        const char *value;
        bool ignored;
    };
    for (const Row &row :
         {Row{"1", true}, Row{"YES", true}, Row{"yes", false}, Row{"Yes", false}, Row{"", false},
          Row{"0", false}, Row{"11", false}, Row{"true", false}, Row{" 1", false}}) {
        ::setenv("VELLUM_IGNORE_SERVER", row.value, 1);
        EXPECT_EQ(TGlobalGlyphary::IsServerIgnored(), row.ignored) << row.value;
    }
    ::unsetenv("VELLUM_IGNORE_SERVER");
    EXPECT_FALSE(TGlobalGlyphary::IsServerIgnored());
}

// ---- changes ----

TEST_F(Exports, RegisteringGoesToExactlyOneRegister) {
    // The shared register, being one in this process, takes the process scope alone.
    const ValArray *errors = nullptr;
    EXPECT_FALSE(VLRegisterFonts(Array({url}).Get(), 0, kVLScopeProcess | kVLScopeUser, &errors));
    EXPECT_FALSE(errors);
    EXPECT_FALSE(TLocalGlyphary().IsFontRegistered(url.Get()));
    EXPECT_TRUE(TGlobalGlyphary::IsCreated());
}

TEST_F(Exports, TheTableHasTheTwelveFunctionsInTheirOrder) {
    const auto *slots = reinterpret_cast<void (*const *)()>(VLGetFunctions());
    const auto at = [&](size_t slot) { return reinterpret_cast<uintptr_t>(slots[slot]); };
    static_assert(sizeof(VLFunctions) == 12 * sizeof(void (*)()));
    EXPECT_EQ(at(0), reinterpret_cast<uintptr_t>(&VLRegisterFont));
    EXPECT_EQ(at(1), reinterpret_cast<uintptr_t>(&VLUnregisterFont));
    EXPECT_EQ(at(2), reinterpret_cast<uintptr_t>(&VLRegisterDataFont));
    EXPECT_EQ(at(3), reinterpret_cast<uintptr_t>(&VLUnregisterDataFont));
    EXPECT_EQ(at(4), reinterpret_cast<uintptr_t>(&VLRegisterFonts));
    EXPECT_EQ(at(5), reinterpret_cast<uintptr_t>(&VLUnregisterFonts));
    EXPECT_EQ(at(6), reinterpret_cast<uintptr_t>(&VLEnableFont));
    EXPECT_EQ(at(7), reinterpret_cast<uintptr_t>(&VLDisableFont));
    EXPECT_EQ(at(8), reinterpret_cast<uintptr_t>(&VLRegisterFontDirectory));
    EXPECT_EQ(at(9), reinterpret_cast<uintptr_t>(&VLUnregisterFontDirectory));
    EXPECT_EQ(at(10), reinterpret_cast<uintptr_t>(&VLGetDirectoryFlags));
    EXPECT_EQ(at(11), reinterpret_cast<uintptr_t>(&VLGetFontFlagsForDirFlags));
}

// ---- fonts in memory ----

TEST_F(Exports, FontsInMemoryNeedTheProcessScope) {
    const auto data = AsData(MakeFont({"Data"}));
    EXPECT_FALSE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeUser | kVLScopeSession));
    EXPECT_FALSE(TLocalGlyphary::IsCreated());
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeAll));
    EXPECT_FALSE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto memory = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    EXPECT_EQ(NameOf(memory, kVLScopeProcess), "Data-Regular");
    EXPECT_EQ(VLGetDataFontFountFont(memory.Get()), 0u);
    EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, 0));
    EXPECT_FALSE(VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess));
    EXPECT_FALSE(VLCopyFontURLForDataFont(data.Get(), 0));
}

TEST_F(Exports, WhatADataFontsRegisterHearsOfTheScope) {
    EXPECT_EQ(kScopeDataFonts, 0x80000001u);
}

// ---- listings ----

TEST_F(Exports, ListingsHoldBothRegistersSortedAndEachItemOnce) {
    ASSERT_TRUE(VLRegisterFont(folder.Add("a.ttf", NamedFace{"alpha"}).Get(), 0, kVLScopeProcess));
    ASSERT_TRUE(VLRegisterFont(folder.Add("z.ttf", NamedFace{"Zeta"}).Get(), 0, kVLScopeProcess));
    ASSERT_TRUE(VLRegisterFont(folder.Add("s.ttf", NamedFace{"System"}).Get(), 0, kVLScopeProcess));
    ASSERT_TRUE(VLRegisterFont(folder.Add("l.ttf", NamedFace{"Linotype A"}).Get(), 0, kVLScopeProcess));
    EXPECT_THAT(FontNames(kVLScopeAll),
                ElementsAre("Linotype A-Regular", "System-Regular", "Zeta-Regular", "alpha-Regular"));
    EXPECT_THAT(Texts(Adopt(VLCopyAvailableFamilyNames(kVLScopeAll))),
                ElementsAre("alpha", "System", "Zeta", "Linotype A"));
    EXPECT_EQ(Texts(Adopt(VLCopyAvailableFontURLs(kVLScopeAll))).size(), 5u);
    EXPECT_THAT(FontNames(kVLScopeUser), ElementsAre("System-Regular"));
}

TEST_F(Exports, PropertiesOfAllFontsAreTheProcesssThenTheShared) {
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    const auto keys = Keys({kVLFontPropertyName});
    const auto all = Adopt(VLCopyPropertiesForAllFonts(keys.Get(), kVLScopeAll));
    ASSERT_EQ(ValArrayGetCount(all.Get()), 2u);
    const auto name = [&](size_t i) {
        const auto *properties = static_cast<const ValDictionary *>(ValArrayGetValue(all.Get(), i));
        return TextOf(ValDictionaryGetValue(properties, kVLFontPropertyName));
    };
    EXPECT_EQ(name(0), "Foo-Regular");
    EXPECT_EQ(name(1), "System-Regular");
}

TEST_F(Exports, BatchCopiesTakeEachFontFromTheRegisterThatHasIt) {
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    const auto urls = Array({SystemURL(), url, folder.URLOf("none.ttf")});
    const auto keys = Keys({kVLFontPropertyName});
    EXPECT_EQ(
        ValDictionaryGetCount(Adopt(VLCopyPropertiesForFonts(urls.Get(), keys.Get(), kVLScopeAll)).Get()),
        2u);
    const auto names = Adopt(VLCopyPropertyForFonts(urls.Get(), kVLFontPropertyName, kVLScopeAll));
    EXPECT_EQ(TextOf(ValDictionaryGetValue(names.Get(), SystemURL().Get())), "System-Regular");
    EXPECT_EQ(TextOf(ValDictionaryGetValue(names.Get(), url.Get())), "Foo-Regular");
    EXPECT_FALSE(VLCopyPropertyForFonts(urls.Get(), kVLFontPropertyName, 0));
}

// ---- utilities ----

TEST_F(Exports, FontFlagsInheritFourBitsOfADirectorysFlags) {
    EXPECT_EQ(VLGetFontFlagsForDirFlags(0xFFFFFFFF), 0x603u);
    EXPECT_EQ(VLGetFontFlagsForDirFlags(0x600), 0x600u);
    EXPECT_EQ(VLGetFontFlagsForDirFlags(0x1FC), 0u);
}

TEST_F(Exports, DirectoryFlagsSayLocalAndRoot) {
    EXPECT_EQ(VLGetDirectoryFlags(FileURL("/").Get()), 0x600u);
    EXPECT_EQ(VLGetDirectoryFlags(FileURL("/proc").Get()), 0x200u);
    EXPECT_EQ(VLGetDirectoryFlags(FileURL("/no/such/path").Get()), 0u);
    EXPECT_EQ(VLGetDirectoryFlags(MakeURL("http://example.org/").Get()), 0u);
    EXPECT_EQ(VLGetDirectoryFlags(nullptr), 0u);
}

TEST_F(Exports, ThirtyThreeFontNamesAreCommon) {
    size_t count = 0;
    const ValString *const *names = VLGetCommonFontNames(&count);
    ASSERT_EQ(count, 33u);
    std::vector<const ValString *> distinct(names, names + count);
    for (const ValString *name : distinct) EXPECT_GT(ValStringGetUTF16Length(name), 0u);
    EXPECT_EQ(ValSetGetCount(Keys(distinct).Get()), 33u);
    EXPECT_EQ(VLGetCommonFontNames(nullptr), names);
}

TEST_F(Exports, TheFrameworksCallbackIsInstalledOnceAndForOptionsZeroAlone) {
    const VLFontsChangedCallback first = [](void *, void *, const ValString *, const void *,
                                            const ValDictionary *) {};
    const VLFontsChangedCallback second = [](void *, void *, const ValString *, const void *,
                                             const ValDictionary *) { std::abort(); };
    VLSetFrameworkFontChangedCallback(1, first);
    EXPECT_EQ(FrameworkNotificationCallback(), nullptr);
    VLSetFrameworkFontChangedCallback(0, first);
    EXPECT_EQ(FrameworkNotificationCallback(), first);
    VLSetFrameworkFontChangedCallback(0, second);
    EXPECT_EQ(FrameworkNotificationCallback(), first);
}

TEST_F(Exports, SettingAndRemovingPropertiesDoNothing) {
    ASSERT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    VLSetPropertiesForFonts(Array({url}).Get(), nullptr, kVLScopeAll);
    VLRemovePropertiesForFonts(Array({url}).Get(), Keys({kVLFontPropertyName}).Get(), kVLScopeAll);
    EXPECT_EQ(NameOf(url, kVLScopeProcess), "Foo-Regular");
}

TEST_F(Exports, AFileIsLookedIntoWithoutARegister) {
    EXPECT_EQ(TextOf(Adopt(VLCopyTypeIdentifier(url.Get()))), "public.truetype-ttf-font");
    const auto tags = Texts(Adopt(VLCopyTableTagsForFont(url.Get())));
    EXPECT_THAT(tags, ::testing::Contains("head"));
    EXPECT_FALSE(VLCopyTableTagsForFont(folder.URLOf("none.ttf").Get()));
    EXPECT_FALSE(TLocalGlyphary::IsCreated());
}

} // namespace
} // namespace vellum::test
