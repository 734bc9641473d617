// SPDX-License-Identifier: MIT
// How the server's program starts and ends: it goes to the background and says how that went, is the only
// one of its name, and leaves nothing behind.
#include "platform/port/service_address.hpp"
#include "running_server.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"

#include <vellum/vellum.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

namespace vellum::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kFonts[] = "com.orrery.FontServer", kHub[] = "com.orrery.DistributedNotifications";

struct Ended {
    int exit_code;
    std::string output, errors;
};

std::string ContentOf(const fs::path &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Background : public ::testing::Test {
protected:
    // Those that leave their parent are this process's children then, and can be waited for.
    Background() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }

    ~Background() override {
        if (const pid_t left = VLGetFontServerProcess()) {
            ::kill(left, SIGKILL);
            ::waitpid(left, nullptr, 0);
        }
    }

    // Starts the program; `prepare` is done in its process before.
    pid_t Begin(std::vector<std::string> arguments = {}, const std::function<void()> &prepare = nullptr,
                const std::string &name = "run") {
        const std::string out = folder.File(name + ".out"), err = folder.File(name + ".err");
        const pid_t process = ::fork();
        if (process != 0) return process;
        ::dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        if (prepare) prepare();
        std::vector<char *> pointers = {const_cast<char *>(VELLUM_FONTSERVER)};
        for (std::string &argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        ::execv(VELLUM_FONTSERVER, pointers.data());
        ::_exit(127);
    }

    Ended End(pid_t process, const std::string &name = "run") {
        int status = -1;
        ::waitpid(process, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentOf(folder.File(name + ".out")),
                ContentOf(folder.File(name + ".err"))};
    }

    Ended Run(std::vector<std::string> arguments = {}, const std::function<void()> &prepare = nullptr) {
        return End(Begin(std::move(arguments), prepare));
    }

    // Ends the one that is in the background.
    static int Stop(pid_t process) {
        int status = -1;
        ::kill(process, SIGTERM);
        ::waitpid(process, &status, 0);
        return status;
    }

    std::string Services() const { return server.Home().File("run/vellum/"); }

    RunningServer server; // its folders; it is started otherwise here
    TempDir folder;
};

TEST_F(Background, StartReturnsOnceTheServerAnswersWithAllFonts) {
    for (int i = 0; i < 200; ++i) {
        const std::string family = "F" + std::to_string(i);
        server.System().Write(RunningServer::SystemFolder() + "/" + family + ".ttf", MakeFont({family}));
    }
    const Ended start = Run();
    EXPECT_EQ(start.exit_code, 0);
    EXPECT_EQ(start.output + start.errors, "");
    EXPECT_NE(VLGetFontServerProcess(), 0);
    EXPECT_EQ(ValArrayGetCount(Adopt(VLCopyAvailableFontURLs(kVLScopeUser)).Get()), 200u);
}

TEST_F(Background, ServerHasASessionOfItsOwnAndHoldsNothingOfTheStarters) {
    std::array<int, 2> ends;
    ASSERT_EQ(::pipe(ends.data()), 0);
    ASSERT_EQ(Run().exit_code, 0);
    ::close(ends[1]);
    pollfd end = {ends[0], POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 10'000), 1);
    EXPECT_TRUE(end.revents & POLLHUP); // nobody else has the other end
    ::close(ends[0]);
    const pid_t process = VLGetFontServerProcess();
    EXPECT_NE(::getsid(process), ::getsid(0));
    EXPECT_NE(::getsid(process), process); // a leader would get any terminal that it opens
    const fs::path about = "/proc/" + std::to_string(process);
    EXPECT_EQ(fs::read_symlink(about / "cwd"), "/");
    for (const char *standard : {"0", "1", "2"})
        EXPECT_EQ(fs::read_symlink(about / "fd" / standard), "/dev/null");
}

TEST_F(Background, ServerStartsWithoutStandardStreams) {
    const Ended start = Run({}, [] {
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(standard);
    });
    EXPECT_EQ(start.exit_code, 0);
    EXPECT_NE(VLGetFontServerProcess(), 0);
}

TEST_F(Background, StartThatFailsSaysWhy) {
    const Ended start = Run({}, [] { ::setenv("VL_SERVICE_NAME_SUFFIX", "/elsewhere", 1); });
    EXPECT_EQ(start.exit_code, 1);
    EXPECT_EQ(start.output, "");
    EXPECT_THAT(start.errors, HasSubstr("vellum-fontserver: VL_SERVICE_NAME_SUFFIX makes no name"));
    EXPECT_EQ(VLGetFontServerProcess(), 0);
}

TEST_F(Background, ProgramSaysWhatItIsAndWhatItDoesNotKnow) {
    EXPECT_THAT(Run({"--help"}).output, HasSubstr("Usage: vellum-fontserver"));
    EXPECT_THAT(Run({"--version"}).output, StartsWith("vellum-fontserver "));
    for (const char *unknown : {"--foregroun", "", "x"}) {
        const Ended start = Run({"--foreground", unknown});
        EXPECT_EQ(start.exit_code, 2);
        EXPECT_EQ(start.output, "");
        EXPECT_EQ(start.errors,
                  "vellum-fontserver: unknown argument '" + std::string(unknown) + "'; try --help\n");
    }
    EXPECT_EQ(VLGetFontServerProcess(), 0);
}

TEST_F(Background, SecondServerSaysThatOneRunsAndEndsWell) {
    ASSERT_EQ(Run().exit_code, 0);
    const pid_t first = VLGetFontServerProcess();
    for (const std::vector<std::string> &arguments : {std::vector<std::string>(), {"--foreground"}}) {
        const Ended second = Run(arguments);
        EXPECT_EQ(second.exit_code, 0);
        EXPECT_EQ(second.output, "vellum-fontserver: a font server runs already\n");
        EXPECT_EQ(second.errors, "");
    }
    EXPECT_EQ(VLGetFontServerProcess(), first);
}

TEST_F(Background, OfManyThatStartAtOnceOneServes) {
    std::vector<pid_t> starts;
    for (int i = 0; i < 8; ++i) starts.push_back(Begin({}, nullptr, std::to_string(i)));
    size_t served = 0;
    for (size_t i = 0; i < starts.size(); ++i) {
        const Ended start = End(starts[i], std::to_string(i));
        EXPECT_EQ(start.exit_code, 0) << start.errors;
        served += start.output.empty();
    }
    EXPECT_EQ(served, 1u);
    EXPECT_NE(VLGetFontServerProcess(), 0);
}

TEST_F(Background, ServerWaitsForOneThatIsJustEnding) {
    server.Home().MakeFolder("run/vellum");
    ::chmod(Services().c_str(), 0700);
    const std::string path = Services() + kFonts + ".lock";
    const int lock = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    const pid_t process = Begin({"--foreground"});
    while (!HasEndedOrWaitsAt(process, path)) std::this_thread::yield();
    ::close(lock);
    while (VLGetFontServerProcess() == 0) ASSERT_EQ(::waitpid(process, nullptr, WNOHANG), 0);
    EXPECT_EQ(VLGetFontServerProcess(), process);
}

TEST_F(Background, ServerStaysWhereAServiceManagerHasStartedIt) {
    const std::string ready = server.Home().File("manager");
    const int manager = ListenForReadiness(ready);
    const pid_t process = Begin({}, [&] { ::setenv("NOTIFY_SOCKET", ready.c_str(), 1); });
    std::array<char, 16> text = {};
    EXPECT_GT(::recv(manager, text.data(), text.size(), 0), 0);
    ::close(manager);
    EXPECT_STREQ(text.data(), "READY=1");
    EXPECT_EQ(VLGetFontServerProcess(), process);
}

TEST_F(Background, ServerThatIsStoppedLeavesNoSockets) {
    ASSERT_EQ(Run().exit_code, 0);
    EXPECT_TRUE(ServiceHasSocket(kFonts) && ServiceHasSocket(kHub));
    EXPECT_EQ(Stop(VLGetFontServerProcess()), 0);
    EXPECT_FALSE(ServiceHasSocket(kFonts) || ServiceHasSocket(kHub));
}

TEST_F(Background, ServerThatIsStoppedLeavesAnotherOnesSocketAlone) {
    ASSERT_EQ(Run().exit_code, 0);
    const pid_t process = VLGetFontServerProcess();
    const TDescriptor other = ListenAsService(kFonts); // in its place
    EXPECT_EQ(Stop(process), 0);
    EXPECT_TRUE(ServiceHasSocket(kFonts));
    EXPECT_FALSE(ServiceHasSocket(kHub));
}

TEST_F(Background, ServerThatIsStoppedLeavesTheSocketThatItWasGiven) {
    server.Home().MakeFolder("run/vellum");
    ::chmod(Services().c_str(), 0700);
    const TDescriptor listener = ListenAsService(kFonts);
    ASSERT_TRUE(listener.IsOpen());
    const pid_t process = Begin({}, [&] {
        ::dup2(listener.Get(), 3);
        ::fcntl(3, F_SETFD, 0); // which dup2 leaves where 3 is the listener itself
        ::setenv("LISTEN_PID", std::to_string(::getpid()).c_str(), 1);
        ::setenv("LISTEN_FDS", "1", 1);
    });
    while (VLGetFontServerProcess() == 0) ASSERT_EQ(::waitpid(process, nullptr, WNOHANG), 0);
    EXPECT_EQ(VLGetFontServerProcess(), process);
    EXPECT_EQ(Stop(process), 0);
    EXPECT_TRUE(ServiceHasSocket(kFonts));
    EXPECT_FALSE(ServiceHasSocket(kHub));
}

TEST_F(Background, ServerStartsInPlaceOfOneThatWasKilled) {
    ASSERT_EQ(Run().exit_code, 0);
    const pid_t first = VLGetFontServerProcess();
    ::kill(first, SIGKILL);
    ::waitpid(first, nullptr, 0);
    EXPECT_TRUE(ServiceHasSocket(kFonts)); // of nobody
    ASSERT_EQ(Run().exit_code, 0);
    EXPECT_NE(VLGetFontServerProcess(), 0);
    EXPECT_NE(VLGetFontServerProcess(), first);
}

} // namespace
} // namespace vellum::test
