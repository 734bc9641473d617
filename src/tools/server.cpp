// SPDX-License-Identifier: MIT
#include "tools/server.hpp"

#include <cstdlib>
#include <iostream>
#include <map>
#include <vector>

namespace vellum::tool {

namespace {

const std::map<std::string, VLScope> kScopes = {
    {"process", kVLScopeProcess}, {"session", kVLScopeSession}, {"user", kVLScopeUser}};

} // namespace

void AddScopeOption(CLI::App &verb, std::string &scope) {
    std::vector<std::string> names;
    for (const auto &[name, word] : kScopes) names.push_back(name);
    verb.add_option("--scope", scope,
                    "for whom: user (the default), for good; session, until the user logs out;\n"
                    "process, for this run alone, which tries it out")
        ->type_name("SCOPE")
        ->check(CLI::IsMember(names));
}

VLScope ScopeOf(const std::string &name) {
    return kScopes.at(name);
}

bool ServerRuns() {
    static const bool runs = VLFontServerAnswers(); // one answer for the whole run
    return runs;
}

void DoWithoutServerWhereThereIsNone() {
    if (!ServerRuns()) ::setenv("VELLUM_IGNORE_SERVER", "1", 1);
}

void ReportNoServer(const std::string &advice) {
    std::cerr << "vellum: no font server runs" << (advice.empty() ? "" : "; " + advice) << '\n';
}

} // namespace vellum::tool
