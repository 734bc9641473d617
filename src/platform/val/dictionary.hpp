// SPDX-License-Identifier: MIT
// How a dictionary lies in memory.
#pragma once

#include "platform/val/hash_table.hpp"

#include <span>

namespace vellum {
extern const ValKind kDictionaryKind;
} // namespace vellum

struct ValDictionary : vellum::ValObject {
    ValDictionary() noexcept : ValObject(vellum::kDictionaryKind) {}

    const ValCallbacks *key_callbacks = nullptr;
    const ValCallbacks *value_callbacks = nullptr;
    vellum::HashTable<vellum::DictionaryEntry> table;
};

namespace vellum {

// A dictionary of values from a key, its value, the next key and so on, none of them null, whose
// references it takes over. Of equal keys the first stays, with the last one's value. Null, with the
// references released, when memory is exhausted or `patience` is: see HashTable.
ValDictionary *AdoptIntoDictionary(std::span<const void *const> pairs, size_t &patience) noexcept;

} // namespace vellum
