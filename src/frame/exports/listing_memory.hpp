// SPDX-License-Identifier: MIT
// The listings that were made since a font last changed: programs that show a list of fonts ask for it
// often, and sorting names by the user's language is slow.
#pragma once

#include "frame/registry/generation_seed.hpp"
#include "platform/process/passing_failures.hpp"
#include "platform/process/retry_pace.hpp"
#include "values/val_array.hpp"

#include <vellum/vellum.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace vellum {

// One kind of listing, for each choice of registers.
class ListingMemory {
public:
    // The listing for a scope; `make()` makes it anew when a font has changed since it was made. One that
    // was being made while a font changed is answered, and not kept.
    template <class Make>
    Ref<const ValArray> Get(VLScope scope, Make make) {
        const uint32_t generation = TGenerationSeed::GetGeneration();
        const size_t place = scope & kVLScopeAll;
        if (auto kept = Find(place, generation)) return kept;
        const uint32_t failures = tPassingFailures;
        auto fresh = make();
        const bool failed = failures != tPassingFailures; // what could not be read is missing
        if (TGenerationSeed::GetGeneration() == generation) Keep(place, generation, failed, fresh);
        return fresh;
    }

private:
    struct Listing {
        uint32_t generation = 0;
        Ref<const ValArray> items; // null: not made yet, or there is none
        RetryPace pace = {};
    };

    Ref<const ValArray> Find(size_t place, uint32_t generation) noexcept;
    void Keep(size_t place, uint32_t generation, bool failed, Ref<const ValArray> items) noexcept;

    std::mutex mutex_; // guards what follows
    std::array<Listing, kVLScopeAll + 1> listings_;
};

} // namespace vellum
