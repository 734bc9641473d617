// SPDX-License-Identifier: MIT
// The companion asks by a dialogue program: what that is told, and what each answer means.
#include "support/temp_dir.hpp"

#include <vellum/glyphary_ui.h>
#include <vellum/vellum.hpp>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace vellum::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

Ref<const ValString> String(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

Ref<const ValDictionary> RequestFor(std::string_view name) {
    const void *key = kVLFontPropertyFullName;
    const auto text = String(name);
    const void *value = text.Get();
    return Adopt(ValDictionaryCreate(&key, &value, 1));
}

class Companion : public ::testing::Test {
protected:
    Companion() {
        ::setenv("HOME", home.Path().c_str(), 1);
        ::setenv("DISPLAY", ":4711", 1);
        ::unsetenv("XDG_CURRENT_DESKTOP");
        ::unsetenv("VELLUM_COMPANION_ASKS");
        Find("CopyConfirmedFontsForAutoActivationRequest", confirm);
        Find("VLUIWarnUserNotToModifyGuardedFonts", warn);
        Find("VLUIConfirmAllowOverrideOfProtectedFont", allow);
    }

    // What the dialogue program does, in the shell's language.
    void AnswerWith(const std::string &script) const { home.Write("answer", script + "\n"); }

    // "none", or the number of the fonts; and "+" when it is to be remembered.
    std::string Confirm(const std::string &name = "Foo Bold") const {
        const auto request = RequestFor(name);
        const void *items[] = {font.Get()};
        const auto fonts = Adopt(ValArrayCreate(items, 1));
        bool remembers = true;
        const auto confirmed = Adopt(confirm(request.Get(), fonts.Get(), &remembers));
        EXPECT_TRUE(!confirmed || ValEqual(confirmed.Get(), fonts.Get()));
        return (confirmed ? std::to_string(ValArrayGetCount(confirmed.Get())) : "none") +
               (remembers ? "+" : "");
    }

    std::string Content(const std::string &name) const {
        std::ifstream stream(home.File(name));
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    std::string Called() const { return Content("called"); }
    bool WasCalled() const { return std::filesystem::exists(home.File("called")); }

    TempDir home;
    const std::string path = home.Write("fonts/Foo-Bold.ttf", "x");
    const Ref<const ValURL> font = FileURL(path);
    CopyConfirmedFontsForAutoActivationRequestFunction *confirm = nullptr;
    VLUIWarnUserNotToModifyGuardedFontsFunction *warn = nullptr;
    VLUIConfirmAllowOverrideOfProtectedFontFunction *allow = nullptr;

private:
    template <class Function>
    static void Find(const char *name, Function *&function) {
        void *library = ::dlopen(VELLUM_COMPANION_UNDER_TEST, RTLD_LAZY | RTLD_LOCAL);
        ASSERT_TRUE(library) << ::dlerror();
        function = reinterpret_cast<Function *>(::dlsym(library, name));
        ASSERT_TRUE(function) << name;
    }
};

TEST_F(Companion, TakesEachAnswerForWhatItSays) {
    const struct {
        const char *script;
        const char *expected;
    } kRows[] = {{"echo once", "1"},         {"echo always", "1+"},
                 {"echo not-now", "none"},   {"echo never", "none+"},
                 {"exit 1", "none"},         {"exit 0", "none"},
                 {"echo other", "none"},     {"echo once; echo x", "none"},
                 {"kill -9 $$", "none"},     {"printf once", "1"},
                 {"echo once; exit 1", "1"}, {"yes", "none"}};
    for (const auto &row : kRows) {
        AnswerWith(row.script);
        EXPECT_EQ(Confirm(), row.expected) << row.script;
    }
}

TEST_F(Companion, SaysWhichFontAndFromWhere) {
    AnswerWith("echo once");
    const bool has_attributes =
        ::setxattr(path.c_str(), "user.xdg.origin.url", "https://example.org/f", 21, 0) == 0;
    EXPECT_EQ(Confirm(), "1");
    EXPECT_THAT(Called(),
                StartsWith("zenity\n--list\n--radiolist\n--title=Missing font\n--text=The program "));
    EXPECT_THAT(Called(),
                AllOf(HasSubstr("needs a font that is not active: Foo Bold\n"),
                      HasSubstr("\n- " + path + "\n"), HasSubstr("\nnever\nNever in this program\n")));
    const std::string origin = "\n  (downloaded from https://example.org/f)\n";
    EXPECT_EQ(Called().find(origin) != std::string::npos, has_attributes);
}

TEST_F(Companion, AsksInTheWayOfTheDesktop) {
    AnswerWith("echo once");
    ::setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
    EXPECT_EQ(Confirm(), "1");
    EXPECT_THAT(Called(), StartsWith("kdialog\n--title\nMissing font\n--radiolist\nThe program "));
    EXPECT_THAT(Called(), HasSubstr("\nonce\nUse it this time\non\nalways\n"));
}

TEST_F(Companion, TakesNoTextForOptionsMarkupOrEscapes) {
    AnswerWith("echo once");
    EXPECT_EQ(Confirm("--help <b>&amp;\\n%s\x1b[31m\xE2\x80\xAE!"), "1");
    EXPECT_THAT(Called(), HasSubstr(": --help ＜b＞＆amp;＼n％s[31m!\n"));
    EXPECT_EQ(Confirm(std::string(5000, 'x')), "1");
    EXPECT_THAT(Called(), AllOf(HasSubstr(std::string(90, 'x')), Not(HasSubstr(std::string(101, 'x')))));
    EXPECT_EQ(Confirm("$(touch " + home.File("owned") + ")"), "1");
    EXPECT_FALSE(std::filesystem::exists(home.File("owned")));
}

TEST_F(Companion, RefusesWhereThereIsNoDisplay) {
    AnswerWith("echo always");
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    EXPECT_EQ(Confirm(), "none");
    EXPECT_FALSE(WasCalled());
    ::setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_EQ(Confirm(), "1+");
}

TEST_F(Companion, AsksNobodyInADialogueProgramOfItsOwn) {
    AnswerWith("echo once");
    EXPECT_EQ(Confirm(), "1");
    EXPECT_THAT(Content("environment"), HasSubstr("VELLUM_COMPANION_ASKS=1\n"));
    std::filesystem::remove(home.File("called"));
    ::setenv("VELLUM_COMPANION_ASKS", "1", 1);
    EXPECT_EQ(Confirm(), "none");
    EXPECT_FALSE(WasCalled());
}

TEST_F(Companion, TakesNoProgramFromTheCallersPathNorItsSurroundings) {
    AnswerWith("echo once");
    home.Write("bin/zenity", "#!/bin/sh\necho always\n");
    std::filesystem::permissions(home.File("bin/zenity"), std::filesystem::perms::owner_all);
    ::setenv("PATH", (home.File("bin") + ":/usr/bin:/bin").c_str(), 1);
    ::setenv("GTK_MODULES", "evil", 1);
    EXPECT_EQ(Confirm(), "1");
    EXPECT_THAT(Content("environment"), AllOf(HasSubstr("PATH=/usr/bin:/bin\n"),
                                              HasSubstr("DISPLAY=:4711\n"), Not(HasSubstr("evil"))));
}

TEST_F(Companion, WaitsForNobodyForEver) {
    using Clock = std::chrono::steady_clock;
    for (const char *script : {"exec sleep 600", "exec >&-; exec sleep 600", "echo once; exec sleep 600"}) {
        AnswerWith("echo $$ > $HOME/number; " + std::string(script));
        const auto begin = Clock::now();
        EXPECT_EQ(Confirm(), "none") << script;
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(60)) << script;
        EXPECT_NE(::kill(std::stoi(Content("number")), 0), 0) << "it still runs: " << script;
    }
}

TEST_F(Companion, WorksInAProgramThatLooksAfterNoChildren) {
    AnswerWith("echo always");
    ::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(Confirm(), "1+");
    ::signal(SIGCHLD, SIG_DFL);
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    AnswerWith("grep -q 'SigBlk:.0000000000000000' /proc/self/status && echo always");
    EXPECT_EQ(Confirm(), "1+");
}

TEST_F(Companion, HandsNoFileOfTheCallersOn) {
    const int leaked = ::dup2(0, 77);
    AnswerWith("[ -e /proc/self/fd/77 ] && echo always || echo once");
    EXPECT_EQ(Confirm(), "1");
    ::close(leaked);
}

TEST_F(Companion, AsksOneQuestionAtATime) {
    AnswerWith(
        "mkdir $HOME/asking || { echo never; exit; }; ls / >$HOME/listed; rmdir $HOME/asking; echo always");
    std::string answers[4];
    std::thread threads[4];
    for (int i = 0; i < 4; ++i) threads[i] = std::thread([&, i] { answers[i] = Confirm(); });
    for (auto &thread : threads) thread.join();
    for (const auto &answer : answers) EXPECT_EQ(answer, "1+");
}

TEST_F(Companion, LetsAProtectedFontBeReplacedOnlyWhenTheUserSaysSo) {
    AnswerWith("echo override");
    EXPECT_TRUE(allow(font.Get()));
    EXPECT_THAT(Called(), HasSubstr("Foo-Bold.ttf"));
    for (const char *script : {"echo keep", "exit 1", "echo once"}) {
        AnswerWith(script);
        EXPECT_FALSE(allow(font.Get())) << script;
    }
    EXPECT_FALSE(allow(nullptr));
}

TEST_F(Companion, WarnsOfGuardedFonts) {
    AnswerWith("exit 0");
    const void *items[] = {font.Get()};
    warn(Adopt(ValArrayCreate(items, 1)).Get());
    EXPECT_THAT(Called(), HasSubstr("they stay as they are:\n- Foo-Bold.ttf\n"));
}

} // namespace
} // namespace vellum::test
