// SPDX-License-Identifier: MIT
// One string for each text: the process's pool of names.
#include "values/string_uniquer.hpp"

#include "platform/process/random.hpp"
#include "platform/val/set.hpp"
#include "platform/val/string.hpp"

#include <algorithm>
#include <new>
#include <utility>

namespace vellum {
namespace {

// Made by the first call and never destroyed: threads may outlive the end of the program.
TValStringUniquerImp &Pool() noexcept {
    alignas(TValStringUniquerImp) static std::byte sStorage[sizeof(TValStringUniquerImp)];
    static auto *const sPool = new (sStorage) TValStringUniquerImp(PooledConstants());
    return *sPool;
}

bool IsHeldByPoolAlone(const void *string) noexcept {
    return AsObject(string)->references.load(std::memory_order_acquire) == 1;
}

HashSeeds MakeSeeds() noexcept {
    HashSeeds seeds = kHashSeeds;
    FillRandom(seeds.data(), sizeof seeds); // without chance, those that everybody knows
    return seeds;
}

uint64_t HashInPool(std::string_view text) noexcept {
    static const HashSeeds sSeeds = MakeSeeds();
    return HashBytes(text, sSeeds);
}

uint64_t HashStringInPool(const void *string) noexcept {
    return HashInPool(Text(static_cast<const ValString *>(string)));
}

constexpr ValCallbacks kPoolCallbacks = {ValRetain, ValRelease, ValEqual, HashStringInPool,
                                         ValCopyDescription};

} // namespace

Ref<const ValString> TValStringUniquerImp::GetUniqueString(const ValString *string) noexcept {
    if (!string) return nullptr;
    std::lock_guard lock(mutex_);
    Ref<const ValString> unique = Retain(FindOrAdd(string)); // before the sweep
    SweepIfGrown();
    return unique;
}

Ref<const ValString> TValStringUniquerImp::GetUniqueString(std::string_view text) noexcept {
    if (!ScanText(text).is_unicode) return EmptyString(); // though the pool may hold such a name
    if (Ref<const ValString> found = FindText(text)) return found;
    return GetUniqueString(MakeString(text).Get());
}

Ref<const ValString> TValStringUniquerImp::FindText(std::string_view text) noexcept {
    std::lock_guard lock(mutex_);
    return set_ ? Retain(FindStringInSet(*set_, text, HashInPool(text))) : nullptr;
}

size_t TValStringUniquerImp::Count() noexcept {
    std::lock_guard lock(mutex_);
    return ValSetGetCount(set_.Get());
}

size_t TValStringUniquerImp::CountBytes() noexcept {
    std::lock_guard lock(mutex_);
    return bytes_;
}

// When there is no memory for the constants, the pool is not begun: it would keep others in their place.
bool TValStringUniquerImp::MakeSet() noexcept {
    auto set = Adopt(ValSetCreateMutable(constants_.size(), &kPoolCallbacks));
    for (const ValString *constant : constants_) {
        if (!ValSetAdd(set.Get(), constant)) return false;
    }
    set_ = std::move(set);
    return static_cast<bool>(set_);
}

const ValString *TValStringUniquerImp::FindOrAdd(const ValString *string) noexcept {
    if (!set_ && !MakeSet()) return string;
    const void *member;
    if (ValSetGetMemberIfPresent(set_.Get(), string, &member))
        return static_cast<const ValString *>(member);
    if (ValSetAdd(set_.Get(), string))
        bytes_ += string->length; // else the string stands outside of the pool
    return string;
}

void TValStringUniquerImp::SweepIfGrown() noexcept {
    if (ValSetGetCount(set_.Get()) < next_sweep_ && bytes_ < next_sweep_bytes_) return;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set_.Get(), &cursor, &member);) {
        if (!IsHeldByPoolAlone(member)) continue;
        bytes_ -= static_cast<const ValString *>(member)->length;
        ValSetRemove(set_.Get(), member);
    }
    next_sweep_ = std::max(kSmallestSweep, ValSetGetCount(set_.Get()) * 2);
    next_sweep_bytes_ = std::max(kSmallestSweepBytes, bytes_ * 2);
}

TValStringUniquer::TValStringUniquer() noexcept : imp_(Pool()) {}

} // namespace vellum
