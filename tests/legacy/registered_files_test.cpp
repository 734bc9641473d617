// SPDX-License-Identifier: MIT
// Font files that a process registers, as that process's fontconfig sees them.
#include "service_fixture.hpp"

#include <sys/stat.h>

#include <fstream>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RegisteredFiles : public LegacyTest {};

// What fontconfig takes for a family, by its usual way of matching.
std::string MatchFamily(const char *family) {
    FcPattern *pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8 *>(family));
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern *match = FcFontMatch(nullptr, pattern, &result);
    FcChar8 *name = nullptr;
    std::string found;
    if (match && FcPatternGetString(match, FC_POSTSCRIPT_NAME, 0, &name) == FcResultMatch)
        found = reinterpret_cast<const char *>(name);
    if (match) FcPatternDestroy(match);
    FcPatternDestroy(pattern);
    return found;
}

TEST_F(RegisteredFiles, AreFoundAtOnceAndNoMoreWhenWithdrawn) {
    WriteSystemFont("system.ttf", "System");
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours", "System"));
    EXPECT_EQ(MatchFamily("Ours"), "Ours");
    Withdraw(path);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    EXPECT_EQ(MatchFamily("Ours"), "System");
}

TEST_F(RegisteredFiles, AreNotSeenByOtherPrograms) {
    Register(WriteFont("a.ttf", "Process"), kVLScopeProcess);
    Register(WriteFont("b.ttf", "Session"), kVLScopeSession);
    EXPECT_THAT(Fonts(), ElementsAre("Process", "Session"));
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
    EXPECT_FALSE(std::ifstream(ConfigFile("fontconfig/conf.d/50-vellum.conf")).is_open());
}

TEST_F(RegisteredFiles, ComeAndGoAsAnArray) {
    const std::vector<Ref<const ValURL>> urls = {fonts_.Add("a.ttf", NamedFace{"A"}),
                                                 fonts_.Add("b.ttf", NamedFace{"B"}),
                                                 fonts_.Add("c.ttf", NamedFace{"C"})};
    const std::vector<const void *> items = {urls[0].Get(), urls[1].Get(), urls[2].Get()};
    const auto all = Adopt(ValArrayCreate(items.data(), 3));
    const auto first_two = Adopt(ValArrayCreate(items.data(), 2));
    service_.register_urls(all.Get(), 1, 1, 0, 0, kVLScopeProcess);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("A-Regular", "B-Regular", "C-Regular"));
    service_.register_urls(first_two.Get(), 1, 0, 0, 0, kVLScopeProcess);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("C-Regular"));
}

TEST_F(RegisteredFiles, StayUntilTheyAreWithdrawnAsOftenAsTheyWereRegistered) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), IsEmpty());
    Withdraw(path);
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(RegisteredFiles, OfTheSystemAreNotListedTwiceAndStayWhenWithdrawn) {
    const std::string path = WriteSystemFont("folder/system.ttf", "System");
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
    EXPECT_THAT(ApplicationFonts(), IsEmpty());
    Withdraw(path);
    EXPECT_THAT(Fonts(), ElementsAre("System"));
}

TEST_F(RegisteredFiles, AreTheSameFileHoweverThePathIsSpelt) {
    const std::string path = WriteSystemFont("folder/system.ttf", "System");
    WriteFont("a.ttf", "Ours");
    Register(system_.File("/folder/./system.ttf"));
    Register(fonts_.File("/./a.ttf"));
    EXPECT_THAT(Fonts(), ElementsAre("Ours", "System"));
    Withdraw(fonts_.File("a.ttf"));
    EXPECT_THAT(Fonts(), ElementsAre("System"));
}

TEST_F(RegisteredFiles, WithTheFlagOfTheSystemsFontsAreLeftAlone) {
    service_.register_urls(FileURL(WriteFont("a.ttf", "Ours")).Get(), 0, 1, 0, kVLFontFlagSystem,
                           kVLScopeAll);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsElsewhere(), IsEmpty());
}

TEST_F(RegisteredFiles, LeaveTheProgramsOwnApplicationFontsInTheirOrder) {
    AddByProgram(WriteFont("1.ttf", "First"));
    const std::string ours = WriteFont("2.ttf", "Ours");
    const std::string kept = WriteFont("3.ttf", "Kept");
    Register(ours);
    AddByProgram(fonts_.Write("4.ttc", MakeCollection({{"Second", "A"}, {"Second", "B"}})));
    Register(kept);
    AddByProgram(WriteFont("5.ttf", "Third"));
    Withdraw(ours);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("First", "Second-A", "Second-B", "Kept", "Third"));
}

