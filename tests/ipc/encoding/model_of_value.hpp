// SPDX-License-Identifier: MIT
// From a value to its model, through the public interface alone.
#pragma once

#include "ipc/encoding/reference_model.hpp"

namespace vellum::test {

// Of a value of the ten kinds, or null, whose containers hold such values. Throws std::logic_error for
// any other.
Model ModelOf(const void *value);

} // namespace vellum::test
