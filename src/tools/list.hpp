// SPDX-License-Identifier: MIT
// vellum list: which fonts there are.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; its exit code goes to `result` when it has run.
void AddList(CLI::App &app, int &result);

} // namespace vellum::tool
