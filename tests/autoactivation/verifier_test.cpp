// SPDX-License-Identifier: MIT
// Which processes may have fonts activated: every setting, in every kind of process.
#include "autoactivation/probe_bundle.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

namespace vellum::test {
namespace {

constexpr char kApp[] = "org.example.App";

// What is stored for Default, Disable, Enable and Ask; Default is stored as nothing.
constexpr const char *kStored[] = {"", "FountAutoActivationDisable", "FountAutoActivationEnable",
                                   "FountAutoActivationAsk"};

std::string Preferences(int for_all, int own, const std::string &app = kApp) {
    std::string entries;
    if (for_all)
        entries += "<key>FountAutoActivation</key><string>" + std::string(kStored[for_all]) + "</string>";
    if (own)
        entries += "<key>FountAutoActivationAppSpecific</key><dict><key>" + app + "</key><string>" +
                   kStored[own] + "</string></dict>";
    return entries;
}

TEST(Verifier, LetsTheApplicationsSettingGoBeforeTheOneForAll) {
    //                                 own: Default, Disable, Enable, Ask
    constexpr const char *kExpected[4][4] = {{"yes,", "no,", "yes,", "ask,"},  // for all: Default
                                             {"no,", "no,", "yes,", "ask,"},   // Disable
                                             {"yes,", "no,", "yes,", "ask,"},  // Enable
                                             {"ask,", "no,", "yes,", "ask,"}}; // Ask
    const ProbeBundle bundle;
    bundle.DeclareIdentifier(kApp);
    for (int for_all = 0; for_all < 4; ++for_all) {
        for (int own = 0; own < 4; ++own) {
            bundle.Prefer(Preferences(for_all, own));
            EXPECT_EQ(bundle.Ask("can"), kExpected[for_all][own]) << for_all << " " << own;
        }
    }
}

// A process that is never eligible is so under every setting.
void ExpectNeverAllowed(const ProbeBundle &bundle, const std::string &app, const std::string &first = "") {
    for (int for_all = 0; for_all < 4; ++for_all) {
        for (int own = 0; own < 4; ++own) {
            bundle.Prefer(Preferences(for_all, own, app));
            EXPECT_EQ(bundle.Ask(first + " can"), "no,") << app << " " << for_all << " " << own;
        }
    }
}

TEST(Verifier, AllowsNothingToAnApplicationThatRefuses) {
    const ProbeBundle bundle;
    for (const char *value : {"<true/>", "<integer>1</integer>", "<real>0.5</real>"}) {
        bundle.DeclareIdentifier(kApp, std::string("<key>FountDisableAutoActivation</key>") + value);
        ExpectNeverAllowed(bundle, kApp);
    }
    for (const char *value : {"<false/>", "<integer>0</integer>", "<string>true</string>"}) {
        bundle.DeclareIdentifier(kApp, std::string("<key>FountDisableAutoActivation</key>") + value);
        bundle.Prefer("");
        EXPECT_EQ(bundle.Ask("can"), "yes,") << value;
    }
}

TEST(Verifier, AllowsNothingToAUserInterfaceElement) {
    const ProbeBundle bundle;
    bundle.DeclareIdentifier(kApp, "<key>SkUIElement</key><true/>");
    ExpectNeverAllowed(bundle, kApp);
    bundle.DeclareIdentifier(kApp, "<key>SkUIElement</key><false/>");
    EXPECT_EQ(bundle.Ask("own=2 can"), "yes,");
}

TEST(Verifier, AllowsNothingToInstallersAndToWhatAsksTheUser) {
    const ProbeBundle bundle;
    for (const char *app : {"com.orrery.GlypharyUIAgent", "com.orrery.installer", "com.MindVision.VISEX"}) {
        bundle.DeclareIdentifier(app);
        ExpectNeverAllowed(bundle, app);
    }
    bundle.DeclareIdentifier("com.orrery.installer2");
    EXPECT_EQ(bundle.Ask("own=2 can"), "yes,");
}

TEST(Verifier, AllowsNothingToAProcessWithoutAnIdentifier) {
    const ProbeBundle bundle;
    ExpectNeverAllowed(bundle, kApp); // no bundle at all
    bundle.Declare("");
    ExpectNeverAllowed(bundle, kApp);
    bundle.Declare("<key>BundleIdentifier</key><true/>");
    ExpectNeverAllowed(bundle, kApp);
    EXPECT_EQ(bundle.Ask("identifier own? own=2 own?"), ",1,1,");
}

TEST(Verifier, BelievesNoBundleThatEverybodyMayWriteTo) {
    const ProbeBundle bundle;
    bundle.DeclareIdentifier(kApp);
    EXPECT_EQ(bundle.Ask("identifier can"), "org.example.App,yes,");
    ASSERT_EQ(::chmod(bundle.Folder().File("App/Info.vlist").c_str(), 0666), 0);
    EXPECT_EQ(bundle.Ask("identifier can"), ",no,");
}

TEST(Verifier, AllowsNothingToADaemon) {
    const ProbeBundle bundle(VELLUM_DAEMON_PROBE);
    bundle.DeclareIdentifier(kApp);
    ExpectNeverAllowed(bundle, kApp, "daemon=1");
    EXPECT_EQ(bundle.Ask("own=2 daemon=0 can"), "yes,");
}

TEST(Verifier, TellsTheKindOfAProcessOnce) {
    const ProbeBundle bundle(VELLUM_DAEMON_PROBE);
    bundle.DeclareIdentifier(kApp);
    EXPECT_EQ(bundle.Ask("can daemon=1 can"), "yes,yes,");
    EXPECT_EQ(bundle.Ask("daemon=1 can daemon=0 can"), "no,no,");
    // Not before the settings allow it, and the search works.
    EXPECT_EQ(bundle.Ask("all=1 daemon=1 can daemon=0 all=0 can"), "no,yes,");
    EXPECT_EQ(bundle.Ask("all=0 own=0 disable-search daemon=1 can daemon=0 own=2 can"), "no,yes,");
}

TEST(Verifier, FollowsTheSettingsOfAProcessThatRuns) {
    const ProbeBundle bundle;
    bundle.DeclareIdentifier(kApp);
    EXPECT_EQ(bundle.Ask("can own=1 can own=3 can own=0 all=1 can own=2 can own? all=3 own=0 can"),
              "yes,no,ask,no,yes,2,ask,");
}

TEST(Verifier, AllowsNothingWhileTheSearchIsGivenUpUntilASettingChanges) {
    const ProbeBundle bundle;
    bundle.DeclareIdentifier(kApp);
    EXPECT_EQ(bundle.Ask("can disable-search can can all=2 can"), "yes,no,no,yes,");
    EXPECT_EQ(bundle.Ask("all=0 can disable-search can own=2 can"), "yes,no,yes,");
}

} // namespace
} // namespace vellum::test
