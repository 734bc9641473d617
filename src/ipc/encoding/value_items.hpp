// SPDX-License-Identifier: MIT
// Walking the containers that can be flattened: those whose items are values.
#pragma once

#include "platform/val/array.hpp"
#include "platform/val/dictionary.hpp"
#include "platform/val/set.hpp"

namespace vellum {

// Under other callbacks an item may be a bare number: it must not be looked at. An empty container
// holds none either way.
inline bool HoldsValues(const ValArray *array) noexcept {
    return !array || array->count == 0 || array->callbacks->retain == ValRetain;
}
inline bool HoldsValues(const ValSet *set) noexcept {
    return !set || set->table.Count() == 0 || set->callbacks->retain == ValRetain;
}
inline bool HoldsValues(const ValDictionary *dictionary) noexcept {
    return !dictionary || dictionary->table.Count() == 0 ||
           (dictionary->key_callbacks->retain == ValRetain &&
            dictionary->value_callbacks->retain == ValRetain);
}

// Visits every item in the container's order; of a dictionary each key, then its value. Arrays and
// sets that were read from elsewhere may hold nulls: those are left out.
template <class Visit>
void ForEachItem(const ValArray *array, Visit visit) {
    for (const void *item : Items(array)) {
        if (item) visit(item);
    }
}
template <class Visit>
void ForEachItem(const ValSet *set, Visit visit) {
    size_t cursor = 0;
    while (const SetEntry *entry = set ? set->table.Next(cursor) : nullptr) {
        if (entry->key) visit(entry->key);
    }
}
template <class Visit>
void ForEachItem(const ValDictionary *dictionary, Visit visit) {
    size_t cursor = 0;
    while (const DictionaryEntry *entry = dictionary ? dictionary->table.Next(cursor) : nullptr) {
        visit(entry->key);
        visit(entry->value);
    }
}

// How many times ForEachItem visits; pairs count once.
inline size_t CountItems(const ValArray *array) noexcept {
    size_t count = 0;
    ForEachItem(array, [&count](const void *) { ++count; });
    return count;
}
inline size_t CountItems(const ValSet *set) noexcept {
    if (!set) return 0;
    if (set->callbacks != &kValValueCallbacks) return set->table.Count(); // only the reader puts a null in
    const bool has_null = set->table.FindMatching(HashKey(*set->callbacks, nullptr),
                                                  [](const void *member) { return !member; });
    return set->table.Count() - has_null;
}
inline size_t CountItems(const ValDictionary *dictionary) noexcept {
    return ValDictionaryGetCount(dictionary);
}

} // namespace vellum
