// SPDX-License-Identifier: MIT
// vellum server: starting, stopping and asking after the font server.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; the exit code goes to `result`.
void AddServer(CLI::App &app, int &result);

} // namespace vellum::tool
