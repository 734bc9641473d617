// SPDX-License-Identifier: MIT
// A progress bar for people who wait: on a terminal, once the work has taken half a second.
#pragma once

#include <chrono>
#include <cstddef>

namespace vellum::tool {

class Progress {
public:
    // `total` steps; `visible` says that standard error is a terminal.
    Progress(size_t total, bool visible) noexcept;
    ~Progress(); // takes the bar off the screen

    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void Advance(size_t steps);

private:
    void Draw() const;

    const size_t total_;
    const bool visible_;
    size_t done_ = 0;
    bool shown_ = false;
    std::chrono::steady_clock::time_point next_; // when the bar is drawn next
};

} // namespace vellum::tool
