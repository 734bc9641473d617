// SPDX-License-Identifier: MIT
// What the legacy font service hears of the changes that the exported functions make: each of them once.
#include "ipc/notify/change_notifications.hpp"
#include "query_registers.hpp"
#include "store/bundle_fonts.hpp"
#include "store/legacy_bridge.hpp"
#include "support/allocations.hpp"
#include "support/heard_changes.hpp"
#include "support/resource_fork.hpp"
#include "support/spy_fount.hpp"

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LegacyService : public QueryRegisters {
protected:
    LegacyService() {
        ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
    } // the shared register is one of the process
    static std::string Text(const Ref<const ValURL> &url) { return TextOf(ValURLGetString(url.Get())); }

    SpyFount service;
};

TEST_F(LegacyService, HearsOfEachFileThatTheProcessRegistersAndOfTheAnnouncement) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"})), b = folder.Add("b.ttf", MakeFont({"B"}));
    VLRegisterFonts(Array({a, b}).Get(), kVLFontFlagLocalVolume, kVLScopeProcess, nullptr);
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=200 scope=1 " + Text(a),
                            "register array=0 reserved=0 flags=200 scope=1 " + Text(b), "notify 1 0"));
}

TEST_F(LegacyService, HearsOfSharedFilesOnceWithTheArray) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"})), b = folder.Add("b.ttf", MakeFont({"B"}));
    VLRegisterFonts(Array({a, b}).Get(), kVLFontFlagLocalVolume, kVLScopeUser, nullptr);
    const std::string asked = "register array=1 reserved=0 flags=200 scope=2 " + Text(a) + " " + Text(b);
    const auto told = service.Told();
    EXPECT_EQ(std::ranges::count(told, asked), 1);
    EXPECT_EQ(told.front(), asked);
}

// The shared register in the process takes no files; what it has is the system's.
TEST_F(LegacyService, HearsThatTheSharedFilesWhichWereRefusedAreWithdrawn) {
    const auto a = AddShared("a.ttf", MakeFont({"A"}));
    const auto b = folder.Add("b.ttf", MakeFont({"B"})), c = folder.Add("c.ttf", MakeFont({"C"}));
    EXPECT_EQ(VLGetScopeForFont(a.Get()), VLScope{kVLScopeProcess});
    service.Told();
    EXPECT_FALSE(VLRegisterFonts(Array({b, a, c}).Get(), kVLFontFlagLocalVolume,
                                 kVLScopeUser | kVLScopeSilent, nullptr));
    const auto told = service.Told();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0].substr(0, 8), "register");
    EXPECT_EQ(told[1], "withdraw array=1 reserved=0 flags=0 scope=40000002 " + Text(b) + " " + Text(c));
    EXPECT_FALSE(VLRegisterFont(a.Get(), 0, kVLScopeUser | kVLScopeSilent)); // nothing to withdraw
    EXPECT_EQ(service.Told().size(), 1u);
}

// Who told it beforehand takes back what is to be taken back.
TEST_F(LegacyService, HearsOfNoWithdrawalOfFilesThatItWasToldOfElsewhere) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"}));
    EXPECT_FALSE(VLRegisterFont(a.Get(), 0, kVLScopeUser | kVLScopeLegacyTold | kVLScopeSilent));
    EXPECT_THAT(service.Told(), IsEmpty());
}

// Other threads may wait for a register with the lock of the loader held: who holds the register's, or
// makes it, must not want that one.
TEST_F(LegacyService, MayAskForFontsWhileItIsLoadedToHearOfAFile) {
    EXPECT_EQ(Named("nobody"), "(null)"); // the registers are there
    ::setenv("SPY_FOUNT_ASKS", "1", 1);
    const auto url = Add("a.ttf", MakeFont({"A"}));
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=0 scope=1 " + Text(url), "notify 1 0"));
}

TEST_F(LegacyService, MayAskForFontsWhileItIsLoadedToHearOfTheSystemsFonts) {
    ::setenv("SPY_FOUNT_ASKS", "1", 1);
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    EXPECT_EQ(Named("A", kVLScopeUser), "A-Regular");
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=608 scope=1 " + Text(shared)));
}

