// SPDX-License-Identifier: MIT
// Registration of font files: the table, the references, what is refused.
#include "describe/client_font_entity.hpp"
#include "frame/registry/generation_seed.hpp"
#include "platform/font/type_identifier.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/named_font.hpp"
#include "support/resource_fork.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

uint32_t ReferenceOf(uint32_t index) {
    return 0x80000000u | index << 16 | (static_cast<uint32_t>(::getpid()) & 0xFFFF);
}

class Register : public ::testing::Test {
protected:
    bool RegisterFile(const Ref<const ValURL> &url, VLFontFlags flags = 0) {
        return registry.RegisterFont(url.Get(), nullptr, flags, kVLScopeProcess);
    }
    bool RegisterFiles(const std::vector<Ref<const ValURL>> &urls, VLScope scope = kVLScopeProcess) {
        return registry.RegisterFonts(Array(urls).Get(), nullptr, 0, scope, &errors);
    }
    std::vector<FontReference> ReferencesOf(const Ref<const ValURL> &url) {
        return References(registry.GetIndex(kPathIndex)->CopyFontsForKey(url.Get()));
    }
    std::string PostScriptName(FontReference reference) {
        const TClientFontEntity entity(Retain(registry.GetPossiblyDisabledFont(reference)));
        return TextOf(entity.CopyPostScriptName(false));
    }

    FontFolder folder;
    TLocalGlypharyImp registry;
    Ref<const ValArray> errors;
};

TEST_F(Register, StartsEmpty) {
    EXPECT_EQ(registry.GetChangeCount(), 0u);
    EXPECT_FALSE(registry.CopyPropertiesForAllFonts(Keys({kVLFontPropertyName}).Get(), kVLScopeProcess));
}

TEST_F(Register, TheFirstFaceOfAProcessHasIndexZero) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    ASSERT_TRUE(RegisterFile(url));
    EXPECT_EQ(registry.GetFontReference(url.Get()), ReferenceOf(0));
    EXPECT_EQ(PostScriptName(ReferenceOf(0)), "Foo-Regular");
}

TEST_F(Register, TheFacesOfAFileGetConsecutiveIndexesInTheParsersOrderAndCountAsOneChange) {
    const auto url = folder.Add("abc.ttc", MakeCollection({{"A"}, {"B"}, {"C"}}));
    ASSERT_TRUE(RegisterFile(url));
    EXPECT_THAT(ReferencesOf(url), ElementsAre(ReferenceOf(0), ReferenceOf(1), ReferenceOf(2)));
    EXPECT_EQ(PostScriptName(ReferenceOf(0)), "A-Regular");
    EXPECT_EQ(PostScriptName(ReferenceOf(1)), "B-Regular");
    EXPECT_EQ(PostScriptName(ReferenceOf(2)), "C-Regular");
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Register, NamedInstancesAreFacesOfTheirOwnBehindTheFilesFaces) {
    const auto url = folder.Add("v.ttf", MakeVariableFont({"V"}, {300, 400, 700}));
    ASSERT_TRUE(RegisterFile(url));
    // 400 is the default: that is the face itself.
    EXPECT_THAT(ReferencesOf(url), ElementsAre(ReferenceOf(0), ReferenceOf(1), ReferenceOf(2)));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Register, ASecondRegistrationOfAFileFailsAndTouchesNothing) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    ASSERT_TRUE(RegisterFiles({url}));
    EXPECT_FALSE(RegisterFiles({url}));
    EXPECT_THAT(Texts(errors), ElementsAre(TextOf(ValURLGetString(url.Get()))));
    EXPECT_THAT(ReferencesOf(url), ElementsAre(ReferenceOf(0)));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Register, AURLWithAFragmentRegistersTheWholeFile) {
    const auto url = folder.Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    const auto face = Adopt(ValURLCopyWithFragment(url.Get(), String("postscript-name=B-Regular").Get()));
    ASSERT_TRUE(RegisterFile(face));
    EXPECT_EQ(ReferencesOf(url).size(), 2u);
    EXPECT_FALSE(RegisterFile(url));
}

TEST_F(Register, RegisterFontsTakesTheProcessScopeAlone) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    for (const VLScope scope : {0u, 2u, 3u, 4u, 5u, 6u, 7u}) {
        EXPECT_FALSE(RegisterFiles({url}, scope)) << scope;
        EXPECT_FALSE(registry.IsFontRegistered(url.Get())) << scope;
    }
    // The bits above the three are not its business.
    EXPECT_TRUE(
        RegisterFiles({url}, kVLScopeProcess | kVLScopeSilent | kVLScopeLegacyTold | kVLScopeDurable));
}

