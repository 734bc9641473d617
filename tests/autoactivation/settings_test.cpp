// SPDX-License-Identifier: MIT
// What the user set, for all applications and for single ones. This program is no application.
#include "autoactivation/auto_activation_manager.hpp"
#include "support/captured_log.hpp"
#include "support/temp_dir.hpp"
#include "support/threads.hpp"
#include "support/values.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Manager = TAutoActivationManager;

class Settings : public ::testing::Test {
protected:
    Settings() { ::setenv("XDG_CONFIG_HOME", config.Path().c_str(), 1); }

    void Store(const std::string &entries) const {
        config.Write("vellum/com.orrery.Fount.vlist", "<vlist><dict>" + entries + "</dict></vlist>");
    }
    std::string Stored() const {
        std::ifstream stream(config.File("vellum/com.orrery.Fount.vlist"));
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    TempDir config;
    CapturedLog log;
    const Ref<const ValString> app = String("org.example.App");
    const Ref<const ValString> other = String("org.example.Other");
    const Ref<const ValString> for_all = String("com.orrery.Laydown");
};

TEST_F(Settings, AreReadFromTheirStoredTexts) {
    EXPECT_EQ(Manager::GetSettingForString(String("FountAutoActivationDefault").Get()), 0u);
    EXPECT_EQ(Manager::GetSettingForString(String("FountAutoActivationDisable").Get()), 1u);
    EXPECT_EQ(Manager::GetSettingForString(String("FountAutoActivationEnable").Get()), 2u);
    EXPECT_EQ(Manager::GetSettingForString(String("FountAutoActivationAsk").Get()), 3u);
    EXPECT_EQ(Manager::GetSettingForString(String("fountautoactivationask").Get()), 0u);
    EXPECT_EQ(Manager::GetSettingForString(String("").Get()), 0u);
    EXPECT_EQ(Manager::GetSettingForString(nullptr), 0u);
}

TEST_F(Settings, AreDefaultWhereNothingSensibleIsStored) {
    EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 0u);
    EXPECT_EQ(VLGetAutoActivationSetting(app.Get()), 0u);
    Store("<key>FountAutoActivation</key><integer>1</integer>"
          "<key>FountAutoActivationAppSpecific</key><string>FountAutoActivationAsk</string>");
    EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 0u);
    EXPECT_EQ(VLGetAutoActivationSetting(app.Get()), 0u);
    Store("<key>FountAutoActivation</key><string>Other</string><key>FountAutoActivationAppSpecific</key>"
          "<dict><key>org.example.App</key><true/></dict>");
    EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 0u);
    EXPECT_EQ(VLGetAutoActivationSetting(app.Get()), 0u);
}

TEST_F(Settings, AreStoredAsTexts) {
    VLSetAutoActivationSetting(for_all.Get(), kVLAutoActivationAsk);
    VLSetAutoActivationSetting(app.Get(), kVLAutoActivationEnable);
    VLSetAutoActivationSetting(other.Get(), kVLAutoActivationDisable);
    EXPECT_THAT(Stored(), HasSubstr("    <key>FountAutoActivation</key>\n"
                                    "    <string>FountAutoActivationAsk</string>\n"
                                    "    <key>FountAutoActivationAppSpecific</key>\n    <dict>\n"
                                    "        <key>org.example.App</key>\n"
                                    "        <string>FountAutoActivationEnable</string>\n"
                                    "        <key>org.example.Other</key>\n"
                                    "        <string>FountAutoActivationDisable</string>\n    </dict>\n"));
    EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 3u);
    EXPECT_EQ(VLGetAutoActivationSetting(app.Get()), 2u);
    EXPECT_EQ(VLGetAutoActivationSetting(other.Get()), 1u);
    EXPECT_EQ(Manager::GetAutoActivationSetting(), 3u);
}

