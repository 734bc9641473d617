// SPDX-License-Identifier: MIT
// What becomes of a value on its way through the flattened form.
#pragma once

#include "ipc/encoding/reference_model.hpp"

#include <vector>

namespace vellum::test {

// The items that a reader finds one after the other in the bytes of a value. None for null and for a
// value that cannot be written. One for most others; more when empty data was a key or value of a
// dictionary: then that dictionary ends early, and what stood behind is read as items of their own.
std::vector<Model> AfterTheWay(const Model &value);

} // namespace vellum::test
