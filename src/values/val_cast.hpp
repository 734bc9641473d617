// SPDX-License-Identifier: MIT
// Typed downcasts of values.
#pragma once

#include <vellum/values.hpp>

namespace vellum {

template <class T>
inline constexpr ValType kTypeOf = kValTypeNone;
template <>
inline constexpr ValType kTypeOf<ValString> = kValTypeString;
template <>
inline constexpr ValType kTypeOf<ValNumber> = kValTypeNumber;
template <>
inline constexpr ValType kTypeOf<ValBoolean> = kValTypeBoolean;
template <>
inline constexpr ValType kTypeOf<ValData> = kValTypeData;
template <>
inline constexpr ValType kTypeOf<ValUUID> = kValTypeUUID;
template <>
inline constexpr ValType kTypeOf<ValURL> = kValTypeURL;
template <>
inline constexpr ValType kTypeOf<ValArray> = kValTypeArray;
template <>
inline constexpr ValType kTypeOf<ValDictionary> = kValTypeDictionary;
template <>
inline constexpr ValType kTypeOf<ValSet> = kValTypeSet;
template <>
inline constexpr ValType kTypeOf<ValCharacterSet> = kValTypeCharacterSet;

// The value as a T, or null when it is of another kind: `auto *name = Cast<ValString>(value);`
template <class T>
const T *Cast(const void *value) noexcept {
    using Kind = std::remove_const_t<T>;
    static_assert(kTypeOf<Kind> != kValTypeNone, "not a kind of value");
    return ValGetType(value) == kTypeOf<Kind> ? static_cast<const T *>(value) : nullptr;
}

} // namespace vellum