TEST_F(Register, RegisteringNothingSucceeds) {
    EXPECT_TRUE(RegisterFiles({}));
    EXPECT_FALSE(errors);
    EXPECT_TRUE(registry.RegisterFonts(nullptr, nullptr, 0, kVLScopeProcess, &errors));
    EXPECT_EQ(registry.GetChangeCount(), 0u);
}

TEST_F(Register, TheURLsThatFailAreHandedOutAndTheOthersAreRegistered) {
    const auto good = folder.Add("good.ttf", NamedFace{"Good"});
    const auto bad = folder.Add("bad.ttf", Bytes{'n', 'o', ' ', 'f', 'o', 'n', 't'});
    const auto missing = folder.URLOf("missing.ttf");
    EXPECT_FALSE(RegisterFiles({bad, good, missing}));
    EXPECT_THAT(Texts(errors),
                ElementsAre(TextOf(ValURLGetString(bad.Get())), TextOf(ValURLGetString(missing.Get()))));
    EXPECT_TRUE(registry.IsFontRegistered(good.Get()));
    EXPECT_EQ(registry.GetChangeCount(), 1u);
}

TEST_F(Register, ErrorsAreOptional) {
    const auto missing = folder.URLOf("missing.ttf");
    EXPECT_FALSE(registry.RegisterFonts(Array({missing}).Get(), nullptr, 0, kVLScopeProcess, nullptr));
}

TEST_F(Register, WhatIsNoFileOfFontsIsRefusedAndDisturbsNothing) {
    ASSERT_EQ(::mkfifo((folder.File("pipe.ttf")).c_str(), 0600), 0);
    ASSERT_EQ(::mkdir((folder.File("folder.ttf")).c_str(), 0700), 0);
    const auto cut = MakeFont({"Cut"});
    const std::vector<Ref<const ValURL>> refused = {
        folder.URLOf("pipe.ttf"),
        folder.URLOf("folder.ttf"),
        MakeURL("file:///dev/zero"),
        folder.Add("empty.ttf", Bytes{}),
        folder.Add("cut.ttf", Bytes(cut.begin(), cut.begin() + 40)),
        MakeURL("http://example.org/a.ttf"),
        MakeURL("file://inMemory_0x1000#postscript-name=A"),
    };
    EXPECT_FALSE(RegisterFiles(refused));
    EXPECT_EQ(ValArrayGetCount(errors.Get()), refused.size());
    EXPECT_EQ(registry.GetChangeCount(), 0u);
    const auto good = folder.Add("good.ttf", NamedFace{"Good"});
    EXPECT_TRUE(RegisterFile(good));
    EXPECT_EQ(registry.GetFontReference(good.Get()), ReferenceOf(0));
}

// The outlines of a suitcase's fonts, alone in the second fork of a file without a first one.
TEST_F(Register, AFileOfBareOutlinesIsRefusedForItsType) {
    const auto url = folder.Add("Outline", Bytes{});
    folder.Write(".rsrc/Outline", ResourceFork({"POST"}));
    ASSERT_TRUE(ConformsToTypeTag(url.Get(), "com.adobe.postscript-ptfn-font"));
    EXPECT_FALSE(RegisterFile(url));
}

TEST_F(Register, AFileOnTheRootVolumeNeedsNoCopyInStableStorage) {
    const auto url = FileURL("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
    ASSERT_TRUE(VLGetDirectoryFlags(url.Get()) & kVLFontFlagRootVolume);
    EXPECT_TRUE(RegisterFile(url, kVLFontFlagCopyToStable));
    EXPECT_TRUE(registry.IsFontRegistered(url.Get()));
}

TEST_F(Register, AnArrayItemThatIsNoURLIsAnError) {
    const auto text = String("/a.ttf");
    const void *const item = text.Get();
    const auto urls = Adopt(ValArrayCreate(&item, 1));
    EXPECT_FALSE(registry.RegisterFonts(urls.Get(), nullptr, 0, kVLScopeProcess, &errors));
    EXPECT_EQ(ValArrayGetCount(errors.Get()), 1u);
}

TEST_F(Register, EveryChangeMovesTheGenerationAndAFailureDoesNot) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    const uint32_t before = TGenerationSeed::GetGeneration();
    RegisterFile(url);
    const uint32_t registered = TGenerationSeed::GetGeneration();
    EXPECT_NE(before, registered);
    RegisterFile(url);
    EXPECT_EQ(TGenerationSeed::GetGeneration(), registered);
    registry.UnregisterFont(url.Get(), kVLScopeProcess);
    EXPECT_NE(TGenerationSeed::GetGeneration(), registered);
}

