// SPDX-License-Identifier: MIT
// Dictionaries.
#include "platform/val/dictionary.hpp"

#include <vellum/values.hpp>

namespace vellum {
namespace {

// Hashes of larger dictionaries look at the keys alone.
constexpr size_t kHashedValues = 32;

DictionaryEntry *FindEntry(const ValDictionary *dictionary, const void *key) noexcept {
    if (!dictionary || IsRefused(*dictionary->key_callbacks, key)) return nullptr;
    return dictionary->table.Find(*dictionary->key_callbacks, key,
                                  HashKey(*dictionary->key_callbacks, key));
}

void ReleaseEntry(const ValDictionary *dictionary, const DictionaryEntry &entry) noexcept {
    ReleaseItem(*dictionary->key_callbacks, entry.key);
    ReleaseItem(*dictionary->value_callbacks, entry.value);
}

void ReleaseAll(ValDictionary *dictionary) noexcept {
    size_t cursor = 0;
    while (DictionaryEntry *entry = dictionary->table.Next(cursor)) ReleaseEntry(dictionary, *entry);
}

void FinalizeDictionary(ValObject *object) {
    auto *dictionary = static_cast<ValDictionary *>(object);
    ReleaseAll(dictionary);
    dictionary->table.FreeMemory();
}

bool HasEqualEntries(const ValDictionary *dictionary, const ValDictionary *other) noexcept {
    const ValCallbacks &keys = *other->key_callbacks;
    size_t cursor = 0;
    while (const DictionaryEntry *entry = dictionary->table.Next(cursor)) {
        const DictionaryEntry *found = other->table.Find(keys, entry->key, entry->hash);
        if (!found || !EqualItems(*other->value_callbacks, entry->value, found->value)) return false;
    }
    return true;
}

bool EqualDictionaries(const ValObject *a, const ValObject *b) {
    auto *left = static_cast<const ValDictionary *>(a);
    auto *right = static_cast<const ValDictionary *>(b);
    if (left->table.Count() != right->table.Count() ||
        !SameRules(*left->key_callbacks, *right->key_callbacks) ||
        !SameRules(*left->value_callbacks, *right->value_callbacks)) {
        return false;
    }
    EqualityDepth depth(left->table.Count());
    return depth && HasEqualEntries(left, right);
}

uint64_t HashDictionary(const ValObject *object) {
    auto *dictionary = static_cast<const ValDictionary *>(object);
    bool with_values = dictionary->table.Count() <= kHashedValues;
    uint64_t sum = 0; // whatever the order
    size_t cursor = 0;
    while (const DictionaryEntry *entry = dictionary->table.Next(cursor)) {
        sum += CombineHash(entry->hash,
                           with_values ? HashMember(*dictionary->value_callbacks, entry->value) : 0);
    }
    return CombineHash(CombineHash(kValTypeDictionary, dictionary->table.Count()), sum);
}

bool AddEntry(ValDictionary *dictionary, const void *key, uint32_t hash, const void *value) noexcept {
    DictionaryEntry *entry = dictionary->table.Append(key, hash);
    if (!entry) return false;
    entry->key = RetainItem(*dictionary->key_callbacks, key);
    entry->value = RetainItem(*dictionary->value_callbacks, value);
    return true;
}

} // namespace

constinit const ValKind kDictionaryKind{kValTypeDictionary, "Dictionary",   FinalizeDictionary,
                                        EqualDictionaries,  HashDictionary, nullptr};

namespace {

// Takes over the references of one pair unless there is no entry for it.
bool AdoptPair(ValDictionary *dictionary, const void *key, const void *value, size_t &patience) noexcept {
    DictionaryEntry *entry =
        dictionary->table.FindOrAppend(kValValueCallbacks, key, HashKey(kValValueCallbacks, key), patience);
    if (!entry) return false;
    if (entry->value) { // the key was there
        ValRelease(key);
        ValRelease(entry->value);
    }
    entry->value = value;
    return true;
}

} // namespace

ValDictionary *AdoptIntoDictionary(std::span<const void *const> pairs, size_t &patience) noexcept {
    const EqualityBudget budget(patience);
    ValDictionary *dictionary = ValDictionaryCreateMutable(pairs.size() / 2, nullptr, nullptr);
    for (size_t i = 0; i < pairs.size(); i += 2) {
        if (dictionary && AdoptPair(dictionary, pairs[i], pairs[i + 1], patience)) continue;
        for (const void *left : pairs.subspan(i)) ValRelease(left);
        ValRelease(dictionary);
        return nullptr;
    }
    return dictionary;
}

} // namespace vellum

