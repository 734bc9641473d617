// SPDX-License-Identifier: MIT
// The names that case files have for the exported keys.
#pragma once

#include "case_values.hpp"

#include <string_view>

namespace vellum::test {

// The key that a name of a case file stands for: the exported constant, or, behind "=", a string of its own
// that equals it. Null when the name stands for none.
Ref<const ValString> CaseKey(CaseKeys keys, std::string_view name);

} // namespace vellum::test
