// SPDX-License-Identifier: MIT
// How a dictionary lies in memory.
#pragma once

#include "platform/val/hash_table.hpp"

namespace vellum {
extern const ValKind kDictionaryKind;
} // namespace vellum

struct ValDictionary : vellum::ValObject {
    ValDictionary() noexcept : ValObject(vellum::kDictionaryKind) {}

    const ValCallbacks *key_callbacks = nullptr;
    const ValCallbacks *value_callbacks = nullptr;
    vellum::HashTable<vellum::DictionaryEntry> table;
};
