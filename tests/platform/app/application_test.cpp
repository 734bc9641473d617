// SPDX-License-Identifier: MIT
// Which application a process is, and of what kind. This program has no bundle.
#include "platform/app/application.hpp"
#include "platform/app/quarantine.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <cstdlib>
#include <string>

namespace vellum::test {
namespace {

class Application : public ::testing::Test {
protected:
    Application() {
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
        sources.flatpak_info = folder.File("flatpak-info");
        sources.control_groups = folder.File("cgroup");
        sources.process_state = folder.File("stat");
    }

    std::string Identifier() const { return TextOf(CopyApplicationIdentifier(sources)); }
    std::string IdentifierIn(const std::string &group) const {
        folder.Write("cgroup", "0::" + group + "\n");
        return Identifier();
    }
    bool IsDaemonIn(const std::string &group, int terminal = 0) const {
        folder.Write("cgroup", "0::" + group + "\n");
        folder.Write("stat", "12 (a) b (c) S 1 12 12 " + std::to_string(terminal) + " -1 4194304 0");
        return IsDaemonProcess(sources);
    }

    TempDir folder;
    ApplicationSources sources;
};

TEST_F(Application, HasNoIdentifierWhereNothingNamesOne) {
    EXPECT_EQ(Identifier(), "(null)");
    for (const char *group :
         {"/", "/system.slice/cron.service", "/user.slice/user-1000.slice/session-2.scope",
          "/app.slice/app-4711.scope", "/app.slice/app.slice", "/app.slice/app-gnome-.scope",
          "/app.slice/app-org.example.App.slice/vte-spawn-1.scope",
          "/app.slice/dbus-:1.2-org.a.B@0.service", "/app.slice/app-a\\x2fb-1.scope",
          "/app.slice/app-\\x01-1.scope", "/app.slice/app-\\xff-1.scope"})
        EXPECT_EQ(IdentifierIn(group), "(null)") << group;
}

TEST_F(Application, IsTheOneThatTheDesktopStartedInAUnit) {
    const std::string slice = "/user.slice/user-1000.slice/user@1000.service/app.slice/";
    EXPECT_EQ(IdentifierIn(slice + "app-gnome-org.example.App-4711.scope"), "org.example.App");
    EXPECT_EQ(IdentifierIn(slice + "app-org.example.App-4711.scope"), "org.example.App");
    EXPECT_EQ(IdentifierIn(slice + "app-KDE-org.example.App@1a2b.service"), "org.example.App");
    EXPECT_EQ(IdentifierIn(slice + "app-org.example.App.service"), "org.example.App");
    EXPECT_EQ(IdentifierIn(slice + "app-gnome-firefox\\x2desr-12.scope/inner"), "firefox-esr");
    EXPECT_EQ(IdentifierIn(slice + "app-a-1.scope/app-org.inner.App-2.scope"), "org.inner.App");
    EXPECT_EQ(IdentifierIn(slice + "app-a\\xzz\\x2-1.scope"), "a\\xzz\\x2");
}

TEST_F(Application, IsFoundInTheOlderHierarchyOfGroupsToo) {
    folder.Write("cgroup",
                 "12:pids:/x\n1:name=systemd:/app.slice/app-org.example.App-1.scope\n0::/other\n");
    EXPECT_EQ(Identifier(), "org.example.App");
}

TEST_F(Application, IsTheOneThatFlatpakRuns) {
    folder.Write("cgroup", "0::/app.slice/app-org.other.App-1.scope\n");
    folder.Write("flatpak-info", "[Application]\nname=org.example.App\nruntime=runtime/x\n[Instance]\n");
    EXPECT_EQ(Identifier(), "org.example.App");
    for (const char *text : {"[Application]\n", "no key file", "[Instance]\nname=org.example.App\n"}) {
        folder.Write("flatpak-info", text);
        EXPECT_EQ(Identifier(), "org.other.App") << text;
    }
}

TEST_F(Application, IsADaemonAsASystemServiceWithoutDisplayAndTerminal) {
    EXPECT_TRUE(IsDaemonIn("/system.slice/cron.service"));
    EXPECT_TRUE(IsDaemonIn("/system.slice/system-a.slice/a@1.service/inner"));
    EXPECT_FALSE(IsDaemonIn("/user.slice/user-1000.slice/user@1000.service/app.slice/a.service"));
    EXPECT_FALSE(IsDaemonIn("/user.slice/user-0.slice/session-1.scope"));
    EXPECT_FALSE(IsDaemonIn("/system.slice/docker-1.scope"));
    EXPECT_FALSE(IsDaemonIn("/"));
    EXPECT_FALSE(IsDaemonIn("/system.slice/cron.service", 34816));
    for (const char *display : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        ::setenv(display, ":0", 1);
        EXPECT_FALSE(IsDaemonIn("/system.slice/cron.service")) << display;
        ::setenv(display, "", 1);
        EXPECT_TRUE(IsDaemonIn("/system.slice/cron.service")) << display;
    }
}

TEST_F(Application, HasEveryCompatibilityFix) {
    EXPECT_TRUE(HasCompatibilityFix("4748664"));
}

TEST_F(Application, DeclaresWithABooleanOrANumber) {
    const auto declares = [](const void *value) {
        const auto key = String("key");
        const void *name = key.Get();
        return DeclaresTrue(Adopt(ValDictionaryCreate(&name, &value, 1)).Get(), key.Get());
    };
    EXPECT_TRUE(declares(kValBooleanTrue));
    EXPECT_TRUE(declares(Adopt(ValNumberCreateSInt64(1)).Get()));
    EXPECT_TRUE(declares(Adopt(ValNumberCreateFloat64(0.5)).Get()));
    EXPECT_FALSE(declares(kValBooleanFalse));
    EXPECT_FALSE(declares(Adopt(ValNumberCreateSInt64(0)).Get()));
    EXPECT_FALSE(declares(String("true").Get()));
    EXPECT_FALSE(DeclaresTrue(nullptr, String("key").Get()));
}

TEST_F(Application, FindsFilesQuarantinedThatCameFromElsewhere) {
    const std::string path = folder.Write("font.ttf", "x");
    EXPECT_FALSE(IsQuarantined(path.c_str()));
    EXPECT_FALSE(IsQuarantined(folder.File("absent").c_str()));
    if (::setxattr(path.c_str(), "user.xdg.origin.url", "", 0, 0) != 0)
        GTEST_SKIP() << "the file system has no attributes of users";
    EXPECT_TRUE(IsQuarantined(path.c_str()));
}

} // namespace
} // namespace vellum::test
