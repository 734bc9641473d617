// SPDX-License-Identifier: MIT
// Reads the instances with FreeType, as fontconfig does.
#include "font_instances.hpp"

#include "freetype_faces.hpp"

#include FT_MULTIPLE_MASTERS_H

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <span>

namespace vellum::legacy {
namespace {

using Place = std::vector<std::pair<std::string, double>>;

constexpr double kTolerance = 0.01;

std::string TagText(FT_ULong tag) {
    return {static_cast<char>(tag >> 24 & 0xFF), static_cast<char>(tag >> 16 & 0xFF),
            static_cast<char>(tag >> 8 & 0xFF), static_cast<char>(tag & 0xFF)};
}

// Whether a face whose coordinate on an axis is `coordinate(axis)` stands at the place.
template <class Coordinate>
bool StandsAt(std::span<const FT_Var_Axis> axes, const Place &place, Coordinate coordinate) {
    return std::all_of(place.begin(), place.end(), [&](const auto &wanted) {
        for (size_t i = 0; i < axes.size(); ++i) {
            if (TagText(axes[i].tag) != wanted.first) continue;
            return std::abs(static_cast<double>(coordinate(i)) / 65536 - wanted.second) < kTolerance;
        }
        return false;
    });
}

void FindIn(FT_Library library, FT_Face face, const Place &place, std::vector<int> &found) {
    FT_MM_Var *variations = nullptr;
    if (FT_Get_MM_Var(face, &variations)) return;
    const std::unique_ptr<FT_MM_Var, std::function<void(FT_MM_Var *)>> owner(
        variations, [library](FT_MM_Var *kept) { FT_Done_MM_Var(library, kept); });
    const std::span axes(variations->axis, variations->num_axis);
    const int number = NumberOf(face);
    if (StandsAt(axes, place, [&](size_t axis) { return axes[axis].def; })) found.push_back(number);
    for (FT_UInt i = 0; i < variations->num_namedstyles && i < 0x7FFF; ++i) {
        const FT_Fixed *coordinates = variations->namedstyle[i].coords;
        if (StandsAt(axes, place, [&](size_t axis) { return coordinates[axis]; }))
            found.push_back(static_cast<int>((i + 1) << 16) | number);
    }
}

} // namespace

std::vector<int> FindInstances(const std::string &path, const Place &place) {
    std::vector<int> found;
    if (place.empty()) return found;
    ForEachFace(path, [&](FT_Library library, FT_Face face) { FindIn(library, face, place, found); });
    return found;
}

} // namespace vellum::legacy
