// SPDX-License-Identifier: MIT
// vellum index: what the index of the font files in the user's folders knows.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; the exit code goes to `result`.
void AddIndex(CLI::App &app, int &result);

// Says on standard error that there is no index, and how there would be one.
void ReportNoIndex();

} // namespace vellum::tool
