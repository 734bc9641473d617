// SPDX-License-Identifier: MIT
// vellum coverage: which languages a font can write, and what it lacks for the others.
#pragma once

#include <CLI/App.hpp>

namespace vellum::tool {

// Adds the verb; when it has run, `result` is its exit code.
void AddCoverage(CLI::App &app, int &result);

} // namespace vellum::tool
