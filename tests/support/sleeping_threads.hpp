// SPDX-License-Identifier: MIT
// Threads of this process that wait for something, as the system tells.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace vellum::test {

// Whether a thread waits. One that has ended does not.
inline bool IsAsleep(pid_t thread) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(stat, line);
    const size_t name = line.rfind(')');
    return name != std::string::npos && line.compare(name, 4, ") S ") == 0;
}

// Returns when all threads but this one wait; the test's time limit ends this where they never do.
inline void WaitUntilOthersSleep() {
    for (bool sleep = false; !sleep; std::this_thread::yield()) {
        sleep = true;
        for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
            const pid_t thread = std::stoi(task.path().filename().string());
            if (thread != ::gettid() && !IsAsleep(thread)) sleep = false;
        }
    }
}

} // namespace vellum::test
