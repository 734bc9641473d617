// SPDX-License-Identifier: MIT
// What containers share: calling their callbacks, and keeping nested ones within bounds.
#pragma once

#include "platform/val/object.hpp"

namespace vellum {

// Null means value callbacks.
inline const ValCallbacks &OrValueCallbacks(const ValCallbacks *callbacks) noexcept {
    return callbacks ? *callbacks : kValValueCallbacks;
}

inline const void *RetainItem(const ValCallbacks &callbacks, const void *item) noexcept {
    return callbacks.retain ? callbacks.retain(item) : item;
}
inline void ReleaseItem(const ValCallbacks &callbacks, const void *item) noexcept {
    if (callbacks.release) callbacks.release(item);
}
inline bool EqualItems(const ValCallbacks &callbacks, const void *a, const void *b) noexcept {
    return a == b || (callbacks.equal && callbacks.equal(a, b));
}

// Only counted items can be absent; for others null is a number like any.
inline bool IsRefused(const ValCallbacks &callbacks, const void *item) noexcept {
    return !item && callbacks.retain;
}

// Containers of different rules are never equal.
inline bool SameRules(const ValCallbacks &a, const ValCallbacks &b) noexcept {
    return a.equal == b.equal && a.hash == b.hash;
}

uint64_t HashItem(const ValCallbacks &callbacks, const void *item) noexcept;

// HashItem for a container's own hash: containers within it count by their kind alone, so that the
// hash of the outermost looks one level deep.
uint64_t HashMember(const ValCallbacks &callbacks, const void *item) noexcept;

// Callbacks other than the library's constants are copied behind the container that uses them.
// These give the bytes that this needs, and do it, moving `tail` on.
size_t BytesForCallbacks(const ValCallbacks &callbacks) noexcept;
const ValCallbacks *PlaceCallbacks(const ValCallbacks &callbacks, void *&tail) noexcept;

// Stands while two containers are compared; false when more are nested than the stack should bear, or
// when what their `count` items take is more than is left of the thread's EqualityBudget.
class EqualityDepth {
public:
    explicit EqualityDepth(size_t count) noexcept;
    ~EqualityDepth();
    EqualityDepth(const EqualityDepth &) = delete;
    EqualityDepth &operator=(const EqualityDepth &) = delete;
    explicit operator bool() const noexcept { return fits_; }

private:
    bool fits_;
};

// While one stands, comparing containers on this thread is paid for from `left`, an item each. When that
// has come to 0, containers are no longer equal but to themselves. It is for who compares values that may
// have been made to take long: who finds 0 at the end must not believe what was compared.
class EqualityBudget {
public:
    explicit EqualityBudget(size_t &left) noexcept;
    ~EqualityBudget();
    EqualityBudget(const EqualityBudget &) = delete;
    EqualityBudget &operator=(const EqualityBudget &) = delete;

private:
    size_t *const former_;
};

} // namespace vellum
