// SPDX-License-Identifier: MIT
// The faces of font files that need not be registered: for the verbs that look into files.
#pragma once

#include "tools/exit_code.hpp"
#include "tools/font_files.hpp"
#include "tools/json.hpp"
#include "tools/text.hpp"

#include <functional>
#include <vector>

namespace vellum::tool {

struct Outcome {
    size_t faces = 0;
    std::vector<Refusal> refusals;
};

// Calls show(properties) for every face of the files, in their order, with those of the asked properties
// that the face has.
Outcome ForEachFace(const FontFiles &files, const ValSet *keys,
                    const std::function<void(const ValDictionary *properties)> &show);

// Says on standard error what was refused, and why.
void Report(const std::vector<Refusal> &refusals);

Json ToJson(const std::vector<Refusal> &refusals);

// What the command ends with: done when every file was read.
ExitCode Judge(const Outcome &outcome);

} // namespace vellum::tool
