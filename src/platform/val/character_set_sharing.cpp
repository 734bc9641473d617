// SPDX-License-Identifier: MIT
// The table of shared character sets: one live object for each coverage in the process.
//
// A set of count 0 may still stand in the table while its last releaser waits for the mutex to take
// it out. It is never handed out again, and an equal one may stand beside it until then.
#include "platform/process/fork_gate.hpp"
#include "platform/val/character_set.hpp"

#include <bit>
#include <mutex>

namespace vellum {
namespace {

// Chains of sets through `next_shared`. Never destroyed: threads may outlive the library's end.
class SharedSets {
public:
    const ValCharacterSet *Share(const ValCharacterSet *set, uint64_t hash) noexcept {
        std::lock_guard lock(mutex_);
        if (count_ >= bucket_count_ && !Grow()) return nullptr;
        for (auto *other = Bucket(hash); other; other = other->next_shared) {
            if (ValEqual(other, set) && TryRetain(other)) return other;
        }
        if (set->is_shared) return nullptr;
        set->is_shared = true;
        set->next_shared = std::exchange(Bucket(hash), set);
        ++count_;
        return nullptr;
    }

    void Forget(const ValCharacterSet *set, uint64_t hash) noexcept {
        std::lock_guard lock(mutex_);
        const ValCharacterSet **link = &Bucket(hash);
        while (*link != set) link = &(*link)->next_shared;
        *link = set->next_shared;
        --count_;
    }

private:
    const ValCharacterSet *&Bucket(uint64_t hash) noexcept { return buckets_[hash & (bucket_count_ - 1)]; }

    bool Grow() noexcept {
        size_t old_count = bucket_count_;
        size_t new_count = old_count ? old_count * 2 : 64;
        auto **grown = static_cast<const ValCharacterSet **>(std::calloc(new_count, sizeof(void *)));
        if (!grown) return old_count != 0; // longer chains are no harm
        const ValCharacterSet **old = std::exchange(buckets_, grown);
        bucket_count_ = new_count;
        for (size_t i = 0; i < old_count; ++i) {
            while (const ValCharacterSet *set = old[i]) {
                old[i] = set->next_shared;
                set->next_shared = std::exchange(Bucket(ValHash(set)), set);
            }
        }
        std::free(old);
        return true;
    }

    std::mutex mutex_; // guards all of this, and the links and flags of the sets in it
    const ValCharacterSet **buckets_ = nullptr;
    size_t bucket_count_ = 0; // a power of two, or 0
    size_t count_ = 0;
};

constinit SharedSets sSharedSets;

} // namespace

Ref<const ValCharacterSet> ShareCharacterSet(Ref<const ValCharacterSet> set) noexcept {
    if (!set) return nullptr;
    const InLibrary inside;
    const ValCharacterSet *other = sSharedSets.Share(set.Get(), ValHash(set.Get()));
    return other ? Ref<const ValCharacterSet>::Adopt(other) : set;
}

void ForgetSharedCharacterSet(const ValCharacterSet *set) noexcept {
    const InLibrary inside; // programs release sets, too
    sSharedSets.Forget(set, ValHash(set));
}

} // namespace vellum