TEST_F(Register, IndexesAreNotReusedBeforeTheyWrap) {
    const auto a = folder.Add("a.ttf", NamedFace{"A"});
    const auto b = folder.Add("b.ttf", NamedFace{"B"});
    RegisterFile(a);
    registry.UnregisterFont(a.Get(), kVLScopeProcess);
    RegisterFile(b);
    EXPECT_EQ(registry.GetFontReference(b.Get()), ReferenceOf(1));
}

// ---- what is known of one URL ----

TEST_F(Register, KnowsScopePriorityAndReferenceOfRegisteredURLsAlone) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    EXPECT_EQ(registry.GetFontScope(url.Get()), 0u);
    EXPECT_EQ(registry.GetFontPriority(url.Get()), 0u);
    EXPECT_EQ(registry.GetFontReference(url.Get()), 0u);
    EXPECT_FALSE(registry.IsFontEnabled(url.Get()));
    RegisterFile(url);
    EXPECT_EQ(registry.GetFontScope(url.Get()), 1u);
    EXPECT_EQ(registry.GetFontPriority(url.Get()), 60000u);
    EXPECT_TRUE(registry.IsFontEnabled(url.Get()));
    EXPECT_FALSE(registry.CopyFontDirectoryURL(url.Get()));
}

TEST_F(Register, TheReferenceOfAFileIsThatOfItsFirstFace) {
    const auto url = folder.Add("ab.ttc", MakeCollection({{"A"}, {"B"}}));
    RegisterFile(url);
    EXPECT_EQ(registry.GetFontReference(url.Get()), ReferenceOf(0));
}

TEST_F(Register, AFolderStandsForTheFontsBeneathIt) {
    const auto url = folder.Add("deep/er/a.ttf", NamedFace{"Foo"});
    RegisterFile(url);
    EXPECT_EQ(registry.GetFontScope(folder.URLOf("deep").Get()), 1u);
    EXPECT_FALSE(RegisterFile(folder.URLOf("deep")));
    EXPECT_TRUE(registry.UnregisterFont(folder.URLOf("deep").Get(), kVLScopeProcess));
    EXPECT_FALSE(registry.IsFontRegistered(url.Get()));
}

TEST_F(Register, NullIsNoURL) {
    EXPECT_FALSE(registry.RegisterFont(nullptr, nullptr, 0, kVLScopeProcess));
    EXPECT_EQ(registry.GetFontScope(nullptr), 0u);
    EXPECT_FALSE(registry.IsFontRegistered(nullptr));
}

// ---- the allocator of font indexes ----

TEST_F(Register, AnIndexAboveTheLastBecomesZero) {
    EXPECT_EQ(registry.FindNextFontIndex(0), 0u);
    EXPECT_EQ(registry.FindNextFontIndex(32766), 32766u);
    EXPECT_EQ(registry.FindNextFontIndex(32767), 0u);
    EXPECT_EQ(registry.FindNextFontIndex(UINT32_MAX), 0u);
}

TEST_F(Register, AReferenceKeepsTheLowHalfOfTheProcessID) {
    EXPECT_EQ(MakeFontReference(0, 0x12345678), 0x80005678u);
    EXPECT_EQ(MakeFontReference(32766, 0xFFFFFFFF), 0xFFFEFFFFu);
    EXPECT_EQ(MakeFontReference(1, 0), 0x80010000u);
}

// An occupied index is waited for, for ever: the child must still be waiting when its alarm ends it.
TEST_F(Register, AnOccupiedIndexIsNeverPassedOver) {
    const auto url = folder.Add("a.ttf", NamedFace{"Foo"});
    ASSERT_TRUE(RegisterFile(url));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGALRM, SIG_DFL);
        ::ualarm(200000, 0);
        registry.FindNextFontIndex(0);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM);
}

} // namespace
} // namespace vellum::test
