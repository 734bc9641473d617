// SPDX-License-Identifier: MIT
// vellum match: which font is best for a request, and why.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; its exit code goes to `result` when it has run.
void AddMatch(CLI::App &app, int &result);

} // namespace vellum::tool
