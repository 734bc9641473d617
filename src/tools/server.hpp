// SPDX-License-Identifier: MIT
// Whose fonts a verb changes, and whether there is a font server to change the shared ones.
#pragma once

#include <vellum/vellum.hpp>

#include <CLI/CLI.hpp>
#include <string>

namespace vellum::tool {

// The name of a scope.
CLI::Validator IsScope();

// The option that says for whom; "user" when it is left out. `scope` must outlive the parsing.
void AddScopeOption(CLI::App &verb, std::string &scope);

// The word for one of the option's values.
VLScope ScopeOf(const std::string &name);

// Whether a font server answered when this run began. Without one, changes of the shared register last for
// this run alone.
bool ServerRuns();

// The flag of the whole tool by which a run does without a server. It is looked for before anything else
// is.
void AddServerFlag(CLI::App &app, int count, char **arguments);

// Whether a server would have been asked, and none runs.
bool ServerIsMissed();

// Has the shared register be this process's own, with the machine's fonts, where no server holds it: nobody
// waits for one that is not there. Before the register is asked.
void DoWithoutServerWhereThereIsNone();

// Says on standard error that there is no server, and what to try.
void ReportNoServer(const std::string &advice);

} // namespace vellum::tool
