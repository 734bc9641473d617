// SPDX-License-Identifier: MIT
// vellum doctor: what is wrong with the fonts here, and what to do about it.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// `result` is set to the exit code when the verb runs.
void AddDoctor(CLI::App &app, int &result);

} // namespace vellum::tool
