// SPDX-License-Identifier: MIT
// Exported: listings over both registers, each item once.
#include "describe/font_entity.hpp"
#include "frame/exports/ask.hpp"
#include "frame/exports/guard.hpp"
#include "values/merge_sort.hpp"
#include "values/val_array.hpp"
#include "values/val_set.hpp"

#include <vector>

using namespace vellum;

namespace {

void AddAll(TValMutableSet &items, const ValArray *more) {
    for (size_t i = 0; i < ValArrayGetCount(more); ++i) items.Add(ValArrayGetValue(more, i));
}

// The distinct members of both registers' answers, in the order of `compare`; null for none.
template <class Ask, class Compare>
Ref<const ValArray> ListBoth(VLScope scope, Ask ask, Compare compare) {
    TValMutableSet distinct;
    if (AsksProcess(scope)) AddAll(distinct, ask(TLocalGlyphary()).Get());
    if (AsksShared(scope)) AddAll(distinct, ask(TGlobalGlyphary()).Get());
    if (distinct.IsEmpty()) return nullptr;

    std::vector<const void *> items;
    size_t cursor = 0;
    for (const void *member; ValSetNext(distinct.Get(), &cursor, &member);) items.push_back(member);
    MergeSort(items, compare);
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

template <int (*Compare)(const ValString *, const ValString *)>
int CompareItems(const void *a, const void *b) {
    return Compare(Cast<ValString>(a), Cast<ValString>(b));
}

int KeepOrder(const void *, const void *) {
    return 0;
}

} // namespace

const ValArray *VLCopyAvailableFamilyNames(VLScope scope) noexcept {
    return GuardCopy([&] {
        return ListBoth(
            scope,
            [&](const TGlypharyProtocol &registry) { return registry.CopyAvailableFontFamilyNames(scope); },
            CompareItems<TFontEntity::CompareFamilyNames>);
    });
}

const ValArray *VLCopyAvailableFontNames(VLScope scope) noexcept {
    return GuardCopy([&] {
        return ListBoth(
            scope,
            [&](const TGlypharyProtocol &registry) { return registry.CopyAvailableFontNames(scope); },
            CompareItems<TFontEntity::ComparePostScriptNames>);
    });
}

const ValArray *VLCopyAvailableFontURLs(VLScope scope) noexcept {
    return GuardCopy([&] {
        return ListBoth(
            scope, [&](const TGlypharyProtocol &registry) { return registry.CopyAvailableFontURLs(scope); },
            KeepOrder);
    });
}

const ValArray *VLCopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                             uint32_t reserved) noexcept {
    if (!language) return nullptr;
    return GuardCopy([&] {
        return ListBoth(
            scope,
            [&](const TGlypharyProtocol &registry) {
                return registry.CopyFamilyNamesForLanguage(language, scope, reserved);
            },
            CompareItems<TFontEntity::CompareFamilyNames>);
    });
}
