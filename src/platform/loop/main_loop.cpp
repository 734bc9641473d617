// SPDX-License-Identifier: MIT
#include "platform/loop/main_loop.hpp"

#include "platform/fs/file.hpp"
#include "platform/late/glib.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/process/per_process.hpp"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace vellum {

namespace {

struct Timer {
    TimerAction action;
    void *info;
};

// Which file a descriptor leads to. All event counters are one: what else a program may open is not.
struct FileOf {
    dev_t device = 0;
    ino_t inode = 0;

    static FileOf Descriptor(int descriptor) noexcept {
        struct stat status;
        return ::fstat(descriptor, &status) == 0 ? FileOf{status.st_dev, status.st_ino} : FileOf{};
    }
    bool operator==(const FileOf &) const = default;
};

// The timers of one process. What a process was forked with is its parent's: the timers, and the counter,
// of which both would take what is meant for one.
class MainLoop {
public:
    // Takes over the number of the parent's descriptor, if there is one: programs know it. The parent's
    // lock may be held by a thread that this process does not have.
    explicit MainLoop(const MainLoop *parents) noexcept
        : descriptor_(parents ? parents->descriptor_.load(std::memory_order_relaxed) : -1),
          is_inherited_(true), counter_(parents ? parents->counter_ : FileOf()) {}

    void Add(Timer timer) {
        bool wakes = false;
        {
            const std::lock_guard lock(mutex_);
            timers_.push_back(timer);
            Signal();
            wakes = std::exchange(may_sleep_, false);
        }
        if (wakes) g_main_context_wakeup(nullptr);
    }

    // Begins a pass of the loop: whether it has something to do. Where it has not it may go to sleep, and
    // the next timer wakes it; those that follow need not, before it asks again.
    bool BeginPass() noexcept {
        const std::lock_guard lock(mutex_);
        may_sleep_ = timers_.empty();
        return !may_sleep_;
    }

    int Descriptor() noexcept {
        const std::lock_guard lock(mutex_);
        if (!HasCounter()) {
            descriptor_ = ::eventfd(0, kCounterFlags);
            is_inherited_ = false;
            counter_ = FileOf::Descriptor(descriptor_);
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

    size_t Count() noexcept {
        const std::lock_guard lock(mutex_);
        return timers_.size();
    }

private:
    static constexpr int kCounterFlags = EFD_NONBLOCK | EFD_CLOEXEC;

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
        if (HasCounter()) static_cast<void>(!::write(descriptor_, &one, sizeof one));
    }

    void Acknowledge() noexcept {
        const std::lock_guard lock(mutex_);
        uint64_t count;
        if (HasCounter()) static_cast<void>(!::read(descriptor_, &count, sizeof count));
    }

    // Whether the descriptor is there and this process's own; one of the parent's gives way to another
    // counter under its number. One that the program has closed, and may have opened as something else, is
    // left alone.
    bool HasCounter() noexcept {
        if (descriptor_ < 0) return false;
        if (FileOf::Descriptor(descriptor_) != counter_) {
            descriptor_ = -1;
            return false;
        }
        if (is_inherited_) {
            const TDescriptor fresh(::eventfd(0, kCounterFlags));
            is_inherited_ = !fresh.IsOpen() || ::dup3(fresh.Get(), descriptor_, O_CLOEXEC) < 0;
        }
        return !is_inherited_;
    }

    std::mutex mutex_; // guards what follows
    std::deque<Timer> timers_;
    bool may_sleep_ = true;       // the loop, for all that is known
    std::atomic<int> descriptor_; // an event counter, once it has been asked for
    bool is_inherited_;           // the counter is still the parent's
    FileOf counter_;              // what the descriptor led to when it was made
};

constinit PerProcess<MainLoop> sMainLoop;

// One source stands in GLib's default context for all timers: it is ready while one of them waits.
// Adding a timer so costs GLib nothing, and never makes it abort for want of memory. A process that is
// forked inherits the source with the context.
gboolean Prepare(GSource *, gint *timeout) noexcept {
    bool is_ready = false;
    try {
        is_ready = sMainLoop.Get().BeginPass();
    } catch (...) { // memory is exhausted: this process has no timers yet
    }
    *timeout = is_ready ? 0 : -1;
    return is_ready;
}

gboolean Dispatch(GSource *, GSourceFunc, gpointer) noexcept {
    FireMainLoopTimers();
    return G_SOURCE_CONTINUE;
}

bool AttachSource() {
    static GSourceFuncs functions = {Prepare, nullptr, Dispatch, nullptr, nullptr, nullptr};
    GSource *source = g_source_new(&functions, sizeof(GSource));
    (g_source_set_name)(source, "vellum timers"); // newer ones have a macro
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
    g_source_unref(source); // the context keeps it
    return true;
}

// Timers that are added where GLib cannot be opened wait for the next one that is added where it can.
MainLoop &Loop() {
    if (sGLib.Open()) {
        static const bool is_attached = AttachSource();
        static_cast<void>(is_attached);
    }
    return sMainLoop.Get();
}

} // namespace

void AddMainLoopTimer(TimerAction action, void *info) {
    Loop().Add({action, info});
}

int MainLoopDescriptor() noexcept {
    const InLibrary inside;
    try {
        return Loop().Descriptor();
    } catch (...) { // memory is exhausted
        return -1;
    }
}

void FireMainLoopTimers() noexcept {
    const InLibrary inside;
    try {
        Loop().Fire();
    } catch (...) { // memory is exhausted: there is no loop, and no timer
    }
}

} // namespace vellum
