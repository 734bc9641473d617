// SPDX-License-Identifier: MIT
// A service as a real process, which says when it is ready.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace vellum::test {

// A socket of that path on which a service says that it is ready.
int ListenForReadiness(const std::string &path);

// True when a process has ended, or sleeps with that file open: it waits for something there.
bool HasEndedOrWaitsAt(pid_t process, const std::string &file);

class StartedService {
public:
    StartedService() = default;
    ~StartedService();
    StartedService(const StartedService &) = delete;
    StartedService &operator=(const StartedService &) = delete;

    // Starts a program with --foreground and waits until it says that it is ready, in a socket at `ready`.
    // False when it ended instead.
    // `prepare` is done before in the new process; false ends it.
    bool Start(const char *program, const std::string &ready,
               const std::function<bool()> &prepare = nullptr);

    // The same in two steps, between which the process is known.
    void Begin(const char *program, const std::string &ready,
               const std::function<bool()> &prepare = nullptr);
    bool IsReady();

    // Ends it, waits for its end and gives what waitpid says; -1 for none that runs.
    int End(int signal);

    pid_t Process() const { return process_; }

private:
    pid_t process_ = -1;
    int ready_ = -1;
};

} // namespace vellum::test
