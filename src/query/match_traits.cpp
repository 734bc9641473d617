// SPDX-License-Identifier: MIT
// Whether traits, and places on axes, have what a request wants of them.
#include "describe/font_entity.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <vellum/vellum.h>

#include <cmath>

namespace vellum {

namespace {

// Trait values this close are the same: fonts state them in single precision, requests often in double.
constexpr double kTraitTolerance = 0.0001;

uint32_t SymbolicTraits(const ValDictionary *traits) {
    return static_cast<uint32_t>(ReadSInt32(ValDictionaryGetValue(traits, kVLFontTraitSymbolic)));
}

// A request by axis identifiers as one by axis names; null when there is an identifier that no axis has.
Ref<const ValDictionary> ByAxisNames(const ValDictionary *requested, const ValArray *axes) {
    TValMutableDict by_name;
    size_t cursor = 0;
    for (const void *identifier, *place; ValDictionaryNext(requested, &cursor, &identifier, &place);) {
        bool is_known = false;
        for (const void *element : Elements(axes)) {
            const auto *axis = Cast<ValDictionary>(element);
            const void *own = ValDictionaryGetValue(axis, kVLVariationAxisIdentifier);
            if (!own || !ValEqual(own, identifier)) continue;
            by_name.Set(ValDictionaryGetValue(axis, kVLVariationAxisName), place);
            is_known = true;
        }
        if (!is_known) return nullptr;
    }
    return by_name.Publish();
}

// Requests name their axes in one way throughout; the first key tells which.
bool IsByIdentifiers(const ValDictionary *requested) {
    size_t cursor = 0;
    const void *first = nullptr;
    return ValDictionaryNext(requested, &cursor, &first, nullptr) && Cast<ValNumber>(first);
}

} // namespace

bool TFontEntity::MatchesTraits(const ValDictionary *requested, const ValDictionary *traits) const {
    Ref<const void> own;
    if (!traits) {
        own = CopyProperty(kVLFontPropertyTraits, true);
        traits = Cast<ValDictionary>(own.Get());
        if (!traits) return false;
    }
    if (ValDictionaryContainsKey(requested, kVLFontTraitSymbolic)) {
        const uint32_t wanted = SymbolicTraits(requested);
        if ((SymbolicTraits(traits) & wanted) != wanted) return false;
    }
    for (const ValString *key : {kVLFontTraitWeight, kVLFontTraitWidth, kVLFontTraitSlant}) {
        if (!ValDictionaryContainsKey(requested, key)) continue;
        const double wanted = ReadFloat64(ValDictionaryGetValue(requested, key));
        const double value = ReadFloat64(ValDictionaryGetValue(traits, key));
        if (!(std::abs(value - wanted) <= kTraitTolerance)) return false;
    }
    return true;
}

bool TFontEntity::MatchesVariations(const ValDictionary *requested, const ValDictionary *variations) const {
    if (requested && ContainsSubset(variations, requested)) return true;
    if (ValDictionaryGetCount(requested) == 0 || !IsByIdentifiers(requested)) return false;
    const auto axes = CopyProperty(kVLFontPropertyVariationAxes, true);
    const auto by_name = ByAxisNames(requested, Cast<ValArray>(axes.Get()));
    return by_name && ContainsSubset(variations, by_name.Get());
}

} // namespace vellum
