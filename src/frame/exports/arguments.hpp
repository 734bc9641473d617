// SPDX-License-Identifier: MIT
// What an exported query takes for an argument.
#pragma once

#include "values/val_cast.hpp"

namespace vellum {

// Whether a value, and all containers in it, hold values and nothing else, with the library's own
// callbacks: those of a caller would run while a register is locked. Nested deeper, or holding more, than
// any value of ours: no.
bool IsPlain(const void *value) noexcept;

// A plain value of the expected kind.
template <class T>
bool IsArgument(const void *value) noexcept {
    return Cast<T>(value) && IsPlain(value);
}

} // namespace vellum
