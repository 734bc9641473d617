// SPDX-License-Identifier: MIT
// Sets.
#include "platform/val/set.hpp"

#include "platform/val/string.hpp"

#include <vellum/values.hpp>

namespace vellum {
namespace {

SetEntry *FindEntry(const ValSet *set, const void *item) noexcept {
    if (!set || IsRefused(*set->callbacks, item)) return nullptr;
    return set->table.Find(*set->callbacks, item, HashKey(*set->callbacks, item));
}

void ReleaseAll(ValSet *set) noexcept {
    size_t cursor = 0;
    while (SetEntry *entry = set->table.Next(cursor)) ReleaseItem(*set->callbacks, entry->key);
}

void FinalizeSet(ValObject *object) {
    auto *set = static_cast<ValSet *>(object);
    ReleaseAll(set);
    set->table.FreeMemory();
}

bool HasMembersOf(const ValSet *set, const ValSet *other) noexcept {
    size_t cursor = 0;
    while (const SetEntry *entry = other->table.Next(cursor)) {
        if (!set->table.Find(*set->callbacks, entry->key, entry->hash)) return false;
    }
    return true;
}

bool EqualSets(const ValObject *a, const ValObject *b) {
    auto *left = static_cast<const ValSet *>(a);
    auto *right = static_cast<const ValSet *>(b);
    if (left->table.Count() != right->table.Count() || !SameRules(*left->callbacks, *right->callbacks)) {
        return false;
    }
    EqualityDepth depth(left->table.Count());
    return depth && HasMembersOf(left, right);
}

uint64_t HashSet(const ValObject *object) {
    auto *set = static_cast<const ValSet *>(object);
    uint64_t sum = 0; // whatever the order
    size_t cursor = 0;
    while (const SetEntry *entry = set->table.Next(cursor)) sum += HashInteger(entry->hash);
    return CombineHash(CombineHash(kValTypeSet, set->table.Count()), sum);
}

bool AddEntry(ValSet *set, const void *item, uint32_t hash) noexcept {
    SetEntry *entry = set->table.Append(item, hash);
    if (entry) entry->key = RetainItem(*set->callbacks, item);
    return entry != nullptr;
}

} // namespace

constinit const ValKind kSetKind{kValTypeSet, "Set", FinalizeSet, EqualSets, HashSet, nullptr};

const ValString *FindStringInSet(const ValSet &set, std::string_view text, uint64_t hash) noexcept {
    const SetEntry *entry = set.table.FindMatching(SpreadHash(hash), [text](const void *member) {
        return Text(static_cast<const ValString *>(member)) == text;
    });
    return entry ? static_cast<const ValString *>(entry->key) : nullptr;
}

ValSet *AdoptIntoSet(std::span<const void *const> items, size_t &patience) noexcept {
    const EqualityBudget budget(patience);
    ValSet *set = ValSetCreateMutable(items.size(), nullptr);
    for (size_t i = 0; i < items.size(); ++i) {
        const void *item = items[i];
        const size_t count = ValSetGetCount(set);
        const SetEntry *entry = set ? set->table.FindOrAppend(kValValueCallbacks, item,
                                                              HashKey(kValValueCallbacks, item), patience)
                                    : nullptr;
        if (entry && set->table.Count() != count) continue;
        ValRelease(item);
        if (entry) continue;
        for (const void *left : items.subspan(i + 1)) ValRelease(left);
        ValRelease(set);
        return nullptr;
    }
    return set;
}

} // namespace vellum

using namespace vellum;

const ValSet *ValSetCreate(const void *const *items, size_t count) noexcept {
    if (count && !items) return nullptr;
    Ref<ValSet> set = Adopt(ValSetCreateMutable(count, nullptr));
    for (size_t i = 0; i < count; ++i) {
        if (!ValSetAdd(set.Get(), items[i])) return nullptr;
    }
    return set.Release();
}

ValSet *ValSetCreateMutable(size_t capacity, const ValCallbacks *callbacks) noexcept {
    using Table = HashTable<SetEntry>;
    const ValCallbacks &rules = OrValueCallbacks(callbacks);
    if (capacity > Table::kMaximumCapacity) return nullptr;
    auto *set = AllocateObject<ValSet>(BytesForCallbacks(rules) + Table::BytesFor(capacity));
    if (!set) return nullptr;
    void *tail = ExtraBytes(set);
    set->callbacks = PlaceCallbacks(rules, tail);
    set->table.Place(tail, capacity);
    return set;
}

ValSet *ValSetCreateMutableCopy(const ValSet *set) noexcept {
    if (!set) return nullptr;
    ValSet *copy = ValSetCreateMutable(set->table.Count(), set->callbacks);
    size_t cursor = 0;
    while (const SetEntry *entry = copy ? set->table.Next(cursor) : nullptr) {
        AddEntry(copy, entry->key, entry->hash); // there is room for all
    }
    return copy;
}

size_t ValSetGetCount(const ValSet *set) noexcept {
    return set ? set->table.Count() : 0;
}

bool ValSetContains(const ValSet *set, const void *item) noexcept {
    return FindEntry(set, item) != nullptr;
}

bool ValSetGetMemberIfPresent(const ValSet *set, const void *item, const void **member) noexcept {
    const SetEntry *entry = FindEntry(set, item);
    if (entry && member) *member = entry->key;
    return entry != nullptr;
}

bool ValSetNext(const ValSet *set, size_t *cursor, const void **member) noexcept {
    const SetEntry *entry = set && cursor ? set->table.Next(*cursor) : nullptr;
    if (entry && member) *member = entry->key;
    return entry != nullptr;
}

bool ValSetAdd(ValSet *set, const void *item) noexcept {
    if (!set || IsRefused(*set->callbacks, item)) return false;
    const uint32_t hash = HashKey(*set->callbacks, item);
    return set->table.Find(*set->callbacks, item, hash) || AddEntry(set, item, hash);
}

bool ValSetRemove(ValSet *set, const void *item) noexcept {
    SetEntry *entry = FindEntry(set, item);
    if (!entry) return false;
    set->table.Remove(entry);
    ReleaseItem(*set->callbacks, entry->key);
    return true;
}

void ValSetRemoveAll(ValSet *set) noexcept {
    if (!set) return;
    ReleaseAll(set);
    set->table.Clear();
}
