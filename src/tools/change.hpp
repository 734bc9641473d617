// SPDX-License-Identifier: MIT
// vellum register, unregister, enable, disable: changing which fonts there are.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

void AddChanges(CLI::App &app, int &result);

} // namespace vellum::tool
