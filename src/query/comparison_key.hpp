// SPDX-License-Identifier: MIT
// What the order of faces depends on, read out of each face once, and the order itself.
//
// Everybody who orders faces does it here: TFontEntity::Compare, the sorting of candidates, the order
// that a register keeps, the merging of two registers' answers.
#pragma once

#include "describe/font_entity.hpp"

#include <cstdint>

namespace vellum {

// Bits 0 to 27 of symbolic traits say what a face is like, bits 28 to 31 are its class of design.
constexpr uint32_t kStyleBits = 0x0FFFFFFF;

// A face's traits as numbers.
struct TraitKey {
    bool is_present = false; // whether the face has traits at all
    uint32_t symbolic = 0;   // all 32 bits
    double weight = 0;
    double slant = 0;
    double width = 0;

    TraitKey() noexcept = default;
    explicit TraitKey(const ValDictionary *traits) noexcept; // null: none
};

struct ComparisonKey {
    Ref<const ValString> postscript_name; // any of the names may be null
    Ref<const ValString> family;
    Ref<const ValString> subfamily;
    TraitKey traits;
    uint32_t priority = 0;

    ComparisonKey() noexcept = default; // of a face without any property
    explicit ComparisonKey(const TFontEntity &font);
};

// Which of two comes first (-1: the left one), and the property that says so; none when they tie.
struct Comparison {
    int order = 0;
    const ValString *decided_by = nullptr;
};

// TFontEntity::CompareTraits of traits that have been read.
int CompareTraitKeys(const TraitKey &a, const TraitKey &b) noexcept;

// How two faces of one family compare, by all but what a request adds.
Comparison CompareWithinFamily(const ComparisonKey &a, const ComparisonKey &b) noexcept;

// TFontEntity::Compare and TFontEntity::CompareFontEntities.
Comparison CompareKeys(const ComparisonKey &a, const ComparisonKey &b,
                       const TFontEntityComparisonContext *context);
Comparison CompareEntityKeys(const ComparisonKey &a, const ComparisonKey &b,
                             const TFontEntityComparisonContext *context);

// Two values that are nearer than this are the same: 0.0001, but for what lies at that very distance.
bool DifferInTrait(double a, double b) noexcept;

} // namespace vellum
