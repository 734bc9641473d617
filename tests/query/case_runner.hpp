// SPDX-License-Identifier: MIT
// Carries a case out; what it disagrees with is a failure of the running test.
#pragma once

#include "case_values.hpp"

namespace vellum::test {

void RunCase(const Json &json);

} // namespace vellum::test
