// SPDX-License-Identifier: MIT
#include "tools/server_verb.hpp"

#include "tools/exit_code.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
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

// How long a server may take to begin, or to end.
constexpr int kPatience = 30'000; // milliseconds

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

// A socket on which a server says that it is ready, under a name that no file has.
int ListenForReadiness(std::string &name) {
    sockaddr_un address = {AF_UNIX, {}};
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    socklen_t size = sizeof(sa_family_t); // the system chooses the name
    if (::bind(socket, reinterpret_cast<const sockaddr *>(&address), size) != 0) return socket;
    size = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    name.assign(address.sun_path + 1, size - sizeof(sa_family_t) - 1);
    name.insert(name.begin(), '@');
    return socket;
}

// The child of this process that becomes the server, away from the terminal.
pid_t Spawn(const std::string &program, const std::string &ready) {
    const pid_t process = ::fork();
    if (process != 0) return process;
    ::setsid();
    ::setenv("NOTIFY_SOCKET", ready.c_str(), 1);
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nothing, standard);
    ::execlp(program.c_str(), program.c_str(), static_cast<char *>(nullptr));
    ::_exit(127);
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
    std::string name;
    const Descriptor ready(ListenForReadiness(name));
    const std::string program = ServerProgram();
    const pid_t process = Spawn(program, name);
    if (process < 0) return Problem(std::string("no process can be started: ") + std::strerror(errno));
    const Descriptor end(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    pollfd events[] = {{ready.Get(), POLLIN, 0}, {end.Get(), POLLIN, 0}};
    ::poll(events, 2, kPatience);
    if (!(events[0].revents & POLLIN)) return Problem(program + " did not start; try 'vellum server run'");
    std::cout << "the font server runs, as process " << process << '\n';
    return kDone;
}

int Stop() {
    const int32_t process = VLGetFontServerProcess();
    if (process == 0) {
        std::cout << "no font server runs\n";
        return kDone;
    }
    const Descriptor end(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    if (::kill(process, SIGTERM) != 0)
        return Problem("process " + std::to_string(process) +
                       " cannot be stopped: " + std::strerror(errno));
    pollfd event = {end.Get(), POLLIN, 0};
    if (end.Get() >= 0 && ::poll(&event, 1, kPatience) == 0)
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
