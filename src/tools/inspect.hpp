// SPDX-License-Identifier: MIT
// vellum inspect: what font files hold.
#pragma once

#include <CLI/App.hpp>

namespace vellum::tool {

// Adds the verb; when it has run, `result` is its exit code.
void AddInspect(CLI::App &app, int &result);

} // namespace vellum::tool
