// SPDX-License-Identifier: MIT
// vellum fontinfo: the files that save everybody the reading of fonts which ship with the system.
#pragma once

#include <CLI/App.hpp>

namespace vellum::tool {

// Adds the verb; when it has run, `result` is its exit code.
void AddFontInfo(CLI::App &app, int &result);

} // namespace vellum::tool
