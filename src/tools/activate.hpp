// SPDX-License-Identifier: MIT
// vellum activate: fonts that are missing, by their names, found and registered.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; the exit code goes to `result`.
void AddActivate(CLI::App &app, int &result);

} // namespace vellum::tool
