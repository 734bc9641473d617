// SPDX-License-Identifier: MIT
// Where a variable face stands on its axes, by their tags.
#pragma once

#include "platform/font/gx_font.hpp"
#include "values/val_number.hpp"

#include <optional>

namespace vellum {

class VariationValues {
public:
    explicit VariationValues(const GxFont *font) noexcept
        : axes_(GxFontGetVariationAxes(font)), values_(GxFontCopyVariations(font)) {}

    // In the axis's own units; nothing for an axis that the face does not have.
    std::optional<double> Find(GxTag tag) const noexcept {
        for (const GxAxis &axis : axes_) {
            if (axis.tag != tag) continue;
            const void *value = ValDictionaryGetValue(values_.Get(), axis.name.Get());
            if (value) return ReadFloat64(value);
        }
        return std::nullopt;
    }

private:
    std::span<const GxAxis> axes_; // live as long as the font
    Ref<const ValDictionary> values_;
};

} // namespace vellum
