// SPDX-License-Identifier: MIT
// One string for each text: the process's pool of names.
#include "values/string_uniquer.hpp"

#include "platform/val/object.hpp"

#include <algorithm>
#include <type_traits>

namespace vellum {
namespace {

constinit TValStringUniquerImp sStringUniquer;
static_assert(std::is_trivially_destructible_v<TValStringUniquerImp>); // nothing runs at exit

bool IsHeldByPoolAlone(const void *string) noexcept {
    return AsObject(string)->references.load(std::memory_order_acquire) == 1;
}

} // namespace

Ref<const ValString> TValStringUniquerImp::GetUniqueString(const ValString *string) noexcept {
    if (!string) return nullptr;
    std::lock_guard lock(mutex_);
    Ref<const ValString> unique = Retain(FindOrAdd(string)); // before the sweep
    SweepIfGrown();
    return unique;
}

size_t TValStringUniquerImp::Count() noexcept {
    std::lock_guard lock(mutex_);
    return ValSetGetCount(set_);
}

const ValString *TValStringUniquerImp::FindOrAdd(const ValString *string) noexcept {
    if (!set_) set_ = ValSetCreateMutable(0, nullptr);
    const void *member;
    if (ValSetGetMemberIfPresent(set_, string, &member)) return static_cast<const ValString *>(member);
    ValSetAdd(set_, string); // without memory, the string stands outside of the pool
    return string;
}

void TValStringUniquerImp::SweepIfGrown() noexcept {
    if (ValSetGetCount(set_) < next_sweep_) return;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set_, &cursor, &member);) {
        if (IsHeldByPoolAlone(member)) ValSetRemove(set_, member);
    }
    next_sweep_ = std::max(kSmallestSweep, ValSetGetCount(set_) * 2);
}

TValStringUniquer::TValStringUniquer() noexcept : imp_(sStringUniquer) {}

void SeedUniqueStrings(std::span<const ValString *const> strings) noexcept {
    for (const ValString *string : strings) sStringUniquer.GetUniqueString(string);
}

} // namespace vellum
