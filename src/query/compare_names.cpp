// SPDX-License-Identifier: MIT
// The orders of names.
#include "describe/font_entity.hpp"
#include "values/val_str.hpp"

#include <iterator>
#include <string_view>

namespace vellum {

namespace {

// Families that carry a foundry's name, or "#", come after those that don't, the later the further
// down the table.
constexpr std::string_view kFoundryPrefixes[] = {
    "Adobe",    "Orrery", "Bauer",     "Berthold", "Bitstream", "ITC", "Linotype",
    "Monotype", "PMN",    "Simoncini", "Stempel",  "URW",       "WTC", "#",
};

} // namespace

int TFontEntity::FoundryPrefix(const ValString *name) {
    const std::string_view text = TValStr(Retain(name)).View();
    for (int i = static_cast<int>(std::size(kFoundryPrefixes)) - 1; i >= 0; --i)
        if (text.starts_with(kFoundryPrefixes[i])) return i;
    return -1;
}

int TFontEntity::CompareFamilyNames(const ValString *a, const ValString *b) {
    if (!a || !b) return ValStringCompare(a, b, kValCompareExact);
    const int prefix_a = FoundryPrefix(a), prefix_b = FoundryPrefix(b);
    if (prefix_a != prefix_b) return prefix_a < prefix_b ? -1 : 1;
    return ValStringCompare(a, b, kValCompareCaseInsensitive | kValCompareNumeric | kValCompareLocalized);
}

int TFontEntity::ComparePostScriptNames(const ValString *a, const ValString *b) {
    return ValStringCompare(a, b, kValCompareExact);
}

} // namespace vellum
