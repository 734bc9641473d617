// SPDX-License-Identifier: MIT
// Exported: listings over both registers, each item once.
#include "describe/font_entity.hpp"
#include "frame/exports/arguments.hpp"
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "frame/exports/listing_memory.hpp"
#include "query/family_ranks.hpp"
#include "values/merge_sort.hpp"
#include "values/val_array.hpp"
#include "values/val_set.hpp"

#include <algorithm>
#include <mutex>
#include <numeric>
#include <utility>
#include <vector>

using namespace vellum;

namespace {

void AddAll(TValMutableSet &items, const ValArray *more) {
    for (size_t i = 0; i < ValArrayGetCount(more); ++i) items.Add(ValArrayGetValue(more, i));
}

// The distinct members of both registers' answers, in the order in which they came; empty for none.
template <class Ask>
std::vector<const void *> DistinctItems(VLScope scope, TValMutableSet &distinct, Ask ask) {
    if (AsksProcess(scope)) AddAll(distinct, ask(ProcessRegister()).Get());
    if (AsksShared(scope)) AddAll(distinct, ask(SharedRegister()).Get());
    std::vector<const void *> items;
    items.reserve(distinct.Count());
    for (const void *member : distinct) items.push_back(member);
    return items;
}

// What is left in order by `sort(items)`, as an array; null for none.
template <class Ask, class Sort>
Ref<const ValArray> ListBoth(VLScope scope, Ask ask, Sort sort) {
    TValMutableSet distinct;
    auto items = DistinctItems(scope, distinct, ask);
    if (items.empty()) return nullptr;
    sort(items);
    return OrBadAlloc(Adopt(ValArrayCreate(items.data(), items.size())));
}

using Items = std::vector<const void *>;

void KeepOrder(Items &) {}

void SortNames(Items &items) {
    MergeSort(items, [](const void *a, const void *b) {
        return TFontEntity::ComparePostScriptNames(Cast<ValString>(a), Cast<ValString>(b));
    });
}

// The order of families in the listings so far: another listing has few that are new.
class FamilySorter {
public:
    void Sort(Items &items) {
        std::vector<const ValString *> names;
        for (const void *item : items) names.push_back(Cast<ValString>(item));
        const std::lock_guard lock(mutex_);
        if (ranks_.Count() > 2 * items.size() + FamilyRanks::kSpareFamilies) ranks_.Clear();
        try {
            SortByRank(names, items);
        } catch (...) { // memory is exhausted: the ranks may be in any state
            ranks_.Clear();
            throw;
        }
    }

private:
    void SortByRank(const std::vector<const ValString *> &names, Items &items) {
        const auto families = ranks_.FindOrAdd(names);
        std::vector<size_t> places(items.size());
        std::iota(places.begin(), places.end(), size_t{0});
        std::ranges::stable_sort(places, {}, [&](size_t place) { return families[place]->rank; });
        Items sorted;
        for (const size_t place : places) sorted.push_back(items[place]);
        items = std::move(sorted);
    }

    std::mutex mutex_; // guards what follows
    FamilyRanks ranks_;
};

// Never torn down: threads may outlive the end of the program.
struct Listings {
    ListingMemory families, names, urls;
    FamilySorter family_sorter;
};
Listings &Kept() {
    static Listings &sListings = *new Listings;
    return sListings;
}

void SortFamilies(Items &items) {
    Kept().family_sorter.Sort(items);
}

} // namespace

const ValArray *VLCopyAvailableFamilyNames(VLScope scope) noexcept {
    const auto ask = [&](const TGlypharyProtocol &registry) {
        return registry.CopyAvailableFontFamilyNames(scope);
    };
    const auto make = [&] { return ListBoth(scope, ask, SortFamilies); };
    return GuardCopy([&] { return Kept().families.Get(scope, make); });
}

const ValArray *VLCopyAvailableFontNames(VLScope scope) noexcept {
    const auto ask = [&](const TGlypharyProtocol &registry) {
        return registry.CopyAvailableFontNames(scope);
    };
    const auto make = [&] { return ListBoth(scope, ask, SortNames); };
    return GuardCopy([&] { return Kept().names.Get(scope, make); });
}

const ValArray *VLCopyAvailableFontURLs(VLScope scope) noexcept {
    const auto ask = [&](const TGlypharyProtocol &registry) {
        return registry.CopyAvailableFontURLs(scope);
    };
    const auto make = [&] { return ListBoth(scope, ask, KeepOrder); };
    return GuardCopy([&] { return Kept().urls.Get(scope, make); });
}

const ValArray *VLCopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                             uint32_t reserved) noexcept {
    if (!IsArgument<ValString>(language)) return nullptr;
    return GuardCopy([&] {
        return ListBoth(
            scope,
            [&](const TGlypharyProtocol &registry) {
                return registry.CopyFamilyNamesForLanguage(language, scope, reserved);
            },
            SortFamilies);
    });
}
