// SPDX-License-Identifier: MIT
// vellum status: what there is of Vellum here, at a glance.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// `result` is set to the exit code when the verb runs.
void AddStatus(CLI::App &app, int &result);

} // namespace vellum::tool
