// SPDX-License-Identifier: MIT
#include "frame/exports/listing_memory.hpp"

#include <utility>

namespace vellum {

Ref<const ValArray> ListingMemory::Find(size_t place, uint32_t generation) noexcept {
    const std::lock_guard lock(mutex_);
    const Listing &listing = listings_[place];
    return listing.generation == generation ? listing.items : nullptr;
}

// What it replaces is released when the lock is let go.
void ListingMemory::Keep(size_t place, uint32_t generation, Ref<const ValArray> items) noexcept {
    const std::lock_guard lock(mutex_);
    listings_[place].generation = generation;
    std::swap(listings_[place].items, items);
}

} // namespace vellum
