// SPDX-License-Identifier: MIT
// Failures that pass: memory or descriptors have run out for a moment, a file is not there just now.
//
// Many functions answer null both then and for what there is not. Who keeps an answer must know which it
// was, and looks whether the count has moved meanwhile.
#pragma once

#include <cstdint>

namespace vellum {

// Of this thread. Whoever answers a passing failure with null counts it.
inline constinit thread_local uint32_t tPassingFailures = 0;

} // namespace vellum
