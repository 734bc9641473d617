// SPDX-License-Identifier: MIT
// Numbers that look like chance and are the same for a seed on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

namespace vellum::test {

class ModelRandom {
public:
    explicit ModelRandom(uint64_t seed) : engine_(seed) {}

    // Below `count`, which is not 0.
    size_t Below(size_t count) { return static_cast<size_t>(engine_() % count); }

    // Inclusive.
    size_t Between(size_t low, size_t high) { return low + Below(high - low + 1); }
    bool OneIn(size_t count) { return Below(count) == 0; }

    // One of the items of a container or an array.
    const auto &Of(const auto &items) { return std::data(items)[Below(std::size(items))]; }

    // In another order.
    void Shuffle(auto &items) {
        for (size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[Below(i)]);
    }

private:
    std::mt19937_64 engine_;
};

} // namespace vellum::test
