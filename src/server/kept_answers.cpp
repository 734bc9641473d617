// SPDX-License-Identifier: MIT
#include "server/kept_answers.hpp"

#include "frame/registry/generation_seed.hpp"
#include "platform/process/passing_failures.hpp"

#include <utility>

namespace vellum {

OutgoingMemory KeptAnswers::Get(std::string question, const std::function<OutgoingMemory()> &make) {
    const uint32_t generation = TGenerationSeed::GetGeneration();
    if (std::exchange(generation_, generation) != generation || answers_.size() >= kMost) Forget();
    const auto kept = answers_.find(question);
    if (kept != answers_.end()) return kept->second;
    const uint32_t failures = tPassingFailures;
    OutgoingMemory answer = make();
    if (failures != tPassingFailures || question.size() > kLongestQuestion || answer.length > kMostBytes)
        return answer;
    if (bytes_ + answer.length > kMostBytes) Forget();
    answers_.emplace(std::move(question), answer);
    bytes_ += answer.length;
    return answer;
}

void KeptAnswers::Forget() noexcept {
    answers_.clear();
    bytes_ = 0;
}

} // namespace vellum
