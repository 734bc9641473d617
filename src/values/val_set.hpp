// SPDX-License-Identifier: MIT
// TValSet and TValMutableSet: sets as values of C++.
#pragma once

#include "values/out_of_memory.hpp"
#include "values/val_cast.hpp"

#include <iterator>

namespace vellum {

// Walks the members of a set in a range-for; they are borrowed.
class SetIterator {
public:
    explicit SetIterator(const ValSet *set) noexcept : set_(set) { ++*this; }

    const void *operator*() const noexcept { return member_; }
    SetIterator &operator++() noexcept {
        has_member_ = ValSetNext(set_, &cursor_, &member_);
        return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !has_member_; }

private:
    const ValSet *set_;
    size_t cursor_ = 0;
    const void *member_ = nullptr;
    bool has_member_ = false;
};

// True when every member of `other` (null: none) is one of `set`.
inline bool IsSuperSetOfSet(const ValSet *set, const ValSet *other) noexcept {
    if (ValSetGetCount(other) > ValSetGetCount(set)) return false;
    size_t cursor = 0;
    for (const void *member; ValSetNext(other, &cursor, &member);) {
        if (!ValSetContains(set, member)) return false;
    }
    return true;
}

// A published set or none; none is like an empty one.
class TValSet {
public:
    TValSet() noexcept = default;
    explicit TValSet(vellum::Ref<const ValSet> set) noexcept : set_(std::move(set)) {}

    explicit operator bool() const noexcept { return static_cast<bool>(set_); }
    bool IsEmpty() const noexcept { return Count() == 0; }
    size_t Count() const noexcept { return ValSetGetCount(Get()); }
    const ValSet *Get() const noexcept { return set_.Get(); }
    const vellum::Ref<const ValSet> &Ref() const noexcept { return set_; }

    bool Contains(const void *item) const noexcept { return ValSetContains(Get(), item); }
    bool IsSuperSetOfSet(const TValSet &other) const noexcept {
        return vellum::IsSuperSetOfSet(Get(), other.Get());
    }

    SetIterator begin() const noexcept { return SetIterator(Get()); }
    std::default_sentinel_t end() const noexcept { return {}; }

    friend bool operator==(const TValSet &a, const TValSet &b) noexcept {
        return ValEqual(a.Get(), b.Get());
    }

private:
    vellum::Ref<const ValSet> set_;
};

// A set under construction. Changes throw std::bad_alloc when memory is exhausted.
class TValMutableSet {
public:
    explicit TValMutableSet(const ValCallbacks &callbacks = kValValueCallbacks, size_t capacity = 0)
        : keep_null_(!callbacks.retain),
          set_(OrBadAlloc(Adopt(ValSetCreateMutable(capacity, &callbacks)))) {}

    ValSet *Get() const noexcept { return set_.Get(); }
    size_t Count() const noexcept { return ValSetGetCount(Get()); }
    bool IsEmpty() const noexcept { return Count() == 0; }

    SetIterator begin() const noexcept { return SetIterator(Get()); }
    std::default_sentinel_t end() const noexcept { return {}; }

    // A counted item that is null means that there is nothing to add.
    void Add(const void *item) {
        if (item || keep_null_) OrBadAlloc(ValSetAdd(Get(), item));
    }

    // True when an equal member was there.
    bool Remove(const void *item) noexcept { return ValSetRemove(Get(), item); }
    bool Contains(const void *item) const noexcept { return ValSetContains(Get(), item); }

    // Hands the set over; this one is spent, and refuses every change with std::bad_alloc.
    [[nodiscard]] vellum::Ref<const ValSet> Publish() noexcept { return std::move(set_); }

private:
    bool keep_null_;
    vellum::Ref<ValSet> set_;
};

} // namespace vellum
