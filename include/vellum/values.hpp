// SPDX-License-Identifier: MIT
// vellum/values.hpp - owning references to Vellum's values for C++; header-only.
#ifndef VELLUM_VALUES_HPP
#define VELLUM_VALUES_HPP

#include <vellum/values.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace vellum {

// One owned reference to a value, or none. `T` is `const ValX` for a published value, `ValX` for one
// under construction, `const void` for a value of any kind; each converts to the more general. A Ref is as
// thread-safe as a plain pointer: the value may be shared between threads, the Ref may not.
template <class T>
class Ref {
public:
    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}

    // Takes over a reference that the caller owns: the result of a Create or Copy function.
    static Ref Adopt(T *value) noexcept { return Ref(value); }

    // Adds a reference of its own to a borrowed value.
    static Ref Retain(T *value) noexcept {
        ValRetain(value);
        return Ref(value);
    }

    Ref(const Ref &other) noexcept : value_(other.value_) { ValRetain(value_); }
    Ref(Ref &&other) noexcept : value_(std::exchange(other.value_, nullptr)) {}

    // From a value under construction to a published one.
    template <class U>
        requires(!std::is_same_v<U, T> && std::is_convertible_v<U *, T *>)
    Ref(Ref<U> other)
    noexcept : value_(other.Release()) {}

    ~Ref() { ValRelease(value_); }

    Ref &operator=(Ref other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }

    T *Get() const noexcept { return value_; }
    std::add_lvalue_reference_t<T> operator*() const noexcept requires(!std::is_void_v<T>) {
        return *value_;
    }
    explicit operator bool() const noexcept { return value_ != nullptr; }

    // Hands the reference over to the caller, who then releases it.
    [[nodiscard]] T *Release() noexcept { return std::exchange(value_, nullptr); }

private:
    explicit Ref(T *value) noexcept : value_(value) {}

    T *value_ = nullptr;
};

// Takes over a reference: `auto url = Adopt(ValURLCopyAbsolute(other));`
template <class T>
[[nodiscard]] Ref<T> Adopt(T *value) noexcept {
    return Ref<T>::Adopt(value);
}

// Adds a reference: `auto mine = Retain(borrowed);`
template <class T>
[[nodiscard]] Ref<T> Retain(T *value) noexcept {
    return Ref<T>::Retain(value);
}

} // namespace vellum

#endif // VELLUM_VALUES_HPP