TEST_F(LegacyService, MayAskForFontsWhileItIsLoadedForAFontInMemory) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 77, 0, kVLScopeProcess));
    const auto url = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    ::setenv("SPY_FOUNT_ASKS", "1", 1);
    EXPECT_EQ(VLGetDataFontFountFont(url.Get()), 771u);
}

// Nor may two registers be locked at once.
TEST_F(LegacyService, MayAskForFontsWhileItIsLoadedBetweenTheTwoRegisters) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    EXPECT_EQ(Named("nobody", kVLScopeProcess), "(null)");
    ::setenv("SPY_FOUNT_ASKS", "1", 1);
    EXPECT_EQ(VLGetScopeForFont(shared.Get()), VLScope{kVLScopeProcess});
}

TEST_F(LegacyService, HearsOfNoFontsThatABundleNamesButDoesNotHave) {
    FindFountFunctions();
    const auto register_fonts = [&](const std::string &path) {
        folder.Write("Info.vlist",
                     "<vlist version=\"1.0\"><dict><key>FountApplicationFontsPath</key><string>" + path +
                         "</string></dict></vlist>");
        TLocalGlypharyImp registry;
        RegisterFontsOfBundle(registry, MainBundle::Of(folder.File("program")).value());
    };
    const auto url = folder.Add("Resources/a.ttf", MakeFont({"A"}));
    register_fonts("absent.ttf");
    EXPECT_THAT(service.Told(), IsEmpty());
    register_fonts("a.ttf");
    EXPECT_THAT(service.Told(), ElementsAre("register array=0 reserved=0 flags=0 scope=1 " + Text(url)));
}

TEST_F(LegacyService, HearsOfAnAnnouncementThatFailed) {
    const auto fonts = Array({folder.URLOf("a.ttf")});
    const auto post = [&] { PostNotification(kVLScopeProcess, kAvailableFontURLsAddedKey, fonts.Get()); };
    post();
    bool has_failed = true;
    for (int n = 0; has_failed; ++n) {
        service.Told();
        FailAllocationAfter(n);
        try {
            post();
        } catch (const std::bad_alloc &) {
        }
        has_failed = HasAllocationFailed();
        FailAllocationAfter(-1);
        EXPECT_THAT(service.Told(), ElementsAre("notify 1 0")) << n;
    }
}

TEST_F(LegacyService, HearsOfABrokenFileAndNotOfADuplicate) {
    const auto broken = folder.Add("b.ttf", Bytes{1}), a = Add("a.ttf", MakeFont({"A"}));
    service.Told();
    VLRegisterFonts(Array({broken, a}).Get(), 0, kVLScopeProcess, nullptr);
    EXPECT_THAT(service.Told(), ElementsAre("register array=0 reserved=0 flags=0 scope=1 " + Text(broken)));
}

// A suitcase's fonts find their outlines themselves.
TEST_F(LegacyService, HearsOfNoFileOfBareOutlines) {
    const auto outlines = folder.Add("Outline", Bytes{}), a = folder.Add("a.ttf", MakeFont({"A"}));
    folder.Write(".rsrc/Outline", ResourceFork({"POST"}));
    VLRegisterFonts(Array({outlines, a}).Get(), 0, kVLScopeProcess, nullptr);
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=0 scope=1 " + Text(a), "notify 1 0"));
}

TEST_F(LegacyService, HearsOfFilesThatAreWithdrawnBeforeAnythingElse) {
    const auto a = Add("a.ttf", MakeFont({"A"}));
    service.Told();
    VLUnregisterFonts(Array({a}).Get(), 0, kVLScopeProcess, nullptr);
    EXPECT_THAT(service.Told(),
                ElementsAre("withdraw array=1 reserved=0 flags=0 scope=1 " + Text(a), "notify 1 0"));
}

// No register was asked then: unregistering tells first, registering does not.
TEST_F(LegacyService, HearsOfUnregisteringFromNoRegisterButNotOfRegistering) {
    const auto urls = Array({folder.URLOf("a.ttf")});
    VLRegisterFonts(urls.Get(), 0, 0, nullptr);
    EXPECT_THAT(service.Told(), IsEmpty());
    VLUnregisterFonts(urls.Get(), 0, 0, nullptr);
    EXPECT_EQ(service.Told().size(), 1u);
}

