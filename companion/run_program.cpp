// SPDX-License-Identifier: MIT
#include "run_program.hpp"

#include "asked_mark.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

extern "C" { // which the header of glibc 2.36 does not say itself
#include <sys/pidfd.h>
}

namespace vellum::companion {

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kLongestOutput = 4096;

// What a dialogue needs to find the display, and to look and speak as the user wants. Whatever else the
// caller's environment says was said to the caller.
constexpr const char *kPassedOn[] = {"DISPLAY",
                                     "WAYLAND_DISPLAY",
                                     "XAUTHORITY",
                                     "HOME",
                                     "XDG_RUNTIME_DIR",
                                     "DBUS_SESSION_BUS_ADDRESS",
                                     "LANG",
                                     "LANGUAGE",
                                     "LC_ALL",
                                     "LC_MESSAGES",
                                     "LC_CTYPE",
                                     "XDG_CURRENT_DESKTOP",
                                     "XDG_DATA_DIRS",
                                     "XDG_CONFIG_DIRS",
                                     "XDG_DATA_HOME",
                                     "XDG_CONFIG_HOME",
                                     "XDG_SESSION_TYPE",
                                     "GTK_THEME"};

std::vector<std::string> Environment() {
    std::vector<std::string> environment = {"PATH=/usr/bin:/bin", std::string(kAskedMark) + "=1"};
    for (const char *name : kPassedOn) {
        if (const char *value = ::secure_getenv(name))
            environment.push_back(std::string(name) + "=" + value);
    }
    return environment;
}

std::vector<char *> Pointers(const std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    for (const std::string &text : texts) pointers.push_back(const_cast<char *>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() { Close(); }

    int Get() const noexcept { return descriptor_; }
    void Close() noexcept {
        if (descriptor_ >= 0) ::close(descriptor_);
        descriptor_ = -1;
    }

private:
    int descriptor_;
};

// Starts a command with its output in a pipe; 0 or less when it can't be.
pid_t Start(const std::vector<std::string> &command, int output) {
    const auto environment = Environment();
    const auto arguments = Pointers(command), variables = Pointers(environment);
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    if (::posix_spawn_file_actions_init(&files) != 0) return -1;
    if (::posix_spawnattr_init(&attributes) != 0) {
        ::posix_spawn_file_actions_destroy(&files);
        return -1;
    }
    sigset_t none, all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setsigdefault(&attributes, &all);
    ::posix_spawnattr_setflags(&attributes,
                               POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    pid_t child = -1;
    const bool is_prepared =
        ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO) == 0 &&
        ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0 &&
        ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0) == 0 &&
        ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1) == 0;
    if (!is_prepared || ::posix_spawn(&child, command[0].c_str(), &files, &attributes, arguments.data(),
                                      variables.data()) != 0)
        child = -1;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    return child;
}

int MillisecondsUntil(Clock::time_point end) noexcept {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 1 << 30));
}

// Whether something can be read in time.
bool WaitFor(int descriptor, Clock::time_point end) noexcept {
    pollfd entry = {descriptor, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&entry, 1, MillisecondsUntil(end));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

// Whether the output ended in time.
bool ReadAll(int descriptor, Clock::time_point end, std::string &output) {
    char piece[512];
    while (WaitFor(descriptor, end)) {
        const ssize_t length = ::read(descriptor, piece, sizeof piece);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return length == 0;
        output.append(piece, static_cast<size_t>(length));
        if (output.size() > kLongestOutput) return false;
    }
    return false;
}

// Where the kernel gives no descriptor of a process, its number has to do.
void Kill(int process, pid_t child) noexcept {
    if (process < 0 || ::pidfd_send_signal(process, SIGKILL, nullptr, 0) != 0) ::kill(child, SIGKILL);
}

} // namespace

std::string OutputOf(const std::vector<std::string> &command, std::chrono::milliseconds patience) {
    const auto end = Clock::now() + patience;
    int ends[2];
    if (command.empty() || ::pipe2(ends, O_CLOEXEC) != 0) return {};
    Descriptor ours(ends[0]), theirs(ends[1]);
    std::string output;
    output.reserve(kLongestOutput + 512); // nothing is thrown while the child runs
    const pid_t child = Start(command, theirs.Get());
    if (child <= 0) return {};
    theirs.Close();
    const Descriptor process(::pidfd_open(child, 0));
    const bool has_ended =
        ReadAll(ours.Get(), end, output) && (process.Get() < 0 || WaitFor(process.Get(), end));
    if (!has_ended) {
        Kill(process.Get(), child);
        output.clear();
    }
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return output;
}

} // namespace vellum::companion
