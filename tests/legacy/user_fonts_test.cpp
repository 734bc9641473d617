// SPDX-License-Identifier: MIT
// Fonts that are registered for the user, and how every other program sees them.
#include "service_fixture.hpp"

#include <filesystem>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class UserFonts : public LegacyTest {};

TEST_F(UserFonts, AreFoundByEveryProgramAndNoMoreWhenWithdrawn) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(UserFonts, OfTheSameNameDoNotMeet) {
    const std::string first = WriteFont("one/a.ttf", "One");
    Register(first, kVLScopeUser);
    Register(WriteFont("two/a.ttf", "Two"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("One", "Two"));
    Withdraw(first, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Two"));
}

TEST_F(UserFonts, StayRegisteredForOthersWhenThisProcessWithdrawsThemForItself) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    Withdraw(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
}

TEST_F(UserFonts, AreLinkedWhenFontconfigCanReadThemAndNotElse) {
    const std::string text = fonts_.Write("text.ttf", "no font");
    Register(text, kVLScopeUser);
    EXPECT_FALSE(std::filesystem::exists(home_.File("data/vellum/registered-fonts")));
    EXPECT_FALSE(std::filesystem::exists(ConfigFile("fontconfig/conf.d/50-vellum.conf")));
    WriteFont("text.ttf", "Ours");
    Register(text, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
}

// As the library does with what the shared register refuses.
TEST_F(UserFonts, LeaveNothingBehindWhenTheyAreTakenBack) {
    const std::string refused = WriteFont("a.ttf", "Refused");
    const std::string kept = WriteFont("b.ttf", "Kept");
    Register(kept, kVLScopeUser);
    Register(refused, kVLScopeUser);
    Withdraw(refused, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Kept"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Kept"));
    Withdraw(kept, kVLScopeUser);
    EXPECT_TRUE(std::filesystem::is_empty(home_.File("data/vellum/registered-fonts")));
    EXPECT_TRUE(std::filesystem::is_empty(ConfigFile("fontconfig/conf.d")));
}

TEST_F(UserFonts, LeaveALinkThatSomebodyLaidForTheConfiguration) {
    const std::string path = WriteFont("a.ttf", "Ours");
    const std::string real = home_.Write("elsewhere/fonts.conf", "");
    home_.MakeFolder("config/fontconfig/conf.d");
    const std::string link = ConfigFile("fontconfig/conf.d/50-vellum.conf");
    std::filesystem::create_symlink(real, link);
    Register(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
    Withdraw(path, kVLScopeUser);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(UserFonts, LeaveTheConfigurationAsLongAsOtherFontsAreDisabled) {
    const std::string path = WriteFont("a.ttf", "Ours");
    const std::string system = WriteSystemFont("b.ttf", "System");
    Register(path, kVLScopeUser);
    Disable(system, kVLScopeUser);
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(system, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
    EXPECT_TRUE(std::filesystem::is_empty(ConfigFile("fontconfig/conf.d")));
}

TEST_F(UserFonts, AreListedOnceInAConfigurationThatIsReadAnew) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    ASSERT_TRUE(FcInitReinitialize());
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(ApplicationFonts(), IsEmpty());
    // This process has it by the link alone now, and must not keep it.
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(UserFonts, OfAnEarlierProcessAreWithdrawn) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    ASSERT_TRUE(FcInitReinitialize()); // as in a process that registered nothing
    Withdraw(path, kVLScopeUser);
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(UserFonts, OfTheSystemNeedNoLink) {
    const std::string path = WriteSystemFont("system.ttf", "System");
    Register(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
    EXPECT_FALSE(std::filesystem::exists(home_.File("data/vellum/registered-fonts")));
}

TEST_F(UserFonts, MayHaveAnyBytesInTheirNames) {
    const Names files = {"a & b <c>.ttf", "d*e?[f].ttf", "bad\xFF.ttf", std::string(240, 'x') + ".ttf"};
    Names names;
    for (size_t i = 0; i < files.size(); ++i) {
        names.push_back("Font" + std::to_string(i));
        Register(WriteFont(files[i], names.back()), kVLScopeUser);
    }
    EXPECT_EQ(FontsElsewhere(), names);
    for (const std::string &file : files) Withdraw(fonts_.File(file), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(UserFonts, WhoseFilesHaveGoneDoNoHarm) {
    const std::string path = WriteFont("a.ttf", "Gone");
    Register(path, kVLScopeUser);
    Register(WriteFont("b.ttf", "Here"), kVLScopeUser);
    std::filesystem::remove(path);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Here"));
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Here"));
}

TEST_F(UserFonts, LeaveAnotherLinkOfTheirNameAsItIs) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    const auto folder = std::filesystem::directory_iterator(home_.File("data/vellum/registered-fonts"));
    const auto link = begin(folder)->path();
    std::filesystem::remove(link);
    std::filesystem::create_symlink(WriteFont("b.ttf", "Other"), link);
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Other"));
}

// No file can be made under /proc, by nobody.
TEST_F(UserFonts, AreThisProcesssOwnWhereTheHomeCannotBeWritten) {
    setenv("XDG_CONFIG_HOME", "/proc", 1);
    setenv("XDG_DATA_HOME", "/proc", 1);
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(UserFonts, AreThisProcesssOwnWithoutAHome) {
    unsetenv("XDG_CONFIG_HOME");
    setenv("XDG_DATA_HOME", "relative", 1);
    unsetenv("HOME");
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists("relative"));
}

TEST_F(UserFonts, LieBelowTheHomeUnlessTheEnvironmentNamesOtherFolders) {
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DATA_HOME");
    Register(WriteFont("a.ttf", "Ours"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
    EXPECT_TRUE(std::filesystem::exists(home_.File(".config/fontconfig/conf.d/50-vellum.conf")));
    EXPECT_TRUE(std::filesystem::exists(home_.File(".local/share/vellum/registered-fonts")));
}

TEST_F(UserFonts, PutAsideAConfigurationThatSomebodyElseWrote) {
    const std::string theirs = "<fontconfig><description>mine</description></fontconfig>";
    const std::string file = home_.Write("config/fontconfig/conf.d/50-vellum.conf", theirs);
    home_.Write("config/fontconfig/conf.d/50-vellum.conf.saved1", "older");
    Register(WriteFont("a.ttf", "Ours"), kVLScopeUser);
    EXPECT_EQ(ReadText(file + ".saved1"), "older");
    EXPECT_EQ(ReadText(file + ".saved2"), theirs);
    EXPECT_THAT(ReadText(file), HasSubstr("Vellum writes this file"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
}

} // namespace
} // namespace vellum::test