TEST_F(LegacyService, HearsOfEnablingAndDisablingOnceWhateverTheScope) {
    const auto a = Add("a.ttf", MakeFont({"A"}));
    service.Told();
    for (const VLScope scope : {VLScope{kVLScopeProcess}, VLScope{kVLScopeAll}}) {
        const std::string word = scope == kVLScopeAll ? "7" : "1";
        VLDisableFonts(Array({a}).Get(), 4, scope);
        EXPECT_THAT(service.Told(),
                    ElementsAre("disable array=1 flags=4 scope=" + word + " " + Text(a), "notify 1 0"));
        VLEnableFonts(Array({a}).Get(), 4, scope);
        EXPECT_THAT(service.Told(),
                    ElementsAre("enable array=1 flags=4 scope=" + word + " " + Text(a), "notify 1 0"));
        VLGetFunctions()->disable_font(a.Get(), 4, scope);
        EXPECT_THAT(service.Told(),
                    ElementsAre("disable array=0 flags=4 scope=" + word + " " + Text(a), "notify 1 0"));
        VLGetFunctions()->enable_font(a.Get(), 4, scope);
        EXPECT_THAT(service.Told(),
                    ElementsAre("enable array=0 flags=4 scope=" + word + " " + Text(a), "notify 1 0"));
    }
}

TEST_F(LegacyService, HearsOfASilentChangeAndOfNoAnnouncement) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"}));
    VLRegisterFonts(Array({a}).Get(), 0, kVLScopeProcess | kVLScopeSilent, nullptr);
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=0 scope=40000001 " + Text(a)));
}

TEST_F(LegacyService, HearsOfNoChangeThatItWasToldOfAlready) {
    const auto a = folder.Add("a.ttf", MakeFont({"A"}));
    const auto urls = Array({a});
    const VLScope scope = kVLScopeProcess | kVLScopeLegacyTold | kVLScopeSilent;
    VLRegisterFonts(urls.Get(), 0, scope, nullptr);
    VLDisableFonts(urls.Get(), 0, scope);
    VLEnableFonts(urls.Get(), 0, scope);
    VLGetFunctions()->disable_font(a.Get(), 0, scope);
    VLUnregisterFonts(urls.Get(), 0, scope, nullptr);
    const auto data = AsData(MakeFont({"B"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, scope));
    EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, scope));
    EXPECT_THAT(service.Told(), IsEmpty());
}

// It has them already, and tells them by their flags.
TEST_F(LegacyService, HearsWhichFontsAreTheSystems) {
    const auto shared = AddShared("a.ttf", MakeFont({"A"}));
    EXPECT_EQ(VLGetScopeForFont(shared.Get()), VLScope{kVLScopeProcess});
    EXPECT_THAT(service.Told(),
                ElementsAre("register array=0 reserved=0 flags=608 scope=1 " + Text(shared)));
}

// ---- fonts in memory ----

TEST_F(LegacyService, GivesAContainerToAFontInMemoryAndTakesItBack) {
    const auto data = AsData(MakeFont({"A"}));
    const std::string size = std::to_string(ValDataGetLength(data.Get()));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 4, kVLScopeProcess | kVLScopeSilent));
    EXPECT_THAT(service.Told(),
                ElementsAre("data size=" + size + " container=0 flags=4 scope=40000001 is 100"));
    EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess));
    EXPECT_THAT(service.Told(), ElementsAre("data size=" + size + " container=100 flags=0 scope=1 is 100"));
}

TEST_F(LegacyService, IsNotAskedForAContainerThatTheCallerHas) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 77, 0, kVLScopeProcess));
    EXPECT_THAT(service.Told(), IsEmpty());
}

TEST_F(LegacyService, GetsBackWhatTheRegisterRefuses) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    service.Told();
    EXPECT_FALSE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto told = service.Told();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_NE(told[0].find("container=0 "), std::string::npos);
    EXPECT_NE(told[1].find("container=101 "), std::string::npos);
}

