// SPDX-License-Identifier: MIT
// Folders: their URLs stand for all that lies below them.
#include "service_fixture.hpp"

#include <filesystem>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class FontFolders : public LegacyTest {
protected:
    std::string ListText() const { return ReadText(ConfigFile("vellum/disabled-fonts")); }
};

TEST_F(FontFolders, AreWithdrawnWithAllBelowThem) {
    Register(WriteFont("folder/a.ttf", "One"));
    Register(WriteFont("folder/below/b.ttf", "Two"));
    Register(WriteFont("folder-2/c.ttf", "Beside"));
    Register(WriteFont("folder.ttf", "Above"));
    Withdraw(fonts_.File("folder"));
    EXPECT_THAT(Fonts(), ElementsAre("Above", "Beside"));
}

TEST_F(FontFolders, AreWithdrawnFromTheRegisterThatIsMeant) {
    Register(WriteFont("folder/a.ttf", "Process"), kVLScopeProcess);
    Register(WriteFont("folder/b.ttf", "Session"), kVLScopeSession);
    Withdraw(fonts_.File("folder"), kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Session"));
}

TEST_F(FontFolders, AreWithdrawnAfterTheyHaveGone) {
    Register(WriteFont("folder/a.ttf", "Ours"), kVLScopeUser);
    std::filesystem::rename(fonts_.File("folder"), fonts_.File("kept"));
    Withdraw(fonts_.File("folder"), kVLScopeUser);
    std::filesystem::rename(fonts_.File("kept"), fonts_.File("folder"));
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(FontFolders, AreWithdrawnForEveryProgram) {
    Register(WriteFont("folder/a.ttf", "One"), kVLScopeUser);
    Register(WriteFont("folder/below/b.ttf", "Two"), kVLScopeUser);
    Register(WriteFont("folder-2/c.ttf", "Beside"), kVLScopeUser);
    ASSERT_THAT(FontsElsewhere(), ElementsAre("Beside", "One", "Two"));
    Withdraw(fonts_.File("folder/"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Beside"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Beside"));
}

TEST_F(FontFolders, AreDisabledAndEnabledForThisProcess) {
    Register(WriteFont("folder/a.ttf", "One"));
    Register(WriteFont("folder/below/b.ttf", "Two"));
    Register(WriteFont("folder-2/c.ttf", "Beside"));
    Disable(fonts_.File("folder"), kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Beside"));
    Enable(fonts_.File("folder/a.ttf"), kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Beside", "One"));
    Enable(fonts_.File("folder"), kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Beside", "One", "Two"));
}

TEST_F(FontFolders, AreDisabledAndEnabledForTheUser) {
    WriteSystemFont("folder/a.ttf", "One");
    WriteSystemFont("folder/below/b.ttf", "Two");
    WriteSystemFont("folder-2/c.ttf", "Beside");
    Disable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Beside"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Beside"));
    Enable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Beside", "One", "Two"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Beside", "One", "Two"));
    EXPECT_THAT(ListText(), Not(HasSubstr("file://" + system_.Path())));
}

TEST_F(FontFolders, MayBeThoseThatFontconfigIsToldToLookInto) {
    WriteSystemFont("a.ttf", "One");
    WriteSystemFont("below/b.ttf", "Two");
    Disable(system_.Path(), kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(system_.Path(), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("One", "Two"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("One", "Two"));
}

TEST_F(FontFolders, TakeWhatWasDisabledBelowThemWithThem) {
    const std::string one = WriteSystemFont("folder/a.ttf", "One");
    const std::string two = system_.Write("folder/c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    Disable(one, kVLScopeUser);
    Disable(two, kVLScopeUser, "postscript-name=C-Two");
    Enable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One", "C-Two", "One"));
    Disable(one, kVLScopeUser);
    Disable(system_.File("folder"), kVLScopeUser);
    Disable(one, kVLScopeUser);
    EXPECT_THAT(ListText(), Not(HasSubstr("a.ttf")));
    Enable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One", "C-Two", "One"));
}

TEST_F(FontFolders, StayDisabledButForWhatIsEnabledInThem) {
    WriteSystemFont("folder/a.ttf", "A");
    WriteSystemFont("folder/b/1.ttf", "B1");
    WriteSystemFont("folder/b/2.ttf", "B2");
    WriteSystemFont("folder/c/1.ttf", "C1");
    const std::string faces = system_.Write("folder/d/d.ttc", MakeCollection({{"D", "1"}, {"D", "2"}}));
    Disable(system_.File("folder"), kVLScopeUser);
    Enable(system_.File("folder/b/2.ttf"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("B2"));
    Enable(system_.File("folder/c"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("B2", "C1"));
    Enable(faces, kVLScopeUser, "postscript-name=D-1");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("B2", "C1", "D-1"));
    EXPECT_THAT(Fonts(), ElementsAre("B2", "C1", "D-1"));
    Enable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("A", "B1", "B2", "C1", "D-1", "D-2"));
}

TEST_F(FontFolders, ThatAreNotThereMayBeDisabledForWhatComesIntoThem) {
    Disable(system_.File("folder"), kVLScopeUser);
    WriteSystemFont("folder/a.ttf", "Hidden");
    WriteSystemFont("b.ttf", "Shown");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Shown"));
}

TEST_F(FontFolders, MayHaveAnyBytesInTheirNames) {
    for (const std::string name : {"a & b <c>", "d*e?[f]\\", "bad\xFF\xC3", "line\nend\r\x01"}) {
        WriteSystemFont(name + "/a.ttf", "Font");
        Disable(system_.File(name), kVLScopeUser);
        EXPECT_THAT(FontsElsewhere(), IsEmpty()) << name;
    }
}

TEST_F(FontFolders, ThatAreDisabledHideWhatIsRegisteredFromThem) {
    const std::string first = WriteFont("folder/a.ttf", "First");
    Register(first, kVLScopeUser);
    Disable(fonts_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Register(WriteFont("folder/b.ttf", "Second"), kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(first, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("First"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("First"));
    Enable(fonts_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("First", "Second"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("First", "Second"));
}

TEST_F(FontFolders, OfTheSystemNeedNoLinksWhenTheyAreDisabled) {
    const std::string path = WriteSystemFont("folder/a.ttf", "System");
    Disable(system_.File("folder"), kVLScopeUser);
    Register(path, kVLScopeUser);
    Enable(system_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
}

TEST_F(FontFolders, OfWhichFontconfigReadsNoneNeedLinks) {
    const std::string path = WriteSystemFont(".folder/a.ttf", "Ours");
    Register(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
}

// What can't be written for the user holds in this process.
TEST_F(FontFolders, AreDisabledInThisProcessWhereTheHomeCannotBeWritten) {
    setenv("XDG_CONFIG_HOME", "/proc", 1);
    const std::string one = WriteFont("folder/a.ttf", "One");
    Register(one);
    Register(WriteFont("folder/b.ttf", "Two"));
    Disable(fonts_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(one, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("One"));
    setenv("XDG_CONFIG_HOME", home_.File("config").c_str(), 1);
    Disable(one, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(one, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("One"));
    Enable(fonts_.File("folder"), kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("One", "Two"));
}

// The registers look for nothing below the root either.
TEST_F(FontFolders, AreNoneWhenTheyAreTheRoot) {
    WriteSystemFont("a.ttf", "System");
    Register(WriteFont("a.ttf", "Ours"));
    Disable("/", kVLScopeUser);
    Disable("/", kVLScopeProcess);
    Withdraw("/");
    EXPECT_THAT(Fonts(), ElementsAre("Ours", "System"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
}

} // namespace
} // namespace vellum::test
