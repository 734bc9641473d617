// SPDX-License-Identifier: MIT
// vellum policy: whether missing fonts are found and activated, for all applications or for one.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// `result` is set to the exit code when the verb runs.
void AddPolicy(CLI::App &app, int &result);

} // namespace vellum::tool
