// SPDX-License-Identifier: MIT
// TClientFontEntity: the entity over a live font object; derives each property of the face.
//
// Every name that it answers is interned: equal names of different faces are one object.
#pragma once

#include "describe/font_entity.hpp"
#include "platform/font/gx_font.hpp"

namespace vellum {

class TClientFontEntity final : public TFontEntity {
public:
    explicit TClientFontEntity(Ref<const GxFont> font) noexcept : font_(std::move(font)) {}

    Ref<const ValURL> CopyURL() const override;
    Ref<const void> CopyProperty(const ValString *key, bool all) const override;

    // A string, or with `all` an array of distinct strings.
    Ref<const void> CopyPostScriptName(bool all) const;
    Ref<const void> CopyFamilyName(bool all) const;
    Ref<const void> CopyFullName(bool all) const;
    Ref<const void> CopySubfamilyName(bool all) const;

    Ref<const ValCharacterSet> CopyCharacterSet() const;

    // An array with a dictionary an axis, or null for a face without axes.
    Ref<const ValArray> CopyVariationAxes() const;
    Ref<const ValDictionary> CopyVariations() const;

    // One of kVLFontFormat..., as a number.
    Ref<const ValNumber> CopyFormat() const;

private:
    Ref<const GxFont> font_;
};

} // namespace vellum
