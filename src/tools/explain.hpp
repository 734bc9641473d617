// SPDX-License-Identifier: MIT
// Why a lookup gave what it gave, in sentences: from the trace that the library tells.
#pragma once

#include "tools/font_set.hpp"
#include "tools/request.hpp"

#include <functional>
#include <string>
#include <vector>

namespace vellum::tool {

// The fonts for a request, and the trace of how they were found.
struct TracedAnswer {
    Ref<const ValArray> fonts; // null for none
    Ref<const ValDictionary> trace;
};

TracedAnswer FindTraced(const ValDictionary *request, VLScope scope);

// What happened, a line a stage.
std::vector<std::string> Explain(const TracedAnswer &answer, VLScope scope);

// Why a font (a URL that the library gave) is not the answer, in one sentence.
std::string WhyNot(const ValURL *font, const std::vector<Wish> &wishes, const TracedAnswer &answer,
                   VLScope scope);

} // namespace vellum::tool
