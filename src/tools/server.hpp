// SPDX-License-Identifier: MIT
// Whose fonts a verb changes, and whether there is a font server to change the shared ones.
#pragma once

#include <vellum/vellum.hpp>

#include <CLI/CLI.hpp>
#include <string>

namespace vellum::tool {

// The option that says for whom; "user" when it is left out. `scope` must outlive the parsing.
void AddScopeOption(CLI::App &verb, std::string &scope);

// The word for one of the option's values.
VLScope ScopeOf(const std::string &name);

// Whether changes of the shared register would last: without a font server it is one of this process.
bool ServerRuns();

// Says on standard error that there is no server, and what to try.
void ReportNoServer(const std::string &advice);

} // namespace vellum::tool
