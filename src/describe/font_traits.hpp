// SPDX-License-Identifier: MIT
// TFontTraits: how heavy, wide and slanted a face is, and which kind of face it is.
//
// Faces state this in many places, and contradict themselves. The places are asked in a fixed order; each
// answers what those before it have left open.
#pragma once

#include "platform/font/gx_font.hpp"

#include <vellum/values.hpp>

#include <cstdint>
#include <optional>

namespace vellum {

class TFontTraits {
public:
    // Throws std::bad_alloc. `metadata`, what accompanies the face, may be null.
    TFontTraits(const GxFont *font, const ValDictionary *metadata);

    uint32_t Symbolic() const noexcept { return symbolic_; }
    float Weight() const noexcept { return weight_; }
    float Width() const noexcept { return width_; }
    float Slant() const noexcept { return slant_; }

    // The value of kVLFontPropertyTraits: the four of them. Throws std::bad_alloc.
    Ref<const ValDictionary> CreateTraitsDictionary() const;

private:
    uint32_t symbolic_ = 0;
    float weight_ = 0;
    float width_ = 0;
    float slant_ = 0;
};

// How close two faces are by class alone, from the class in the four highest bits of the symbolic traits: 1
// for faces for text, 2 for decorated and written ones, 3 for symbols, 999 for those that do not say.
uint32_t ClassifyReduceTraitsClass(uint32_t traits_class) noexcept;

// The place of a suitcase's style byte (bold 1, italic 2, underline 4, outline 8, shadow 0x10, condensed
// 0x20, extended 0x40) in a table of styles: without underline, and without condensed and extended where
// both are set. The highest bit is not looked at.
uint8_t StyleIndexOfLegacyStyle(uint8_t style) noexcept;

} // namespace vellum
