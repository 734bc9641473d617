// SPDX-License-Identifier: MIT
#include "frame/exports/listing_memory.hpp"

#include <utility>

namespace vellum {

Ref<const ValArray> ListingMemory::Find(size_t place, uint32_t generation) noexcept {
    const std::lock_guard lock(mutex_);
    const Listing &listing = listings_[place];
    return listing.generation == generation && !listing.pace.TakeTurn() ? listing.items : nullptr;
}

// What it replaces is released when the lock is let go.
void ListingMemory::Keep(size_t place, uint32_t generation, bool failed,
                         Ref<const ValArray> items) noexcept {
    const std::lock_guard lock(mutex_);
    Listing &listing = listings_[place];
    listing.generation = generation;
    listing.pace.MadeAgain(failed);
    std::swap(listing.items, items);
}

} // namespace vellum
