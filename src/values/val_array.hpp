// SPDX-License-Identifier: MIT
// TValArray and TValMutableArray: arrays as values of C++.
#pragma once

#include "values/out_of_memory.hpp"
#include "values/val_cast.hpp"

#include <algorithm>
#include <span>

namespace vellum {

// The elements of an array (borrowed); null has none.
inline std::span<const void *const> Elements(const ValArray *array) noexcept {
    return {ValArrayGetValues(array), ValArrayGetCount(array)};
}

// A published array or none; none is like an empty one.
class TValArray {
public:
    TValArray() noexcept = default;
    explicit TValArray(vellum::Ref<const ValArray> array) noexcept : array_(std::move(array)) {}

    explicit operator bool() const noexcept { return static_cast<bool>(array_); }
    bool IsEmpty() const noexcept { return Count() == 0; }
    size_t Count() const noexcept { return ValArrayGetCount(Get()); }
    const ValArray *Get() const noexcept { return array_.Get(); }
    const vellum::Ref<const ValArray> &Ref() const noexcept { return array_; }

    const void *operator[](size_t index) const noexcept { return ValArrayGetValue(Get(), index); }

    // The element as a T; null when it is of another kind or past the end.
    template <class T>
    const T *At(size_t index) const noexcept {
        return Cast<T>((*this)[index]);
    }

    auto begin() const noexcept { return Elements(Get()).begin(); }
    auto end() const noexcept { return Elements(Get()).end(); }

    bool Contains(const void *item) const noexcept { return ValArrayContains(Get(), item); }

    friend bool operator==(const TValArray &a, const TValArray &b) noexcept {
        return ValEqual(a.Get(), b.Get());
    }

private:
    vellum::Ref<const ValArray> array_;
};

// An array under construction. Changes throw std::bad_alloc when memory is exhausted.
class TValMutableArray {
public:
    explicit TValMutableArray(const ValCallbacks &callbacks = kValValueCallbacks, size_t capacity = 0)
        : array_(OrBadAlloc(Adopt(ValArrayCreateMutable(capacity, &callbacks)))) {}

    ValArray *Get() const noexcept { return array_.Get(); }
    size_t Count() const noexcept { return ValArrayGetCount(Get()); }
    bool IsEmpty() const noexcept { return Count() == 0; }

    auto begin() const noexcept { return Elements(Get()).begin(); }
    auto end() const noexcept { return Elements(Get()).end(); }

    void Append(const void *item) { OrBadAlloc(ValArrayAppend(Get(), item)); }
    void AppendArray(const ValArray *more) { OrBadAlloc(ValArrayAppendArray(Get(), more)); }

    bool Contains(const void *item) const noexcept { return ValArrayContains(Get(), item); }

    // Whether the very object is an element.
    bool ContainsIdentical(const void *item) const noexcept { return std::ranges::count(*this, item) != 0; }

    // Hands the array over; this one is spent, and refuses every change with std::bad_alloc.
    [[nodiscard]] vellum::Ref<const ValArray> Publish() noexcept { return std::move(array_); }

private:
    vellum::Ref<ValArray> array_;
};

// An array of nothing else. Throws std::bad_alloc.
inline Ref<const ValArray> OneElement(const void *item) {
    return OrBadAlloc(Adopt(ValArrayCreate(&item, 1)));
}

} // namespace vellum
