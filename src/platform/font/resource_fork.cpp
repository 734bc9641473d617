// SPDX-License-Identifier: MIT
// The types of the resources in a fork tell what it is for.
#include "platform/font/resource_fork.hpp"

#include "platform/font/resource_map.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr GxTag kSuitcaseTypes[] = {MakeTag("FOND"), MakeTag("sfnt"), MakeTag("NFNT"), MakeTag("FONT")};
constexpr GxTag kOutlineType = MakeTag("POST");

} // namespace

TForkContent ReadForkContent(const TReading &reading, const std::string &path) {
    const TReading fork = OpenFork(reading, path);
    if (!fork) return TForkContent::kNothing;
    const TResourceMap map(fork);
    const auto has = [&map](GxTag type) { return map.HasType(type); };
    if (std::any_of(std::begin(kSuitcaseTypes), std::end(kSuitcaseTypes), has))
        return TForkContent::kSuitcase;
    return has(kOutlineType) ? TForkContent::kPostScriptOutlines : TForkContent::kNothing;
}

} // namespace vellum
