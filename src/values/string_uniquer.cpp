// SPDX-License-Identifier: MIT
// One string for each text: the process's pool of names.
#include "values/string_uniquer.hpp"

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

} // namespace

Ref<const ValString> TValStringUniquerImp::GetUniqueString(const ValString *string) noexcept {
    if (!string) return nullptr;
    std::lock_guard lock(mutex_);
    Ref<const ValString> unique = Retain(FindOrAdd(string)); // before the sweep
    SweepIfGrown();
    return unique;
}

Ref<const ValString> TValStringUniquerImp::GetUniqueString(std::string_view text, uint64_t hash) noexcept {
    Ref<const ValString> found = FindText(text, hash);
    Ref<const ValString> string = found ? found : MakeString(text);
    if (string && !string.Get()->is_unicode) return EmptyString(); // the pool may hold such a name
    return found ? found : GetUniqueString(string.Get());
}

Ref<const ValString> TValStringUniquerImp::FindText(std::string_view text, uint64_t hash) noexcept {
    std::lock_guard lock(mutex_);
    return set_ ? Retain(FindStringInSet(*set_, text, hash)) : nullptr;
}

size_t TValStringUniquerImp::Count() noexcept {
    std::lock_guard lock(mutex_);
    return ValSetGetCount(set_.Get());
}

// When there is no memory for the constants, the pool is not begun: it would keep others in their place.
bool TValStringUniquerImp::MakeSet() noexcept {
    auto set = Adopt(ValSetCreateMutable(constants_.size(), nullptr));
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
    ValSetAdd(set_.Get(), string); // without memory, the string stands outside of the pool
    return string;
}

void TValStringUniquerImp::SweepIfGrown() noexcept {
    if (ValSetGetCount(set_.Get()) < next_sweep_) return;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set_.Get(), &cursor, &member);) {
        if (IsHeldByPoolAlone(member)) ValSetRemove(set_.Get(), member);
    }
    next_sweep_ = std::max(kSmallestSweep, ValSetGetCount(set_.Get()) * 2);
}

TValStringUniquer::TValStringUniquer() noexcept : imp_(Pool()) {}

} // namespace vellum
