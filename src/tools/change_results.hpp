// SPDX-License-Identifier: MIT
// What came of changes, for people and for programs.
#pragma once

#include "tools/changer.hpp"
#include "tools/json.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace vellum::tool {

// What a verb is called.
struct VerbNames {
    const char *name; // register
    const char *done; // registered
};

// One result: for programs; and for people, what was changed.
Json ToJson(const Changed &file);
std::string ToLine(const Changed &file);

// Shows each result when it is there.
class ChangeResults {
public:
    // `options` must outlive it.
    ChangeResults(VerbNames names, const ChangeOptions &options) : names_(names), options_(options) {}

    void Add(const Changed &file);

    // Says on standard error what was not done, ends the document, and gives the exit code.
    int Finish();

private:
    void Show(const Changed &file) const;

    const VerbNames names_;
    const ChangeOptions &options_;
    Json items_ = Json::array();
    std::vector<Refusal> refusals_;
    size_t done_ = 0;
};

} // namespace vellum::tool
