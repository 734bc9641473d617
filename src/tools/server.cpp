// SPDX-License-Identifier: MIT
#include "tools/server.hpp"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <vector>

namespace vellum::tool {

namespace {

const std::map<std::string, VLScope> kScopes = {
    {"process", kVLScopeProcess}, {"session", kVLScopeSession}, {"user", kVLScopeUser}};

bool is_unwanted = false; // the server, by the user of this run

} // namespace

CLI::Validator IsScope() {
    std::vector<std::string> names;
    for (const auto &[name, word] : kScopes) names.push_back(name);
    return CLI::IsMember(names);
}

void AddScopeOption(CLI::App &verb, std::string &scope) {
    verb.add_option("--scope", scope,
                    "for whom: user (the default), for good; session, until the user logs out;\n"
                    "process, for this run alone, which tries it out")
        ->type_name("SCOPE")
        ->check(IsScope());
}

VLScope ScopeOf(const std::string &name) {
    return kScopes.at(name);
}

void AddServerFlag(CLI::App &app, int count, char **arguments) {
    app.add_flag("--no-server", is_unwanted,
                 "ask no font server; the machine's fonts are read by this run");
    app.fallthrough();
    for (int i = 1; i < count && std::strcmp(arguments[i], "--") != 0; ++i)
        if (std::strcmp(arguments[i], "--no-server") == 0) is_unwanted = true;
}

bool ServerRuns() {
    static const bool runs = !is_unwanted && VLFontServerAnswers(); // one answer for the whole run
    return runs;
}

bool ServerIsMissed() {
    return !is_unwanted && !ServerRuns();
}

void DoWithoutServerWhereThereIsNone() {
    if (!ServerRuns()) ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
}

void ReportNoServer(const std::string &advice) {
    std::cerr << "vellum: no font server runs" << (advice.empty() ? "" : "; " + advice) << '\n';
}

} // namespace vellum::tool
