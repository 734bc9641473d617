// SPDX-License-Identifier: MIT
#include "platform/process/fork_gate.hpp"

#include <pthread.h>
#include <time.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>

namespace vellum {

namespace {

// Threads that are inside are counted in several places, so that they do not pass one number around between
// the processors.
struct alignas(64) Count {
    std::atomic<uint32_t> inside{0};
};
constinit std::array<Count, 32> sCounts;
constinit std::atomic<uint32_t> sNextPlace{0};
constinit thread_local Count *tCount = nullptr;

constinit std::atomic<uint32_t> sForking{0}; // the threads that fork just now, or wait to
constinit thread_local bool tIsForking = false;
constinit std::atomic<uint32_t> sForks{0};

Count &MyCount() noexcept {
    if (!tCount) tCount = &sCounts[sNextPlace.fetch_add(1, std::memory_order_relaxed) % sCounts.size()];
    return *tCount;
}

constexpr std::chrono::seconds kPatience(5);

// How soon it is looked again whether a thread is still inside: most are there for less.
constexpr timespec kPause = {0, 50'000};

} // namespace

// What happens before and after a fork, on the thread that forks. A thread that forks inside the library
// counts itself.
struct Fork {
    static bool IsAlone() noexcept {
        uint32_t inside = 0;
        for (const Count &count : sCounts) inside += count.inside.load(std::memory_order_seq_cst);
        return inside == Own();
    }

    static uint32_t Own() noexcept { return InLibrary::tDepth != 0 ? 1 : 0; }

    static void Prepare() noexcept {
        tIsForking = true;
        sForking.fetch_add(1, std::memory_order_seq_cst);
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (!IsAlone() && std::chrono::steady_clock::now() < end) ::nanosleep(&kPause, nullptr);
    }

    static void GoOnInParent() noexcept {
        tIsForking = false;
        if (sForking.fetch_sub(1, std::memory_order_seq_cst) == 1) sForking.notify_all();
    }

    // Alone, whoever was there.
    static void BeginAsAChild() noexcept {
        tIsForking = false;
        for (Count &count : sCounts) count.inside.store(0, std::memory_order_relaxed);
        MyCount().inside.store(Own(), std::memory_order_relaxed);
        sForking.store(0, std::memory_order_relaxed);
        sForks.fetch_add(1, std::memory_order_relaxed);
    }

    static void Notice() noexcept {
        static pthread_once_t once = PTHREAD_ONCE_INIT;
        ::pthread_once(&once, [] { ::pthread_atfork(Prepare, GoOnInParent, BeginAsAChild); });
    }
};

// Who enters first counts itself and then looks whether somebody forks, who first says so and then counts:
// one of them sees the other.
void InLibrary::Enter() noexcept {
    const int error = errno;
    Fork::Notice();
    Count &count = MyCount();
    for (;;) {
        count.inside.fetch_add(1, std::memory_order_seq_cst);
        const uint32_t forking = sForking.load(std::memory_order_seq_cst);
        if (forking == 0 || tIsForking) break;
        count.inside.fetch_sub(1, std::memory_order_seq_cst);
        sForking.wait(forking, std::memory_order_seq_cst);
    }
    errno = error;
}

void InLibrary::Leave() noexcept {
    MyCount().inside.fetch_sub(1, std::memory_order_seq_cst);
}

uint32_t CountOfForks() noexcept {
    return sForks.load(std::memory_order_acquire);
}

} // namespace vellum
