// SPDX-License-Identifier: MIT
// Fonts that are disabled and enabled, for the user and for one process.
#include "service_fixture.hpp"
#include "support/font_builder.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class DisabledFonts : public LegacyTest {
protected:
    std::string ListFile() const { return ConfigFile("vellum/disabled-fonts"); }
};

// FreeType takes a font for variable when it has this table, too: one without variations here.
Bytes GvarTable(uint32_t axes, uint32_t glyphs) {
    ByteWriter table;
    table.U16(1).U16(0).U16(axes).U16(0).U32(20 + 2 * (glyphs + 1)).U16(glyphs).U16(0);
    return table.U32(20 + 2 * (glyphs + 1)).Zeros(2 * (glyphs + 1));
}

// Axes wght and wdth; instances Regular (the default), Bold ("Test-BoldStated") and Very Narrow.
Bytes VariableFontFile() {
    return VariableFont().Table("gvar", GvarTable(2, 27)).Build();
}

TEST_F(DisabledFonts, ForTheUserAreSeenByNoProgramUntilTheyAreEnabled) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    WriteSystemFont("b.ttf", "B");
    EXPECT_THAT(Fonts(), ElementsAre("A", "B"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("B"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("B"));
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("A", "B"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("A", "B"));
}

TEST_F(DisabledFonts, ComeAndGoAsAnArray) {
    std::vector<Ref<const ValURL>> urls;
    std::vector<const void *> items;
    for (const char *name : {"A", "B", "C"}) {
        urls.push_back(FileURL(WriteSystemFont(std::string(name) + ".ttf", name)));
        items.push_back(urls.back().Get());
    }
    const auto first_two = Adopt(ValArrayCreate(items.data(), 2));
    service_.enable_urls(first_two.Get(), 1, 0, 0, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C"));
    service_.enable_urls(first_two.Get(), 1, 1, 0, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), SizeIs(3));
}

TEST_F(DisabledFonts, AreKeptForTheUserAndNotByTheProcess) {
    const std::string path = WriteSystemFont("a b.ttf", "A");
    Disable(path, kVLScopeUser);
    EXPECT_THAT(ReadText(ListFile()), HasSubstr("\nfile://" + system_.Path() + "/a%20b.ttf\n"));
    Enable(path, kVLScopeUser);
    EXPECT_THAT(ReadText(ListFile()), ::testing::Not(HasSubstr("file://" + system_.Path())));
}

TEST_F(DisabledFonts, AreNotAmongTheApplicationFontsEither) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(DisabledFonts, StayAwayWhenTheyAreRegisteredAgain) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Disable(path, kVLScopeUser);
    Register(path);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(DisabledFonts, OfTheUsersAreDisabledByTheirLinksToo) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
}

TEST_F(DisabledFonts, OfTheSystemAreNotLinkedWhenTheyAreRegistered) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    Disable(path, kVLScopeUser);
    Register(path, kVLScopeUser);
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("A"));
    EXPECT_FALSE(std::filesystem::exists(home_.File("data/vellum/registered-fonts")));
}

TEST_F(DisabledFonts, MayBeSingleFacesOfACollection) {
    const std::string path =
        system_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}, {"C", "Three"}}));
    Disable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(Fonts(), ElementsAre("C-One", "C-Three"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One", "C-Three"));
    Disable(path, kVLScopeUser, "postscript-name=C-One");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-Three"));
    Enable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-Three", "C-Two"));
    Enable(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), SizeIs(3));
}

TEST_F(DisabledFonts, LeaveTheOtherFacesDisabledWhenOneOfAFileIsEnabled) {
    const std::string path =
        system_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}, {"C", "Three"}}));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-Two"));
    Disable(path, kVLScopeUser, "postscript-name=C-Two");
    Enable(path, kVLScopeUser, "postscript-name=C-Three");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-Three"));
    Disable(path, kVLScopeUser);
    Enable(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), SizeIs(3));
}

TEST_F(DisabledFonts, AreEnabledWholeByAFaceWhenTheFileHasGone) {
    const std::string path = system_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    Disable(path, kVLScopeUser);
    std::filesystem::rename(path, system_.File("kept"));
    Enable(path, kVLScopeUser, "postscript-name=C-Two");
    std::filesystem::rename(system_.File("kept"), path);
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One", "C-Two"));
}

