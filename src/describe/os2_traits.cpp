// SPDX-License-Identifier: MIT
#include "describe/os2_traits.hpp"

#include <cmath>
#include <iterator>
#include <optional>

namespace vellum {
namespace {

struct WeightRange {
    long last; // the first is behind the last of the row before
    float weight;
};
constexpr WeightRange kWeightRanges[] = {
    {100, -0.8F}, {200, -0.5F}, {300, -0.4F}, {400, 0.0F},  {500, 0.23F}, {600, 0.25F},
    {700, 0.4F},  {800, 0.5F},  {900, 0.62F}, {950, 0.75F}, {999, 0.8F},
};

constexpr float kWidthsOfClasses[] = {-0.7F, -0.5F, -0.2F, -0.1F, 0.0F, 0.1F, 0.4F, 0.6F, 0.8F};

// What OpenType says of the nine width classes, as "wdth" counts.
constexpr double kPercentages[] = {50, 62.5, 75, 87.5, 100, 112.5, 125, 150, 200};

constexpr size_t kPanoseWeight = 2;
constexpr size_t kPanoseProportion = 3;

// By the value of the digit, from 0.
constexpr std::optional<float> kPanoseWeights[] = {
    std::nullopt, std::nullopt, -0.5F, -0.4F, std::nullopt, -0.23F, 0.23F, 0.25F, 0.4F, 0.56F, 0.62F, 0.8F,
};
constexpr std::optional<float> kPanoseProportions[] = {
    std::nullopt, std::nullopt, 0.0F, 0.0F, 0.0F, 0.2F, -0.2F, 0.4F, -0.4F,
};
constexpr uint8_t kOddPanoseWeight = 4;
constexpr float kOddWeight = -0.3F;

template <size_t N>
bool FindDigit(const std::optional<float> (&values)[N], uint8_t digit, float &value) noexcept {
    if (digit >= N || !values[digit]) return false;
    value = *values[digit];
    return true;
}

} // namespace

bool WeightOfWeightClass(long weight_class, float &weight) noexcept {
    if (weight_class < 1) return false;
    if (weight_class <= 9) weight_class *= 100;
    for (const WeightRange &range : kWeightRanges) {
        if (weight_class > range.last) continue;
        weight = range.weight;
        return true;
    }
    return false;
}

float WidthOfPercentage(double percentage) noexcept {
    size_t nearest = 0;
    for (size_t i = 1; i < std::size(kPercentages); ++i) {
        const bool nearer =
            std::fabs(kPercentages[i] - percentage) < std::fabs(kPercentages[nearest] - percentage);
        if (nearer) nearest = i;
    }
    return kWidthsOfClasses[nearest];
}

bool DetermineWeight(const OS2Table &table, float &weight) noexcept {
    if (!table.IsComplete()) return false;
    if (WeightOfWeightClass(table.GetWeightClass(), weight)) return true;
    const uint8_t digit = table.GetPanoseDigit(kPanoseWeight);
    if (digit == kOddPanoseWeight) weight = kOddWeight;
    return FindDigit(kPanoseWeights, digit, weight);
}

bool DetermineWidth(const OS2Table &table, float &width) noexcept {
    if (!table.IsComplete()) return false;
    const uint16_t width_class = table.GetWidthClass();
    if (width_class < 1 || width_class > std::size(kWidthsOfClasses)) {
        return FindDigit(kPanoseProportions, table.GetPanoseDigit(kPanoseProportion), width);
    }
    width = kWidthsOfClasses[width_class - 1];
    return true;
}

} // namespace vellum
