// SPDX-License-Identifier: MIT
#include "query/comparison_key.hpp"

#include "describe/font_traits.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <vellum/vellum.h>

#include <cmath>

namespace vellum {

namespace {

constexpr double kSmallestDifference = 0.0001;

constexpr unsigned kClassShift = 28;

template <class T>
int CompareNumbers(T a, T b) noexcept {
    return (a > b) - (a < b);
}

// The plainer of two values comes first: that of the smaller magnitude. That two of one magnitude, such
// as 0.4 and -0.4, each come after the other is deliberate: who sorts lives with it.
int ComparePlainness(double a, double b) noexcept {
    return std::abs(static_cast<float>(b)) > std::abs(static_cast<float>(a)) ? -1 : 1;
}

int CompareClasses(uint32_t a, uint32_t b) noexcept {
    return CompareNumbers(ClassifyReduceTraitsClass(a >> kClassShift),
                          ClassifyReduceTraitsClass(b >> kClassShift));
}

bool AreSame(const ValString *a, const ValString *b) noexcept {
    return a == b || (a && b && ValEqual(a, b));
}

// The higher priority comes first.
Comparison ComparePriorities(const ComparisonKey &a, const ComparisonKey &b) noexcept {
    const int order = CompareNumbers(b.priority, a.priority);
    return {order, order ? kVLFontPropertyPriority : nullptr};
}

Ref<const ValString> CopyName(const TFontEntity &font, const ValString *key) {
    const auto name = font.CopyProperty(key, false);
    return Retain(Cast<ValString>(name.Get()));
}

} // namespace

TraitKey::TraitKey(const ValDictionary *traits) noexcept
    : is_present(traits != nullptr),
      symbolic(static_cast<uint32_t>(ReadSInt32(ValDictionaryGetValue(traits, kVLFontTraitSymbolic)))),
      weight(ReadFloat64(ValDictionaryGetValue(traits, kVLFontTraitWeight))),
      slant(ReadFloat64(ValDictionaryGetValue(traits, kVLFontTraitSlant))),
      width(ReadFloat64(ValDictionaryGetValue(traits, kVLFontTraitWidth))) {}

ComparisonKey::ComparisonKey(const TFontEntity &font)
    : postscript_name(CopyName(font, kVLFontPropertyName)),
      family(CopyName(font, kVLFontPropertyFamilyName)),
      subfamily(CopyName(font, kVLFontPropertySubfamilyName)),
      traits(Cast<ValDictionary>(font.CopyProperty(kVLFontPropertyTraits, false).Get())),
      priority(static_cast<uint32_t>(ReadSInt32(font.CopyProperty(kVLFontPropertyPriority, false).Get()))) {
}

bool DifferInTrait(double a, double b) noexcept {
    return std::abs(a - b) >= kSmallestDifference;
}

int CompareTraitKeys(const TraitKey &a, const TraitKey &b) noexcept {
    if (!a.is_present || !b.is_present) return CompareNumbers(a.is_present, b.is_present);
    if (const int order = CompareNumbers(a.symbolic & kStyleBits, b.symbolic & kStyleBits)) return order;
    if (DifferInTrait(a.weight, b.weight)) return ComparePlainness(a.weight, b.weight);
    if (DifferInTrait(a.slant, b.slant)) return ComparePlainness(a.slant, b.slant);
    if (DifferInTrait(a.width, b.width)) return ComparePlainness(a.width, b.width);
    return CompareClasses(a.symbolic, b.symbolic);
}

Comparison CompareWithinFamily(const ComparisonKey &a, const ComparisonKey &b) noexcept {
    if (const int order = CompareTraitKeys(a.traits, b.traits)) return {order, kVLFontPropertyTraits};
    int order = 0;
    if (a.subfamily && b.subfamily) {
        order = ValStringCompare(a.subfamily.Get(), b.subfamily.Get(), kValCompareNumeric);
        if (order == 0) return ComparePriorities(a, b);
    } else {
        order = CompareNumbers(static_cast<bool>(a.subfamily), static_cast<bool>(b.subfamily));
    }
    return {order, order ? kVLFontPropertySubfamilyName : nullptr};
}

Comparison CompareEntityKeys(const ComparisonKey &a, const ComparisonKey &b,
                             const TFontEntityComparisonContext *context) {
    const ValString *preferred = context ? context->PreferredSubfamily() : nullptr;
    if (preferred && !AreSame(a.subfamily.Get(), b.subfamily.Get())) {
        if (a.subfamily.Get() == preferred) return {-1, kVLFontPropertySubfamilyName};
        if (b.subfamily.Get() == preferred) return {1, kVLFontPropertySubfamilyName};
    }
    const int order = TFontEntity::CompareFamilyNames(a.family.Get(), b.family.Get());
    return order ? Comparison{order, kVLFontPropertyFamilyName} : CompareWithinFamily(a, b);
}

Comparison CompareKeys(const ComparisonKey &a, const ComparisonKey &b,
                       const TFontEntityComparisonContext *context) {
    const Comparison comparison = CompareEntityKeys(a, b, context);
    if (!context || !context->NamesPostScriptName() || comparison.order == 0) return comparison;
    const bool same = AreSame(a.postscript_name.Get(), b.postscript_name.Get());
    return same ? ComparePriorities(a, b) : comparison;
}

} // namespace vellum