using namespace vellum;

const ValDictionary *ValDictionaryCreate(const void *const *keys, const void *const *values,
                                         size_t count) noexcept {
    if (count && (!keys || !values)) return nullptr;
    Ref<ValDictionary> dictionary = Adopt(ValDictionaryCreateMutable(count, nullptr, nullptr));
    for (size_t i = 0; i < count; ++i) {
        if (!ValDictionarySetValue(dictionary.Get(), keys[i], values[i])) return nullptr;
    }
    return dictionary.Release();
}

ValDictionary *ValDictionaryCreateMutable(size_t capacity, const ValCallbacks *keyCallbacks,
                                          const ValCallbacks *valueCallbacks) noexcept {
    using Table = HashTable<DictionaryEntry>;
    const ValCallbacks &keys = OrValueCallbacks(keyCallbacks);
    const ValCallbacks &values = OrValueCallbacks(valueCallbacks);
    if (capacity > Table::kMaximumCapacity) return nullptr;
    auto *dictionary = AllocateObject<ValDictionary>(BytesForCallbacks(keys) + BytesForCallbacks(values) +
                                                     Table::BytesFor(capacity));
    if (!dictionary) return nullptr;
    void *tail = ExtraBytes(dictionary);
    dictionary->key_callbacks = PlaceCallbacks(keys, tail);
    dictionary->value_callbacks = PlaceCallbacks(values, tail);
    dictionary->table.Place(tail, capacity);
    return dictionary;
}

ValDictionary *ValDictionaryCreateMutableCopy(const ValDictionary *dictionary) noexcept {
    if (!dictionary) return nullptr;
    ValDictionary *copy = ValDictionaryCreateMutable(dictionary->table.Count(), dictionary->key_callbacks,
                                                     dictionary->value_callbacks);
    size_t cursor = 0;
    while (const DictionaryEntry *entry = copy ? dictionary->table.Next(cursor) : nullptr) {
        AddEntry(copy, entry->key, entry->hash, entry->value); // there is room for all
    }
    return copy;
}

size_t ValDictionaryGetCount(const ValDictionary *dictionary) noexcept {
    return dictionary ? dictionary->table.Count() : 0;
}

const void *ValDictionaryGetValue(const ValDictionary *dictionary, const void *key) noexcept {
    const DictionaryEntry *entry = FindEntry(dictionary, key);
    return entry ? entry->value : nullptr;
}

bool ValDictionaryGetValueIfPresent(const ValDictionary *dictionary, const void *key,
                                    const void **value) noexcept {
    const DictionaryEntry *entry = FindEntry(dictionary, key);
    if (entry && value) *value = entry->value;
    return entry != nullptr;
}

bool ValDictionaryContainsKey(const ValDictionary *dictionary, const void *key) noexcept {
    return FindEntry(dictionary, key) != nullptr;
}

bool ValDictionaryNext(const ValDictionary *dictionary, size_t *cursor, const void **key,
                       const void **value) noexcept {
    const DictionaryEntry *entry = dictionary && cursor ? dictionary->table.Next(*cursor) : nullptr;
    if (!entry) return false;
    if (key) *key = entry->key;
    if (value) *value = entry->value;
    return true;
}

bool ValDictionarySetValue(ValDictionary *dictionary, const void *key, const void *value) noexcept {
    if (!dictionary || IsRefused(*dictionary->key_callbacks, key) ||
        IsRefused(*dictionary->value_callbacks, value)) {
        return false;
    }
    const uint32_t hash = HashKey(*dictionary->key_callbacks, key);
    DictionaryEntry *entry = dictionary->table.Find(*dictionary->key_callbacks, key, hash);
    if (!entry) return AddEntry(dictionary, key, hash, value);
    const void *retained = RetainItem(*dictionary->value_callbacks, value);
    ReleaseItem(*dictionary->value_callbacks, std::exchange(entry->value, retained));
    return true;
}

bool ValDictionaryRemoveValue(ValDictionary *dictionary, const void *key) noexcept {
    DictionaryEntry *entry = FindEntry(dictionary, key);
    if (!entry) return false;
    dictionary->table.Remove(entry);
    ReleaseEntry(dictionary, *entry);
    return true;
}

void ValDictionaryRemoveAll(ValDictionary *dictionary) noexcept {
    if (!dictionary) return;
    ReleaseAll(dictionary);
    dictionary->table.Clear();
}