TEST_F(DisabledFonts, MayBeFacesThatTheFileDoesNotHaveYet) {
    const std::string path = system_.File("c.ttc");
    Disable(path, kVLScopeUser, "postscript-name=C-Two");
    system_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One"));
    Enable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One", "C-Two"));
}

TEST_F(DisabledFonts, AreWholeFilesWhenEveryFaceIsDisabled) {
    const std::string path = fonts_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    Register(path);
    Disable(path, kVLScopeUser, "postscript-name=C-One");
    EXPECT_THAT(Fonts(),
                ElementsAre("C-One", "C-Two")); // fontconfig can't hide a face of an application font
    Disable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(Fonts(), ElementsAre("C-One", "C-Two"));
    EXPECT_THAT(ReadText(ListFile()), HasSubstr("#postscript-name=C-One;index=0\n"));
}

TEST_F(DisabledFonts, AreWholeFilesWhenTheirOnlyFaceIsNamed) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Disable(path, kVLScopeProcess, "postscript-name=ours");
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeProcess, "postscript-name=Ours");
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Disable(path, kVLScopeUser, "postscript-name=Ours");
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeUser, "postscript-name=Other");
    EXPECT_THAT(Fonts(), IsEmpty());
}

// fontconfig knows an instance by a name of its own making; the place tells. The font that stands for all
// instances is there as long as the file is not disabled as a whole.
TEST_F(DisabledFonts, MayBeNamedInstances) {
    const std::string path = system_.Write("v.ttf", VariableFontFile());
    ASSERT_THAT(FontsElsewhere(), ElementsAre("Test*", "Test-Regular", "Test_700wght", "Test_75wdth"));
    Disable(path, kVLScopeUser, "postscript-name=Test-RegularVeryNarrow;var:wght=400;var:wdth=75");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Test*", "Test-Regular", "Test_700wght"));
    Disable(path, kVLScopeUser, "postscript-name=Test-Regular;var:wght=400;var:wdth=100");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Test*", "Test_700wght"));
    Enable(path, kVLScopeUser, "var:wght=400;var:wdth=75");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Test*", "Test_700wght", "Test_75wdth"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    Enable(path, kVLScopeUser, "postscript-name=Test-BoldStated;var:wght=700;var:wdth=100");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Test*", "Test_700wght"));
}

TEST_F(DisabledFonts, MayBeVariableFontsWithoutANameOfTheirOwn) {
    const auto font = [](std::string_view name) {
        return VariableFont().Names(PlainNames("Test", "Regular", name)).Table("gvar", GvarTable(2, 27));
    };
    const std::string path =
        system_.Write("v.ttc", BuildCollection({font("Not a name"), font("Nor (this)")}));
    const Names all = FontsElsewhere();
    ASSERT_THAT(all, ::testing::IsSupersetOf({"Test*", "Test*", "Test", "Test"}));
    Disable(path, kVLScopeUser, "postscript-name=Not%20a%20name");
    EXPECT_THAT(FontsElsewhere(), SizeIs(all.size() - 1));
    EXPECT_THAT(FontsElsewhere(), ::testing::IsSupersetOf({"Test*", "Test*", "Test"}));
}

