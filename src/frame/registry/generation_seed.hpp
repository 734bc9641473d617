// SPDX-License-Identifier: MIT
// The process-wide generation number of the available fonts.
//
// It moves on every change that a register makes or hears of. Caches note it when they are filled
// and are stale once it differs.
#pragma once

#include <atomic>
#include <cstdint>

namespace vellum {

class TGenerationSeed {
public:
    static uint32_t GetGeneration() noexcept { return sGeneration.load(std::memory_order_acquire); }

    // Called after the change is complete, so that who sees the new number sees the change.
    static void UpdateGeneration() noexcept { sGeneration.fetch_add(1, std::memory_order_acq_rel); }

private:
    static inline constinit std::atomic<uint32_t> sGeneration{0};
};

} // namespace vellum
