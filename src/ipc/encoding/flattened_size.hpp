// SPDX-License-Identifier: MIT
// How many bytes a value takes once it is flattened.
#pragma once

#include "ipc/encoding/encoding.hpp"

#include <cstddef>

namespace vellum {

// Exact for every kind but strings, which are taken to need three bytes for each UTF-16 unit. A kind
// that cannot be flattened counts 0, and so do containers nested deeper than may be flattened. A value
// that takes more than `enough` is not looked at any further once that is known.
size_t EstimateFlattenedSize(const void *value, size_t enough = kMaximumFlattenedLength) noexcept;

} // namespace vellum
