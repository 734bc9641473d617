// SPDX-License-Identifier: MIT
// The order of faces, for each form in which faces come.
#include "describe/basic_font_entity.hpp"
#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "query/comparison_key.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

#include <vellum/vellum.h>

namespace vellum {

TFontEntityComparisonContext::TFontEntityComparisonContext(const void *request) noexcept {
    if (const auto *keys = Cast<ValSet>(request)) {
        names_postscript_name_ = ValSetContains(keys, kVLFontPropertyName);
    } else if (const auto *dictionary = Cast<ValDictionary>(request)) {
        names_postscript_name_ = ValDictionaryContainsKey(dictionary, kVLFontPropertyName);
        if (names_postscript_name_) return;
        preferred_subfamily_ =
            Cast<ValString>(ValDictionaryGetValue(dictionary, kVLFontPropertySubfamilyName));
    }
}

int TFontEntity::CompareTraits(const ValDictionary *a, const ValDictionary *b) {
    return CompareTraitKeys(TraitKey(a), TraitKey(b));
}

int TFontEntity::CompareFontEntities(const TFontEntity &a, const TFontEntity &b,
                                     const TFontEntityComparisonContext *context) {
    return CompareEntityKeys(ComparisonKey(a), ComparisonKey(b), context).order;
}

int TFontEntity::Compare(const TFontEntity &other, const TFontEntityComparisonContext *context) const {
    return CompareKeys(ComparisonKey(*this), ComparisonKey(other), context).order;
}

int TBasicFontEntity::CompareBasicFontInfo(const ValDictionary *a, const ValDictionary *b,
                                           const TFontEntityComparisonContext *context) {
    return TBasicFontEntity(Retain(a)).Compare(TBasicFontEntity(Retain(b)), context);
}

int TClientFontEntity::CompareFontURLs(const ValURL *a, const ValURL *b,
                                       const TFontEntityComparisonContext *context) {
    return TClientFontEntity(CreateFontFromURL(a))
        .Compare(TClientFontEntity(CreateFontFromURL(b)), context);
}

} // namespace vellum