TEST_F(LegacyService, KnowsTheFontsOfAContainer) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto url = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    service.Told();
    EXPECT_EQ(VLGetDataFontFountFont(url.Get()), 1001u);
    EXPECT_THAT(service.Told(), ElementsAre("find container=100 room=8"));
    EXPECT_EQ(VLGetDataFontFountFont(folder.URLOf("no.ttf").Get()), 0u);
    EXPECT_EQ(VLGetDataFontFountFont(nullptr), 0u);
}

TEST_F(LegacyService, IsAskedAgainWithRoomWhereAContainerHasManyFonts) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto url = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    service.Told();
    service.SetFontCount(20);
    EXPECT_EQ(VLGetDataFontFountFont(url.Get()), 1001u);
    EXPECT_THAT(service.Told(), ElementsAre("find container=100 room=8", "find container=100 room=20"));
    service.SetFontCount(0);
    EXPECT_EQ(VLGetDataFontFountFont(url.Get()), 0u);
}

TEST_F(LegacyService, LeadsFromItsIdOfAFontToTheFont) {
    const auto data = AsData(MakeFont({"A"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto url = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    EXPECT_EQ(Texts(Array({Adopt(VLCopyFontURLForDataFont(nullptr, 1001))})), Texts(Array({url})));
    EXPECT_FALSE(Adopt(VLCopyFontURLForDataFont(nullptr, 2001)));
    VLDisableFonts(Array({url}).Get(), 0, kVLScopeProcess);
    EXPECT_FALSE(Adopt(VLCopyFontURLForDataFont(nullptr, 1001)));
}

// ---- the status word ----

TEST_F(LegacyService, MarksTheWordOfWhoeverTold) {
    const auto url = folder.URLOf("a.ttf");
    VLScope word = kVLScopeProcess | kVLScopeSilent;
    DoRegisterURLWithFount(url.Get(), true, 0, word);
    EXPECT_EQ(word, kVLScopeProcess | kVLScopeSilent | kVLScopeLegacyTold);
    word = kVLScopeUser | kVLScopeSilent;
    DoEnableURLWithFount(url.Get(), true, 0, word);
    EXPECT_EQ(word, kVLScopeUser | kVLScopeSilent | kVLScopeLegacyTold);
    word = kVLScopeUser | kVLScopeSilent;
    DoRegisterDataWithFount(AsData(Bytes{1}).Get(), 0, 0, word);
    EXPECT_EQ(word, kVLScopeUser | kVLScopeLegacyTold);
}

// ---- without the service ----

TEST(NoLegacyService, IsSilentAndMarksTheWordAllTheSame) {
    const FontFolder folder;
    ::setenv("VL_FRAMEWORK_RESOURCES_PATH", folder.MakeFolder("Fount.framework/Resources").c_str(), 1);
    const auto url = folder.Add("a.ttf", MakeFont({"A"}));
    VLScope word = kVLScopeProcess;
    DoRegisterURLWithFount(url.Get(), true, 0, word);
    EXPECT_EQ(word, kVLScopeProcess | kVLScopeLegacyTold);
    EXPECT_EQ(LoadFountFunction("FountRegisterURLs"), nullptr);
    EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
    const auto data = AsData(MakeFont({"B"}));
    EXPECT_TRUE(VLRegisterDataFont(data.Get(), 0, 0, kVLScopeProcess));
    const auto data_url = Adopt(VLCopyFontURLForDataFont(data.Get(), 0));
    EXPECT_EQ(VLGetDataFontFountFont(data_url.Get()), 0u);
    EXPECT_TRUE(VLUnregisterDataFont(data.Get(), 0, kVLScopeProcess));
}

TEST(NoLegacyService, IsFoundWhenItComesLater) {
    const SpyFount service;
    const std::string code = service.Framework() + "/Fount.so", away = code + "-away";
    std::filesystem::rename(code, away);
    EXPECT_EQ(LoadFountFunction("FountRegisterURLs"), nullptr);
    DoNotifyFount();
    std::filesystem::rename(away, code);
    DoNotifyFount();
    EXPECT_THAT(service.Told(), ElementsAre("notify 1 0"));
    EXPECT_EQ(LoadFountFunction("FountNothing"), nullptr);
}

} // namespace
} // namespace vellum::test
