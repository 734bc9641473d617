// SPDX-License-Identifier: MIT
// Answers that everybody asks for, as they travel: made once, and handed out until a font changes.
#pragma once

#include "platform/port/message.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace vellum {

class KeptAnswers {
public:
    // The answer to `question`, whatever bytes stand for it, as `make` gives it.
    OutgoingMemory Get(std::string question, const std::function<OutgoingMemory()> &make);

private:
    // Few questions are asked by everybody; strangers could think of any number.
    static constexpr size_t kMost = 64;

    std::map<std::string, OutgoingMemory> answers_;
    uint32_t generation_ = 0; // of the fonts that they are about
};

} // namespace vellum
