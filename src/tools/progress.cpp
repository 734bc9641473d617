// SPDX-License-Identifier: MIT
#include "tools/progress.hpp"

#include <algorithm>
#include <iostream>
#include <string>

namespace vellum::tool {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(500); // how long people wait without a bar
constexpr auto kBetweenFrames = std::chrono::milliseconds(100);
constexpr size_t kWidth = 40;
constexpr const char *kClearLine = "\r\033[K";

} // namespace

Progress::Progress(size_t total, bool visible) noexcept
    : total_(total), visible_(visible), next_(std::chrono::steady_clock::now() + kPatience) {}

Progress::~Progress() {
    if (shown_) std::cerr << kClearLine << std::flush;
}

void Progress::Advance(size_t steps) {
    done_ += steps;
    const auto now = std::chrono::steady_clock::now();
    if (!visible_ || total_ == 0 || now < next_) return;
    next_ = now + kBetweenFrames;
    shown_ = true;
    Draw();
}

void Progress::Draw() const {
    const size_t filled = std::min(kWidth, kWidth * done_ / total_);
    std::cerr << kClearLine << '[' << std::string(filled, '=') << std::string(kWidth - filled, ' ') << "] "
              << done_ << " of " << total_ << " files" << std::flush;
}

} // namespace vellum::tool
