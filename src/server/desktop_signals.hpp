// SPDX-License-Identifier: MIT
// Repeats changes of the shared fonts on the session's D-Bus, for desktop programs that do not use the
// library: org.vellum.Fonts, /org/vellum/Fonts, the signal FontsChanged with the URLs that came and that
// went.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace vellum {

struct DesktopNews {
    std::vector<std::string> came, went;
};

// Without a bus nothing is said, and nobody waits: a thread of its own speaks with the bus.
class DesktopSignals {
public:
    DesktopSignals();
    ~DesktopSignals();
    DesktopSignals(const DesktopSignals &) = delete;
    DesktopSignals &operator=(const DesktopSignals &) = delete;

    void Say(DesktopNews news);

private:
    // When the bus does not take them, the oldest are lost.
    static constexpr size_t kMostWaiting = 256;

    void Run();

    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    std::deque<DesktopNews> waiting_;
    bool is_ending_ = false;
    std::thread thread_; // the last: it uses what stands above
};

} // namespace vellum
