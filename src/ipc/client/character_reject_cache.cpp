// SPDX-License-Identifier: MIT
#include "ipc/client/character_reject_cache.hpp"

#include "frame/registry/generation_seed.hpp"
#include "platform/process/per_thread.hpp"

#include <new>

namespace vellum {

TCharacterRejectCache::TCharacterRejectCache() noexcept
    : rejects_(TPerThread<Rejects>::Get()), generation_(TGenerationSeed::GetGeneration()) {
    if (!rejects_)
        rejects_ = TPerThread<Rejects>::Set(std::unique_ptr<Rejects>(new (std::nothrow) Rejects));
    if (!rejects_ || (rejects_->characters && rejects_->generation == generation_)) return;
    rejects_->characters = Adopt(ValCharacterSetCreateMutable());
    rejects_->generation = generation_;
}

bool TCharacterRejectCache::Contains(uint32_t character) const noexcept {
    return rejects_ && ValCharacterSetContains(rejects_->characters.Get(), character);
}

void TCharacterRejectCache::Add(uint32_t character) const noexcept {
    if (!rejects_ || TGenerationSeed::GetGeneration() != generation_) return;
    ValCharacterSetAddRange(rejects_->characters.Get(), character, character);
}

} // namespace vellum
