// SPDX-License-Identifier: MIT
#include "ipc/client/kept_replies.hpp"

#include "frame/registry/generation_seed.hpp"
#include "ipc/encoding/travelling_values.hpp"

#include <cstring>
#include <utility>

namespace vellum {

bool KeptReplies::Kept::IsOf(const ReplyMemory &reply) const noexcept {
    if (!value) return false;
    if (!reply.mapping.Bytes().empty()) return pages.IsSameAs(reply.mapping);
    return bytes.size() == reply.bytes.size() &&
           std::memcmp(bytes.data(), reply.bytes.data(), bytes.size()) == 0;
}

Ref<const void> KeptReplies::Read(ReplyMemory reply) {
    const size_t length = reply.bytes.size();
    if (length < kShortest || length > kLongest) return Resurrected(reply.bytes);
    ForgetOnceFontsHaveChanged();
    for (const Kept &kept : kept_)
        if (kept.IsOf(reply)) return kept.value;

    auto value = Resurrected(reply.bytes);
    if (!value) return nullptr;
    Kept fresh{std::move(reply.mapping), {}, value};
    if (fresh.pages.Bytes().empty()) fresh.bytes.assign(reply.bytes.begin(), reply.bytes.end());
    kept_[next_] = std::move(fresh);
    next_ = (next_ + 1) % kMost;
    return value;
}

void KeptReplies::ForgetOnceFontsHaveChanged() noexcept {
    const uint32_t generation = TGenerationSeed::GetGeneration();
    if (std::exchange(generation_, generation) == generation) return;
    for (Kept &kept : kept_) kept = {};
}

} // namespace vellum
