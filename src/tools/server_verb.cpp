// SPDX-License-Identifier: MIT
#include "tools/server_verb.hpp"

#include "tools/exit_code.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

namespace vellum::tool {

namespace {

namespace fs = std::filesystem;

// How long a server may take to end.
constexpr int kPatience = 30'000; // milliseconds

// How the child ends that has found no server's program.
constexpr int kCannotRun = 127;

// Beside the tool where it was installed, or where it was built; else wherever programs are looked for.
std::string ServerProgram() {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const char *place : {VELLUM_SERVER_FROM_TOOL, "../server/vellum-fontserver"})
        if (const fs::path program = folder / place; fs::exists(program, error)) return program.string();
    return "vellum-fontserver";
}

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    int Get() const { return descriptor_; }

private:
    const int descriptor_;
};

// The child of this process that becomes the command which starts the server; it returns when that answers.
pid_t Spawn(const std::string &program) {
    const pid_t process = ::fork();
    if (process != 0) return process;
    ::unsetenv("NOTIFY_SOCKET"); // whoever looks after this run has not asked for the server
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO}) ::dup2(nothing, standard);
    ::execlp(program.c_str(), program.c_str(), static_cast<char *>(nullptr));
    ::_exit(kCannotRun);
}

int Problem(const std::string &what) {
    std::cerr << "vellum: " << what << '\n';
    return kNothingFound;
}

int Start() {
    if (const int32_t process = VLGetFontServerProcess()) {
        std::cout << "the font server runs already, as process " << process << '\n';
        return kDone;
    }
    const std::string program = ServerProgram();
    const pid_t starter = Spawn(program);
    if (starter < 0) return Problem(std::string("no process can be started: ") + std::strerror(errno));
    int status = -1;
    while (::waitpid(starter, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == kCannotRun)
        return Problem(program + " cannot be run; is it installed?");
    const int32_t process = VLGetFontServerProcess();
    if (status != 0 || process == 0)
        return Problem("the font server did not start; try 'vellum server run'");
    std::cout << "the font server runs, as process " << process << '\n';
    return kDone;
}

// True once the process is gone. Where the system has no way to be told, it is looked for.
bool WaitForEnd(int32_t process, const Descriptor &end) {
    pollfd event = {end.Get(), POLLIN, 0};
    if (end.Get() >= 0) return ::poll(&event, 1, kPatience) == 1;
    constexpr int kPause = 10; // milliseconds
    for (int waited = 0; ::kill(process, 0) == 0; waited += kPause) {
        if (waited >= kPatience) return false;
        ::poll(nullptr, 0, kPause);
    }
    return true;
}

int Stop() {
    const int32_t process = VLGetFontServerProcess();
    if (process == 0) {
        std::cout << "no font server runs\n";
        return kDone;
    }
    const Descriptor end(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    if (::kill(process, SIGTERM) != 0 && errno != ESRCH)
        return Problem("process " + std::to_string(process) +
                       " cannot be stopped: " + std::strerror(errno));
    if (!WaitForEnd(process, end))
        return Problem("process " + std::to_string(process) + " does not end; try 'kill -9 " +
                       std::to_string(process) + "', which loses nothing that was acknowledged");
    std::cout << "the font server has ended\n";
    return kDone;
}

int Status() {
    const int32_t process = VLGetFontServerProcess();
    if (process == 0 && !VLFontServerAnswers()) {
        ReportNoServer("'vellum server start' starts one");
        return kNoServer;
    }
    const auto fonts = Adopt(VLCopyAvailableFontURLs(kVLScopeUser));
    const auto families = Adopt(VLCopyAvailableFamilyNames(kVLScopeUser));
    std::cout << "the font server runs, as process " << process << ": "
              << Counted(ValArrayGetCount(fonts.Get()), "font", "fonts") << " in "
              << Counted(ValArrayGetCount(families.Get()), "family", "families") << '\n';
    return kDone;
}

int RunHere() {
    const std::string program = ServerProgram();
    std::cout.flush();
    ::execlp(program.c_str(), program.c_str(), "--foreground", static_cast<char *>(nullptr));
    return Problem(program + ": " + std::strerror(errno));
}

} // namespace

void AddServer(CLI::App &app, int &result) {
    CLI::App *verb = app.add_subcommand("server", "Start, stop or look after the font server.");
    verb->require_subcommand(1);
    const auto add = [&](const char *name, const char *what, int (*run)()) {
        verb->add_subcommand(name, what)->callback([run, &result] { result = run(); });
    };
    add("start", "start it in the background", Start);
    add("stop", "end it; what is registered stays so", Stop);
    add("status", "say whether it runs, and what it holds", Status);
    add("run", "be it, until interrupted; what goes wrong is shown", RunHere);
    verb->footer(
        "Exit codes: 0 done; 1 it could not be done; 2 wrong usage; 3 no font server runs (status).\n\n"
        "Example:\n  vellum server start\n");
}

} // namespace vellum::tool
