// SPDX-License-Identifier: MIT
// vellum provider: offer fonts to programs that lack them, and see who does.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// `result` is set to the exit code when the verb runs.
void AddProvider(CLI::App &app, int &result);

} // namespace vellum::tool