TEST_F(RegisteredFiles, ThatTheProgramHasAddedAreNotListedTwiceAndStayItsOwn) {
    const std::string path = WriteFont("a.ttf", "Shared");
    const std::string other = WriteFont("b.ttf", "Other");
    AddByProgram(path);
    Register(path);
    Register(other);
    EXPECT_THAT(Fonts(), ElementsAre("Other", "Shared"));
    Withdraw(path);
    Withdraw(other);
    EXPECT_THAT(Fonts(), ElementsAre("Shared"));
}

TEST_F(RegisteredFiles, ThatTheProgramAddsAfterwardsStayItsOwn) {
    const std::string path = WriteFont("a.ttf", "Shared");
    Register(path);
    AddByProgram(path);
    Withdraw(path);
    EXPECT_THAT(Fonts(), ElementsAre("Shared"));
}

TEST_F(RegisteredFiles, ComeBackAfterTheProgramClearedItsApplicationFonts) {
    Register(WriteFont("a.ttf", "One"));
    Register(WriteFont("b.ttf", "Two"));
    FcConfigAppFontClear(FcConfigGetCurrent());
    service_.font_notify(1, 0);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("One", "Two"));
}

// Sets and fonts are then likely to lie where others lay.
TEST_F(RegisteredFiles, AreNotTakenForOthersThatTheProgramPutInTheirPlace) {
    const std::string path = WriteFont("a.ttf", "One");
    const std::string other = WriteFont("b.ttf", "Two");
    for (int i = 0; i < 20; ++i) {
        Register(path);
        FcConfigAppFontClear(FcConfigGetCurrent());
        AddByProgram(other);
        service_.font_notify(1, 0);
        EXPECT_THAT(Fonts(), ElementsAre("One", "Two"));
        Withdraw(path);
        EXPECT_THAT(Fonts(), ElementsAre("Two"));
        FcConfigAppFontClear(FcConfigGetCurrent());
    }
}

TEST_F(RegisteredFiles, ComeIntoTheConfigurationThatTheProgramMadeCurrent) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    ASSERT_TRUE(FcInitReinitialize());
    EXPECT_THAT(Fonts(), IsEmpty());
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(RegisteredFiles, ThatTheSystemHasGottenSinceAreNotListedTwice) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    home_.Write("config/fontconfig/conf.d/10-more.conf",
                "<fontconfig><dir>" + fonts_.Path() + "</dir></fontconfig>");
    ASSERT_TRUE(FcInitReinitialize());
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(RegisteredFiles, MayHaveAnyBytesInTheirNames) {
    const Names files = {"a & b <c>.ttf", "d*e?[f].ttf",  "bad\xFF\xC3.ttf",
                         "line\nend.ttf", "100%25#x.ttf", "\\ back.ttf"};
    Names names;
    for (size_t i = 0; i < files.size(); ++i) {
        names.push_back("Font" + std::to_string(i));
        Register(WriteFont(files[i], names.back()));
    }
    EXPECT_EQ(Fonts(), names);
    for (const std::string &file : files) Withdraw(fonts_.File(file));
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(RegisteredFiles, ThatAreNoneAreLeftOut) {
    const std::string pipe = fonts_.File("pipe.ttf");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Register(pipe); // would wait for a writer, were it opened
    Register(fonts_.File("missing.ttf"));
    Register(fonts_.Path());
    Register(fonts_.Write("text.ttf", "no font"));
    const std::string path = WriteFont("a.ttf", "Ours");
    const auto text = Adopt(ValStringCreateWithCString("text"));
    const auto good = FileURL(path);
    const auto web = MakeURL("https://example.com" + path);
    const auto memory = MakeURL("file://inMemory_0x1234" + WriteFont("b.ttf", "Elsewhere"));
    const std::vector<const void *> items = {nullptr, text.Get(), web.Get(), memory.Get(), good.Get()};
    const auto array = Adopt(ValArrayCreate(items.data(), items.size()));
    service_.register_urls(nullptr, 0, 1, 0, 0, kVLScopeProcess);
    service_.register_urls(nullptr, 1, 1, 0, 0, kVLScopeProcess);
    service_.register_urls(text.Get(), 1, 1, 0, 0, kVLScopeProcess);
    service_.register_urls(array.Get(), 0, 1, 0, 0, kVLScopeProcess);
    EXPECT_THAT(Fonts(), IsEmpty());
    service_.register_urls(array.Get(), 1, 1, 0, 0, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

} // namespace
} // namespace vellum::test
