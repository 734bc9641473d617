// SPDX-License-Identifier: MIT
// Font files that a process registers, as that process's fontconfig sees them.
#include "service_fixture.hpp"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RegisteredFiles : public LegacyTest {};

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

TEST_F(RegisteredFiles, GoWithOneWithdrawalHoweverOftenTheyWereRegistered) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path);
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), IsEmpty());
    Withdraw(path);
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
}

TEST_F(RegisteredFiles, ThatWereToldOfBeforeTheyCouldBeReadGoWithOneWithdrawal) {
    const std::string path = fonts_.Write("a.ttf", "half of it");
    Register(path);
    EXPECT_THAT(Fonts(), IsEmpty());
    WriteFont("a.ttf", "Ours");
    Register(path);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(RegisteredFiles, StayAsLongAsEitherRegisterHasThem) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeProcess);
    Register(path, kVLScopeSession);
    Withdraw(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path, kVLScopeProcess);
    EXPECT_THAT(Fonts(), ElementsAre("Ours"));
    Withdraw(path, kVLScopeSession);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(RegisteredFiles, StayWhenTheOtherRegisterIsToldToDropThem) {
    const std::string path = WriteFont("a.ttf", "Ours");
    Register(path, kVLScopeProcess);
    for (const VLScope scope : std::initializer_list<VLScope>{0, kVLScopeSession, kVLScopeAll}) {
        Withdraw(path, scope);
        EXPECT_THAT(Fonts(), ElementsAre("Ours")) << scope;
    }
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

TEST_F(RegisteredFiles, LeaveAFontOfTheProgramsWhoseFileHasGone) {
    const std::string ours = WriteFont("1.ttf", "Ours");
    const std::string theirs = WriteFont("2.ttf", "Theirs");
    Register(ours);
    AddByProgram(theirs);
    AddByProgram(WriteFont("3.ttf", "Last"));
    std::filesystem::remove(theirs);
    Withdraw(ours);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("Theirs", "Last"));
}

TEST_F(RegisteredFiles, LeaveAFontThatTheProgramPutIntoTheSetByHand) {
    const std::string ours = WriteFont("1.ttf", "Ours");
    Register(ours);
    AddByHand("Made");
    AddByHand("OfTheSameFile", ours);
    Withdraw(ours);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("Made", "OfTheSameFile"));
}

// The files in a folder that this process, or any, opens from now on.
class OpenedFiles {
public:
    explicit OpenedFiles(const std::string &folder) : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (inotify_add_watch(events_, folder.c_str(), IN_OPEN) < 0) ADD_FAILURE() << "nothing is seen";
    }
    ~OpenedFiles() { close(events_); }
    OpenedFiles(const OpenedFiles &) = delete;
    OpenedFiles &operator=(const OpenedFiles &) = delete;

    // Whether one was opened since this was last asked.
    bool Any() const {
        char events[4096];
        bool any = false;
        while (read(events_, events, sizeof events) > 0) any = true;
        return any;
    }

private:
    const int events_;
};

TEST_F(RegisteredFiles, AreWithdrawnOneByOneWithoutOpeningTheOthers) {
    constexpr size_t kFiles = 300;
    Names files, names;
    for (size_t i = 0; i < kFiles; ++i) {
        names.push_back("Font" + std::to_string(i));
        files.push_back(WriteFont(names.back() + ".ttf", names.back()));
    }
    const OpenedFiles opened(fonts_.Path());
    Register(files.front());
    EXPECT_TRUE(opened.Any()); // it is seen when there is something to be seen
    for (const std::string &file : files) Register(file);
    EXPECT_EQ(ApplicationFonts(), names);
    EXPECT_TRUE(opened.Any());
    while (!files.empty()) {
        Withdraw(files.front());
        files.erase(files.begin());
        names.erase(names.begin());
        ASSERT_FALSE(opened.Any()) << files.size() << " are left";
        ASSERT_EQ(ApplicationFonts(), names);
    }
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
