// SPDX-License-Identifier: MIT
#include "query/model_order.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace vellum::test {
namespace {

constexpr const char *kFoundries[] = {"Adobe",   "Orrery",   "Bauer",    "Berthold", "Bitstream",
                                      "ITC",     "Linotype", "Monotype", "PMN",      "Simoncini",
                                      "Stempel", "URW",      "WTC",      "#"};
static_assert(std::size(kFoundries) == 14);

constexpr int kClassOrders[] = {999, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 3, 999, 999, 999};
static_assert(std::size(kClassOrders) == 16);

template <class T>
const T *PointerTo(const std::optional<T> &value) {
    return value ? &*value : nullptr;
}

// What is missing comes first; none when both are there.
std::optional<int> CompareMissing(const void *a, const void *b) {
    if (a && b) return std::nullopt;
    return (a ? 1 : 0) - (b ? 1 : 0);
}

// Below, at or above 0; the foundries are looked through from the last to the first, for both at once.
int CompareFoundries(const std::string &a, const std::string &b) {
    for (size_t i = std::size(kFoundries); i-- > 0;) {
        const bool of_a = a.starts_with(kFoundries[i]), of_b = b.starts_with(kFoundries[i]);
        if (of_a || of_b) return (of_a ? 1 : 0) - (of_b ? 1 : 0);
    }
    return 0;
}

// 0 when the values are near; then the next one decides.
int CompareMagnitudes(double a, double b) {
    if (std::fabs(a - b) < 0.0001) return 0;
    return std::fabs(static_cast<float>(b)) <= std::fabs(static_cast<float>(a)) ? 1 : -1;
}

int CompareSubfamilies(const ModelName *a, const ModelName *b) {
    if (const auto missing = CompareMissing(a, b)) return *missing;
    return ValStringCompare(a->object.Get(), b->object.Get(), kValCompareNumeric);
}

// What the context's subfamily makes of an order.
int Prefer(const ModelName *a, const ModelName *b, const ValString *preferred, int order) {
    const bool equal = a && b ? a->text == b->text : !a && !b;
    if (!preferred || equal) return order;
    if (a && a->object.Get() == preferred) return -1;
    if (b && b->object.Get() == preferred) return 1;
    return order;
}

int CompareWithoutContext(const ModelFace &a, const ModelFace &b) {
    const int families =
        ModelCompareFamilies(PointerTo(a.preferred[kModelFamily]), PointerTo(b.preferred[kModelFamily]));
    if (families != 0) return families;
    const int traits = ModelCompareTraits(PointerTo(a.traits), PointerTo(b.traits));
    if (traits != 0) return traits;
    // The priorities that come next are the register's: no face has any of its own.
    return CompareSubfamilies(PointerTo(a.preferred[kModelSubfamily]),
                              PointerTo(b.preferred[kModelSubfamily]));
}

} // namespace

int ModelCompareFamilies(const ModelName *a, const ModelName *b) {
    if (const auto missing = CompareMissing(a, b)) return *missing;
    if (const int foundries = CompareFoundries(a->text, b->text)) return foundries;
    return ValStringCompare(a->object.Get(), b->object.Get(),
                            kValCompareCaseInsensitive | kValCompareNumeric | kValCompareLocalized);
}

int ModelCompareTraits(const ModelTraits *a, const ModelTraits *b) {
    if (const auto missing = CompareMissing(a, b)) return *missing;
    const uint32_t bits_a = a->symbolic & 0x0FFFFFFF, bits_b = b->symbolic & 0x0FFFFFFF;
    if (bits_a != bits_b) return bits_a < bits_b ? -1 : 1;
    if (const int weights = CompareMagnitudes(a->weight, b->weight)) return weights;
    if (const int slants = CompareMagnitudes(a->slant, b->slant)) return slants;
    if (const int widths = CompareMagnitudes(a->width, b->width)) return widths;
    const int class_a = kClassOrders[a->symbolic >> 28], class_b = kClassOrders[b->symbolic >> 28];
    return (class_a > class_b ? 1 : 0) - (class_a < class_b ? 1 : 0);
}

int ModelCompare(const ModelFace &a, const ModelFace &b, const ModelContext &context) {
    const int order =
        Prefer(PointerTo(a.preferred[kModelSubfamily]), PointerTo(b.preferred[kModelSubfamily]),
               context.preferred_subfamily, CompareWithoutContext(a, b));
    if (!context.names_postscript_name || order == 0) return order;
    const auto &name_a = a.preferred[kModelPostScript], &name_b = b.preferred[kModelPostScript];
    const bool same = name_a && name_b ? name_a->text == name_b->text : !name_a && !name_b;
    return same ? 0 : order; // again, no priorities
}

void ModelSort(std::vector<const ModelFace *> &faces, const ModelContext &context) {
    for (size_t run = 1; run < faces.size(); run += run) {
        std::vector<const ModelFace *> merged;
        for (size_t start = 0; start < faces.size(); start += 2 * run) {
            size_t left = start, right = std::min(start + run, faces.size());
            const size_t left_end = right, right_end = std::min(start + 2 * run, faces.size());
            while (left < left_end || right < right_end) {
                const bool from_right =
                    left == left_end ||
                    (right < right_end && ModelCompare(*faces[left], *faces[right], context) > 0);
                merged.push_back(faces[from_right ? right++ : left++]);
            }
        }
        faces = std::move(merged);
    }
}

} // namespace vellum::test
