// SPDX-License-Identifier: MIT
// vellum text: which font draws which part of a text, and what no font draws.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Adds the verb; its exit code goes to `result` when it has run.
void AddText(CLI::App &app, int &result);

} // namespace vellum::tool
