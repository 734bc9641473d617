// SPDX-License-Identifier: MIT
// A buffer that lies on the stack unless it is large.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>

namespace vellum {

// `count` elements, not initialised; up to N of them in place. Throws std::bad_alloc.
template <class T, size_t N = 30>
class TStackBuffer {
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);

public:
    explicit TStackBuffer(size_t count) : count_(count) {
        if (count > N) heap_.reset(new T[count]);
    }
    TStackBuffer(const TStackBuffer &) = delete;
    TStackBuffer &operator=(const TStackBuffer &) = delete;

    T *Get() noexcept { return heap_ ? heap_.get() : in_place_; }
    const T *Get() const noexcept { return heap_ ? heap_.get() : in_place_; }
    size_t Count() const noexcept { return count_; }

    T &operator[](size_t index) noexcept { return Get()[index]; }
    const T &operator[](size_t index) const noexcept { return Get()[index]; }
    T *begin() noexcept { return Get(); }
    T *end() noexcept { return Get() + count_; }
    std::span<const T> Span() const noexcept { return {Get(), count_}; }

private:
    size_t count_;
    std::unique_ptr<T[]> heap_;
    T in_place_[N];
};

} // namespace vellum
