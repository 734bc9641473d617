// SPDX-License-Identifier: MIT
// What the values of options must be; what is not is a usage error that says why.
#pragma once

#include <CLI/CLI.hpp>

namespace vellum::tool {

// Of a file or a folder: not empty.
CLI::Validator IsPath();

// A whole number above 0.
CLI::Validator IsCount();

// A number above 0, and no infinite one.
CLI::Validator IsDuration();

} // namespace vellum::tool