TEST_F(Settings, AreRemovedByDefaultAndByWhatIsNone) {
    for (const VLAutoActivationSetting setting : {0u, 4u, 0xFFFFFFFFu}) {
        VLSetAutoActivationSetting(for_all.Get(), kVLAutoActivationAsk);
        VLSetAutoActivationSetting(app.Get(), kVLAutoActivationAsk);
        VLSetAutoActivationSetting(other.Get(), kVLAutoActivationAsk);
        VLSetAutoActivationSetting(for_all.Get(), setting);
        VLSetAutoActivationSetting(app.Get(), setting);
        EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 0u);
        EXPECT_EQ(VLGetAutoActivationSetting(app.Get()), 0u);
        EXPECT_EQ(VLGetAutoActivationSetting(other.Get()), 3u);
        EXPECT_THAT(Stored(), Not(HasSubstr("FountAutoActivation<")));
        EXPECT_THAT(Stored(), Not(HasSubstr("org.example.App")));
    }
}

TEST_F(Settings, KeepWhatElseIsInThePreferences) {
    Store("<key>Other</key><integer>7</integer>");
    VLSetAutoActivationSetting(app.Get(), kVLAutoActivationAsk);
    VLSetAutoActivationSetting(app.Get(), kVLAutoActivationDefault);
    EXPECT_THAT(Stored(), HasSubstr("<key>Other</key>\n    <integer>7</integer>"));
}

TEST_F(Settings, OfAProgramThatIsNoApplicationAreDisableAndNotKept) {
    EXPECT_EQ(VLGetAutoActivationSetting(nullptr), VLAutoActivationSetting{kVLAutoActivationDisable});
    VLSetAutoActivationSetting(nullptr, kVLAutoActivationEnable);
    EXPECT_EQ(VLGetAutoActivationSetting(nullptr), VLAutoActivationSetting{kVLAutoActivationDisable});
    EXPECT_FALSE(std::filesystem::exists(config.File("vellum")));
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("no application")));
}

TEST_F(Settings, ThatCannotBeKeptAreLoggedAndLeaveWhatThereWas) {
    VLSetAutoActivationSetting(String("a\x01").Get(), kVLAutoActivationAsk);
    EXPECT_EQ(VLGetAutoActivationSetting(String("a\x01").Get()), 0u);
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("can't be changed (22 -- Invalid argument)")));
}

TEST_F(Settings, OfWhatIsNoTextAreNone) {
    const auto *number = reinterpret_cast<const ValString *>(kValBooleanTrue);
    VLSetAutoActivationSetting(number, kVLAutoActivationAsk);
    EXPECT_EQ(VLGetAutoActivationSetting(number), 0u);
    EXPECT_FALSE(std::filesystem::exists(config.File("vellum")));
}

TEST_F(Settings, LetTheSearchBeTriedAgainWhenOneReadsOtherThanBefore) {
    const auto clears = [](auto read) {
        Manager::sBeaconQueriesDisabled = true;
        read();
        return !Manager::sBeaconQueriesDisabled;
    };
    const auto read_all = [] { Manager::GetAutoActivationSetting(); };
    const auto read_app = [&] { Manager::GetAutoActivationSetting(app.Get()); };
    EXPECT_FALSE(clears(read_all)); // Default, as before the first time
    EXPECT_FALSE(clears(read_app));
    VLSetAutoActivationSetting(for_all.Get(), kVLAutoActivationAsk);
    EXPECT_FALSE(clears(read_app));
    EXPECT_TRUE(clears(read_all));
    EXPECT_FALSE(clears(read_all));
    VLSetAutoActivationSetting(app.Get(), kVLAutoActivationAsk);
    EXPECT_FALSE(clears(read_all));
    EXPECT_TRUE(clears(read_app));
    EXPECT_FALSE(clears(read_app));
    EXPECT_TRUE(clears([&] { Manager::GetAutoActivationSetting(other.Get()); })); // Default again
}

TEST_F(Settings, ConcurrentThreadsReadAndSetThem) {
    OnEveryThread([&](size_t thread) {
        const auto mine = String("org.example.App" + std::to_string(thread));
        VLSetAutoActivationSetting(mine.Get(), kVLAutoActivationAsk);
        EXPECT_EQ(VLGetAutoActivationSetting(mine.Get()), 3u);
        VLSetAutoActivationSetting(for_all.Get(), kVLAutoActivationEnable);
        EXPECT_EQ(VLGetAutoActivationSetting(for_all.Get()), 2u);
    });
    for (size_t thread = 0; thread < kThreads; ++thread)
        EXPECT_EQ(VLGetAutoActivationSetting(String("org.example.App" + std::to_string(thread)).Get()), 3u);
}

} // namespace
} // namespace vellum::test
