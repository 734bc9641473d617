// SPDX-License-Identifier: MIT
// Sides of a comparison that take turns: each figure is the median of all rounds, with the least and
// the greatest, and beside it the ratio to the first side's.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace vellum::bench {

// What the compiler must take for used.
inline void Keep(const void *value) {
    asm volatile("" : : "r"(value) : "memory");
}

struct TSide {
    std::string name;
    std::function<size_t()> run; // answers something that is not 0 when it has done its work
    std::vector<double> milliseconds = {};

    double Median() const { return milliseconds[milliseconds.size() / 2]; }
};

inline void RunOnce(TSide &side, bool counts) {
    const auto start = std::chrono::steady_clock::now();
    const size_t done = side.run();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (done == 0) std::fprintf(stderr, "%s did nothing\n", side.name.c_str());
    if (counts) side.milliseconds.push_back(time.count());
}

// Runs every side `rounds` times, after one round that does not count.
inline void Rotate(std::vector<TSide> &sides, int rounds) {
    for (int round = 0; round <= rounds; ++round) {
        for (TSide &side : sides) RunOnce(side, round != 0);
    }
    for (TSide &side : sides) std::sort(side.milliseconds.begin(), side.milliseconds.end());
}

inline void Print(const std::vector<TSide> &sides) {
    for (const TSide &side : sides) {
        std::printf("  %-34s %9.3f ms  (%.3f to %.3f)  x%.2f\n", side.name.c_str(), side.Median(),
                    side.milliseconds.front(), side.milliseconds.back(),
                    side.Median() / sides.front().Median());
    }
}

} // namespace vellum::bench