// fontconfig then makes up one name for all of them.
TEST_F(DisabledFonts, MayBeFacesWhosePostScriptNamesAreNone) {
    const std::string path = system_.Write(
        "c.ttc", MakeCollection({{"C", "One", "Not a name"}, {"C", "Two", "Nor (this)"}, {"C", "Three"}}));
    ASSERT_THAT(FontsElsewhere(), ElementsAre("C", "C", "C-Three"));
    Disable(path, kVLScopeUser, "postscript-name=nor%20(this)");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C", "C-Three"));
    EXPECT_THAT(ReadText(ListFile()), HasSubstr("/c.ttc#index=1\n"));
    Disable(path, kVLScopeUser, "postscript-name=Not%20a%20name");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-Three"));
    Enable(path, kVLScopeUser, "postscript-name=nor%20(this)");
    EXPECT_THAT(ReadText(ListFile()), HasSubstr("/c.ttc#index=0\n"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C", "C-Three"));
}

TEST_F(DisabledFonts, MayHaveAnyBytesInTheirNames) {
    const Names files = {"a & b <c>.ttf", "d*e?[f]\\.ttf", "bad\xFF\xC3.ttf", "line\nend\r\x01.ttf",
                         " 100%25#x.ttf"};
    Names names = {"Kept"};
    WriteSystemFont("d--e-[f]\\.ttf", "Kept"); // which "d*e?[f]\.ttf" would be a pattern for
    for (size_t i = 0; i < files.size(); ++i) {
        names.insert(names.end() - 1, "Font" + std::to_string(i));
        WriteSystemFont(files[i], "Font" + std::to_string(i));
    }
    ASSERT_EQ(FontsElsewhere(), names);
    for (const std::string &file : files) {
        Disable(system_.File(file), kVLScopeUser);
        names.erase(names.begin());
        EXPECT_EQ(FontsElsewhere(), names) << file;
    }
    for (const std::string &file : files) Enable(system_.File(file), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), SizeIs(files.size() + 1));
}

TEST_F(DisabledFonts, MayBeFacesOfFilesWithUnusualNames) {
    const std::string path = system_.Write(" a&<*?[.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    Disable(path, kVLScopeUser, "postscript-name=C-Two");
    EXPECT_THAT(FontsElsewhere(), ElementsAre("C-One"));
    Disable(path, kVLScopeUser, "postscript-name=C%2DOne");
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(DisabledFonts, ForThisProcessAreTakenOutAndPutBackHereAlone) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeUser);
    Register(WriteFont("b.ttf", "Other"));
    Disable(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Other"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Ours"));
    Enable(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Other", "Ours"));
}

TEST_F(DisabledFonts, OfTheSystemStayForAProcessThatDisablesThemForItself) {
    const std::string path = WriteSystemFont("a.ttf", "System");
    Register(path);
    Disable(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
}

TEST_F(DisabledFonts, ForThisProcessAreWholeFiles) {
    const std::string path = fonts_.Write("c.ttc", MakeCollection({{"C", "One"}, {"C", "Two"}}));
    Register(path);
    Disable(path, kVLScopeProcess, "postscript-name=C-Two");
    EXPECT_THAT(Fonts(), ElementsAre("C-One", "C-Two"));
    Disable(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), IsEmpty());
    Enable(path, kVLScopeProcess, "postscript-name=C-Two");
    EXPECT_THAT(Fonts(), ElementsAre("C-One", "C-Two"));
}

TEST_F(DisabledFonts, AreEnabledAgainInAProcessThatRegistersThemAnew) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Disable(path, kVLScopeProcess);
    Withdraw(path);
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(DisabledFonts, LeaveAllApplicationFontsWhenTheConfigurationIsReadAnew) {
    const std::string path = WriteSystemFont("a.ttf", "System");
    AddByProgram(WriteFont("1.ttf", "First"));
    Register(WriteFont("2.ttf", "Ours"));
    AddByProgram(WriteFont("3.ttf", "Second"));
    ASSERT_TRUE(FcConfigSetRescanInterval(nullptr, 77));
    FcConfig *former = FcConfigReference(nullptr);
    Disable(path, kVLScopeUser);
    EXPECT_NE(FcConfigGetCurrent(), former);
    EXPECT_EQ(FcConfigGetRescanInterval(nullptr), 77);
    EXPECT_THAT(Fonts(), ElementsAre("First", "Ours", "Second"));
    // Who holds the former one can still use it.
    EXPECT_EQ(FcConfigGetFonts(former, FcSetSystem)->nfont, 1);
    EXPECT_EQ(FcConfigGetFonts(former, FcSetApplication)->nfont, 3);
    FcConfigDestroy(former);
}

TEST_F(DisabledFonts, LeaveApplicationFontsWithoutFilesWhenTheConfigurationIsReadAnew) {
    const std::string system = WriteSystemFont("a.ttf", "System");
    const std::string gone = WriteFont("1.ttf", "Gone");
    AddByProgram(gone);
    Register(WriteFont("2.ttf", "Ours"));
    AddByHand("Made");
    std::filesystem::remove(gone);
    Disable(system, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("Gone", "Made", "Ours"));
}

TEST_F(DisabledFonts, LeaveAProgramItsOwnConfiguration) {
    WriteSystemFont("a.ttf", "System");
    FcConfig *own = FcConfigCreate();
    ASSERT_TRUE(FcConfigSetCurrent(own));
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Disable(system_.File("a.ttf"), kVLScopeUser);
    EXPECT_EQ(FcConfigGetCurrent(), own);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Disable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    FcConfigDestroy(own);
}

TEST_F(DisabledFonts, LeaveAConfigurationThatTheProgramReadMoreInto) {
    WriteSystemFont("a.ttf", "System");
    const std::string more =
        home_.Write("more.conf", "<fontconfig><description>more</description></fontconfig>");
    ASSERT_TRUE(FcConfigParseAndLoad(FcConfigGetCurrent(), reinterpret_cast<const FcChar8 *>(more.c_str()),
                                     FcTrue));
    FcConfig *former = FcConfigGetCurrent();
    Disable(system_.File("a.ttf"), kVLScopeUser);
    EXPECT_EQ(FcConfigGetCurrent(), former);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(DisabledFonts, AreReadPastLinesThatAreNone) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    WriteSystemFont("b.ttf", "B");
    const std::string odd =
        "# a remark\nnonsense\nfile:///broken%2\nfile://relative\nfile:///zero%00\n"
        "file:///x#neither=1\nfile:///x#index=-7\nfile:///x#index=1x\n\xFF\xFE\x01\nftp:///a";
    home_.Write("config/vellum/disabled-fonts", odd + "\n\n\nfile://" + path);
    Disable(system_.File("b.ttf"), kVLScopeUser);
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    EXPECT_EQ(ReadText(ListFile()), odd + "\nfile://" + path + "\nfile://" + system_.File("b.ttf") + "\n");
}

TEST_F(DisabledFonts, AreLeftAsTheyAreWhenTheListCannotBeRead) {
    const std::string path = WriteFont("a.ttf", "Ours");
    const std::string system = WriteSystemFont("b.ttf", "System");
    home_.MakeFolder("config/vellum/disabled-fonts");
    Register(path);
    Disable(path, kVLScopeUser);
    Disable(system, kVLScopeUser);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    EXPECT_THAT(FontsElsewhere(), ElementsAre("System"));
    EXPECT_FALSE(std::filesystem::exists(ConfigFile("fontconfig/conf.d/50-vellum.conf")));
}

TEST_F(DisabledFonts, FillAListOfSixteenMebibytesAndNoMore) {
    const std::string path = WriteSystemFont("a.ttf", "System");
    const std::string line = "file://" + path + "\n";
    const std::string full = "#" + std::string((16 << 20) - line.size() - 1, 'x') + "\n";
    home_.Write("config/vellum/disabled-fonts", full);
    Disable(path, kVLScopeUser);
    EXPECT_TRUE(ReadText(ListFile()) == full); // one byte too long with another line
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    home_.Write("config/vellum/disabled-fonts", full.substr(1));
    Disable(path, kVLScopeUser);
    EXPECT_TRUE(ReadText(ListFile()) == full.substr(1) + line);
    EXPECT_THAT(Fonts(), IsEmpty());
    home_.Write("config/vellum/disabled-fonts", line + full);
    Enable(path, kVLScopeUser);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_TRUE(ReadText(ListFile()) == line + full);
}

TEST_F(DisabledFonts, ThatAnotherProcessListedAreSeenWithTheNextCall) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    home_.Write("config/vellum/disabled-fonts", "file://" + path + "\n");
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(DisabledFonts, LeaveSymbolicLinksToTheirFiles) {
    const std::string path = WriteSystemFont("a.ttf", "A");
    const std::string real = home_.Write("elsewhere/list", "# mine\n");
    home_.MakeFolder("config/vellum");
    std::filesystem::create_symlink(real, ListFile());
    Disable(path, kVLScopeUser);
    EXPECT_TRUE(std::filesystem::is_symlink(ListFile()));
    EXPECT_EQ(ReadText(real), "# mine\nfile://" + path + "\n");
}

TEST_F(DisabledFonts, OfTwoProcessesAtTheSameTimeAreAllKept) {
    constexpr int kFonts = 100;
    WriteSystemFont("kept.ttf", "Kept");
    std::vector<pid_t> children;
    for (const std::string prefix : {"x", "y"}) {
        for (int i = 0; i < kFonts; ++i)
            WriteSystemFont(prefix + std::to_string(i) + ".ttf", prefix + std::to_string(i));
    }
    for (const std::string prefix : {"x", "y"}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0; i < kFonts; ++i)
                Disable(system_.File(prefix + std::to_string(i) + ".ttf"), kVLScopeUser);
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_THAT(FontsElsewhere(), ElementsAre("Kept"));
    // No file of a half-done change is left: the list and its lock.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ConfigFile("vellum")), {}), 2);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ConfigFile("fontconfig/conf.d")), {}), 1);
}

} // namespace
} // namespace vellum::test
