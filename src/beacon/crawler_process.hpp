// SPDX-License-Identifier: MIT
// The service's end of the crawler: begins it, begins it again whenever it dies, and ends it.
#pragma once

#include "beacon/crawl_progress.hpp"
#include "service/event_loop.hpp"

#include <sys/types.h>

#include <chrono>
#include <functional>

namespace vellum {

class CrawlerProcess {
public:
    // `state_has_changed` is called when the crawler says so, or ends. Throws std::runtime_error.
    CrawlerProcess(EventLoop &loop, bool is_in_foreground, std::function<void()> state_has_changed);
    ~CrawlerProcess();
    CrawlerProcess(const CrawlerProcess &) = delete;
    CrawlerProcess &operator=(const CrawlerProcess &) = delete;

    const CrawlProgress &Progress() const noexcept { return *progress_; }

    // 0 while it is dead.
    pid_t Process() const noexcept { return process_; }

    // Have it read every file again, or look whether all is as it knows it. One that begins does the
    // latter.
    void ReadEverything() noexcept;
    void LookAgain() noexcept;

private:
    void Start();
    void Listen();
    void Died();
    void Tell(char word) noexcept;

    EventLoop &loop_;
    const bool is_in_foreground_;
    const std::function<void()> state_has_changed_;
    const SharedProgress progress_;
    TDescriptor control_;
    pid_t process_ = 0;
    uint64_t rebuilds_ = 0; // that were asked for; a crawler may die before it hears of one
    std::chrono::steady_clock::time_point started_;
    std::chrono::milliseconds wait_{0};
};

} // namespace vellum
