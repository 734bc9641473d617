// SPDX-License-Identifier: MIT
// A font server of a test's own: a real process with folders of its own.
#pragma once

#include "support/service_home.hpp"
#include "support/started_service.hpp"

#include <sys/types.h>

#include <functional>
#include <string>
#include <utility>

namespace vellum::test {

// Points this process at folders of its own, too, so that it meets this server and no other. To be made
// before the library is asked for anything.
class RunningServer {
public:
    // The system's fonts are those that lie under System() when the server starts.
    RunningServer();
    RunningServer(const RunningServer &) = delete;
    RunningServer &operator=(const RunningServer &) = delete;

    // Starts a server and waits until it says that it is ready. False when it ended instead.
    bool Start();

    // Ends it, waits for its end and gives what waitpid says: by SIGTERM, or by SIGKILL.
    int Stop();
    int Kill();

    pid_t Process() const { return service_.Process(); }

    // Has servers that start from now on do something before they are what they are, in the new process.
    // False ends it.
    void Prepare(std::function<bool()> prepare) { prepare_ = std::move(prepare); }

    // The folder of the system's fonts, and the user's.
    TempDir &System() { return root_; }
    static const std::string &SystemFolder();
    std::string UserFolder() const { return home_.Path() + "/data/fonts"; }
    const TempDir &Home() const { return home_; }

private:
    TempDir root_;
    ServiceHome home_;
    std::function<bool()> prepare_;
    StartedService service_;
};

} // namespace vellum::test
