// SPDX-License-Identifier: MIT
// vellum monitor: which fonts come and go.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

void AddMonitor(CLI::App &app, int &result);

} // namespace vellum::tool
