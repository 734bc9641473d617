// SPDX-License-Identifier: MIT
// Work that several threads begin at the same moment.
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace vellum::test {

constexpr size_t kThreads = 8;

// Calls work(0) to work(kThreads - 1), each on a thread of its own, and waits for all.
template <class Work>
void OnEveryThread(Work work) {
    std::atomic<size_t> ready{0};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < kThreads) std::this_thread::yield();
            work(i);
        });
    }
    for (std::thread &thread : threads) thread.join();
}

} // namespace vellum::test
