// SPDX-License-Identifier: MIT
// How a set lies in memory.
#pragma once

#include "platform/val/hash_table.hpp"

#include <span>
#include <string_view>

namespace vellum {
extern const ValKind kSetKind;
} // namespace vellum

struct ValSet : vellum::ValObject {
    ValSet() noexcept : ValObject(vellum::kSetKind) {}

    const ValCallbacks *callbacks = nullptr;
    vellum::HashTable<vellum::SetEntry> table;
};

namespace vellum {

// The member of a set of strings that has this text, or null; `hash` is what the set's callbacks give
// for such a string.
const ValString *FindStringInSet(const ValSet &set, std::string_view text, uint64_t hash) noexcept;

// A set of values, null among them, whose references it takes over; of equal ones the first stays.
// Null, with the references released, when memory is exhausted or `patience` is: see HashTable.
ValSet *AdoptIntoSet(std::span<const void *const> items, size_t &patience) noexcept;

} // namespace vellum
