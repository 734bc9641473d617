// SPDX-License-Identifier: MIT
#include "platform/loop/main_loop.hpp"

#include <glib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

namespace vellum {

namespace {

struct Timer {
    TimerAction action;
    void *info;
};

// One source stands in GLib's default context for all timers: it is ready while one of them waits.
// Adding a timer so costs GLib nothing, and never makes it abort for want of memory.
class MainLoop {
public:
    // Made by the first use, and never torn down: threads may add timers while the process ends.
    static MainLoop &Get() {
        static MainLoop *const loop = new MainLoop;
        return *loop;
    }

    void Add(Timer timer) {
        {
            const std::lock_guard lock(mutex_);
            timers_.push_back(timer);
            Signal();
        }
        g_main_context_wakeup(nullptr);
    }

    int Descriptor() noexcept {
        const std::lock_guard lock(mutex_);
        if (descriptor_ < 0) {
            descriptor_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
            if (!timers_.empty()) Signal();
        }
        return descriptor_;
    }

    // Fires what waits now: what that adds waits for the next pass. A callback may run a loop of its own,
    // which goes on where this one stands.
    void Fire() noexcept {
        Acknowledge();
        for (size_t waiting = Count(); waiting > 0; --waiting)
            if (const auto timer = TakeFirst()) timer->action(timer->info);
    }

private:
    MainLoop() {
        static GSourceFuncs functions = {Prepare, nullptr, Dispatch, nullptr, nullptr, nullptr};
        GSource *source = g_source_new(&functions, sizeof(GSource));
        g_source_set_name(source, "vellum timers");
        g_source_set_can_recurse(source, TRUE);
        g_source_attach(source, nullptr);
        g_source_unref(source); // the context keeps it
    }

    static gboolean Prepare(GSource *, gint *timeout) {
        const bool is_ready = Get().Count() != 0;
        *timeout = is_ready ? 0 : -1;
        return is_ready;
    }

    static gboolean Dispatch(GSource *, GSourceFunc, gpointer) {
        Get().Fire();
        return G_SOURCE_CONTINUE;
    }

    size_t Count() noexcept {
        const std::lock_guard lock(mutex_);
        return timers_.size();
    }

    std::optional<Timer> TakeFirst() noexcept {
        const std::lock_guard lock(mutex_);
        if (timers_.empty()) return std::nullopt;
        const Timer first = timers_.front();
        timers_.pop_front();
        return first;
    }

    // Makes the descriptor readable. It is so already where the counter is full.
    void Signal() noexcept {
        const uint64_t one = 1;
        if (descriptor_ >= 0) static_cast<void>(!::write(descriptor_, &one, sizeof one));
    }

    void Acknowledge() noexcept {
        const std::lock_guard lock(mutex_);
        uint64_t count;
        if (descriptor_ >= 0) static_cast<void>(!::read(descriptor_, &count, sizeof count));
    }

    std::mutex mutex_; // guards what follows
    std::deque<Timer> timers_;
    int descriptor_ = -1; // an event counter, once it has been asked for
};

} // namespace

void AddMainLoopTimer(TimerAction action, void *info) {
    MainLoop::Get().Add({action, info});
}

int MainLoopDescriptor() noexcept {
    try {
        return MainLoop::Get().Descriptor();
    } catch (...) { // memory is exhausted
        return -1;
    }
}

void FireMainLoopTimers() noexcept {
    try {
        MainLoop::Get().Fire();
    } catch (...) { // memory is exhausted: there is no loop, and no timer
    }
}

} // namespace vellum
