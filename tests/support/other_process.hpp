// SPDX-License-Identifier: MIT
// Another process of a test's, which does some work and ends with the object at the latest.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace vellum::test {

class OtherProcess {
public:
    // Waits until the work says that it is ready, or ends. To be made before this process has threads.
    explicit OtherProcess(const std::function<void()> &work) {
        int ready[2];
        EXPECT_EQ(::pipe2(ready, O_CLOEXEC), 0);
        process_ = ::fork();
        if (process_ == 0) {
            sReady = ready[1];
            work();
            ::_exit(0);
        }
        ::close(ready[1]);
        char byte;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1) << "the other process has failed";
        ::close(ready[0]);
    }
    ~OtherProcess() { Kill(); }
    OtherProcess(const OtherProcess &) = delete;
    OtherProcess &operator=(const OtherProcess &) = delete;

    // To be called by the work once the test may go on.
    static void IsReady() { static_cast<void>(!::write(sReady, "x", 1)); }

    pid_t ID() const { return process_; }

    // Waits for its end, and gives what waitpid says.
    int Wait() {
        if (!is_over_) ::waitpid(process_, &status_, 0);
        is_over_ = true;
        return status_;
    }
    int Kill() {
        if (!is_over_) ::kill(process_, SIGKILL);
        return Wait();
    }

private:
    static inline int sReady = -1;
    pid_t process_;
    bool is_over_ = false;
    int status_ = -1;
};

} // namespace vellum::test
