// SPDX-License-Identifier: MIT
// TValDict and TValMutableDict: dictionaries as values of C++.
#pragma once

#include "values/out_of_memory.hpp"
#include "values/val_cast.hpp"

#include <iterator>

namespace vellum {

// Walks the entries of a dictionary in a range-for; key and value are borrowed.
class DictionaryIterator {
public:
    struct Entry {
        const void *key;
        const void *value;
    };

    explicit DictionaryIterator(const ValDictionary *dictionary) noexcept : dictionary_(dictionary) {
        ++*this;
    }

    const Entry &operator*() const noexcept { return entry_; }
    DictionaryIterator &operator++() noexcept {
        has_entry_ = ValDictionaryNext(dictionary_, &cursor_, &entry_.key, &entry_.value);
        return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !has_entry_; }

private:
    const ValDictionary *dictionary_;
    size_t cursor_ = 0;
    Entry entry_ = {};
    bool has_entry_ = false;
};

// True when every key of `subset` (null: none) is in `dictionary`, with an equal value. False when
// `dictionary` is null.
bool ContainsSubset(const ValDictionary *dictionary, const ValDictionary *subset) noexcept;

// A published dictionary or none; none is like an empty one.
class TValDict {
public:
    TValDict() noexcept = default;
    explicit TValDict(vellum::Ref<const ValDictionary> dictionary) noexcept
        : dictionary_(std::move(dictionary)) {}

    explicit operator bool() const noexcept { return static_cast<bool>(dictionary_); }
    bool IsEmpty() const noexcept { return Count() == 0; }
    size_t Count() const noexcept { return ValDictionaryGetCount(Get()); }
    const ValDictionary *Get() const noexcept { return dictionary_.Get(); }
    const vellum::Ref<const ValDictionary> &Ref() const noexcept { return dictionary_; }

    const void *operator[](const void *key) const noexcept { return ValDictionaryGetValue(Get(), key); }

    // The value as a T; null when it is of another kind or absent.
    template <class T>
    const T *Get(const void *key) const noexcept {
        return Cast<T>((*this)[key]);
    }

    bool ContainsKey(const void *key) const noexcept { return ValDictionaryContainsKey(Get(), key); }
    bool ContainsSubset(const TValDict &subset) const noexcept {
        return vellum::ContainsSubset(Get(), subset.Get());
    }

    DictionaryIterator begin() const noexcept { return DictionaryIterator(Get()); }
    std::default_sentinel_t end() const noexcept { return {}; }

    friend bool operator==(const TValDict &a, const TValDict &b) noexcept {
        return ValEqual(a.Get(), b.Get());
    }

private:
    vellum::Ref<const ValDictionary> dictionary_;
};

// A dictionary under construction. Changes throw std::bad_alloc when memory is exhausted.
class TValMutableDict {
public:
    explicit TValMutableDict(const ValCallbacks &keys = kValValueCallbacks,
                             const ValCallbacks &values = kValValueCallbacks, size_t capacity = 0)
        : keep_null_keys_(!keys.retain), keep_null_values_(!values.retain),
          dictionary_(OrBadAlloc(Adopt(ValDictionaryCreateMutable(capacity, &keys, &values)))) {}

    ValDictionary *Get() const noexcept { return dictionary_.Get(); }
    size_t Count() const noexcept { return ValDictionaryGetCount(Get()); }
    bool IsEmpty() const noexcept { return Count() == 0; }

    const void *operator[](const void *key) const noexcept { return ValDictionaryGetValue(Get(), key); }

    DictionaryIterator begin() const noexcept { return DictionaryIterator(Get()); }
    std::default_sentinel_t end() const noexcept { return {}; }

    // A counted key or value that is null means that there is nothing to set.
    void Set(const void *key, const void *value) {
        if ((!key && !keep_null_keys_) || (!value && !keep_null_values_)) return;
        OrBadAlloc(ValDictionarySetValue(Get(), key, value));
    }

    // True when the key was there.
    bool Remove(const void *key) noexcept { return ValDictionaryRemoveValue(Get(), key); }

    // Hands the dictionary over; this one is spent, and refuses every change with std::bad_alloc.
    [[nodiscard]] vellum::Ref<const ValDictionary> Publish() noexcept { return std::move(dictionary_); }

private:
    bool keep_null_keys_;
    bool keep_null_values_;
    vellum::Ref<ValDictionary> dictionary_;
};

} // namespace vellum
