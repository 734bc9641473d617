// SPDX-License-Identifier: MIT
// Threads of the library's own, in a process that is somebody else's.
#pragma once

#include "platform/process/fork_gate.hpp"

#include <pthread.h>
#include <signal.h>

#include <exception>
#include <system_error>
#include <thread>

namespace vellum {

// While it lives no signal reaches this thread, nor the threads that it starts, for good: signals are the
// program's, and none of them is handled on a thread that it does not know.
class SignalsBlocked {
public:
    SignalsBlocked() noexcept {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &former_);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
    sigset_t former_;
};

// Runs body() on a thread of its own and waits for its end; what it throws is thrown here. Nothing for
// want of a thread: false. To be called with no lock held.
template <class Body>
bool RunOnOwnThread(Body body) {
    std::exception_ptr failure;
    const auto run = [&]() noexcept {
        const InLibrary inside;
        try {
            body();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    std::thread thread;
    try {
        const SignalsBlocked blocked;
        thread = std::thread(run);
    } catch (const std::system_error &) {
        return false;
    }
    {
        const OutsideLibrary waiting;
        thread.join();
    }
    if (failure) std::rethrow_exception(failure);
    return true;
}

} // namespace vellum
