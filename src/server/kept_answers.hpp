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
    void Forget() noexcept;

    // Few questions are asked by everybody; strangers could think of any number, of any length.
    static constexpr size_t kMost = 64;
    static constexpr size_t kLongestQuestion = size_t{4} << 10;
    static constexpr size_t kMostBytes = size_t{64} << 20;

    std::map<std::string, OutgoingMemory> answers_;
    size_t bytes_ = 0;        // of the answers
    uint32_t generation_ = 0; // of the fonts that they are about
};

} // namespace vellum
