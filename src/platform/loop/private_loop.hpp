// SPDX-License-Identifier: MIT
// A run loop of a thread's own, in which nothing happens but what was put there: for who waits for one
// thing and must not have the program's own loop do others meanwhile.
#pragma once

#include "platform/loop/main_loop.hpp"

#include <chrono>
#include <memory>

struct _GMainContext;
struct _GMainLoop;
struct _GSource;

namespace vellum {

// Used by one thread. While it waits, the thread counts as outside the library.
class PrivateLoop {
public:
    // `name` (constant) is what the loop is called where GLib's sources are looked at. Where the process
    // has no descriptor left for it there is no loop.
    explicit PrivateLoop(const char *name) noexcept;
    PrivateLoop(const PrivateLoop &) = delete;
    PrivateLoop &operator=(const PrivateLoop &) = delete;

    // Without a loop nothing else may be called.
    bool IsThere() const noexcept { return context_ != nullptr; }

    // Has the loop call action(info) once, so much later. There is one timer: a second takes its place.
    void SetTimer(std::chrono::milliseconds delay, TimerAction action, void *info) noexcept;

    // Does what comes until Stop is called, within it.
    void Run() noexcept;
    void Stop() noexcept;

    // For those who put something there.
    _GMainContext *Context() const noexcept { return context_.get(); }

private:
    struct End {
        void operator()(_GMainContext *context) const noexcept;
        void operator()(_GMainLoop *loop) const noexcept;
        void operator()(_GSource *timer) const noexcept;
    };

    const char *const name_;
    const std::unique_ptr<_GMainContext, End> context_;
    const std::unique_ptr<_GMainLoop, End> loop_;
    std::unique_ptr<_GSource, End> timer_;
    TimerAction action_ = nullptr;
    void *info_ = nullptr;
};

} // namespace vellum
