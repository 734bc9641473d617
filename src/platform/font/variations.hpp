// SPDX-License-Identifier: MIT
// The axes and named instances of a variable face.
#pragma once

#include "platform/font/big_endian.hpp"
#include "platform/font/gx_font.hpp"

#include <vector>

namespace vellum {

struct TVariationAxis {
    GxTag tag;
    uint16_t name;
    double minimum;
    double default_value;
    double maximum;
};

struct TNamedInstance {
    uint16_t subfamily_name;
    uint16_t postscript_name; // kNoName without one
    std::vector<double> coordinates;

    static constexpr uint16_t kNoName = 0xFFFF;
};

// Both empty for a face that is not variable, or whose table is not believed.
struct TVariations {
    std::vector<TVariationAxis> axes;
    std::vector<TNamedInstance> instances; // without those that stand at the default of every axis

    // The name identifiers that axes and instances use, sorted.
    std::vector<uint16_t> NameIdentifiers() const;
    std::vector<double> Defaults() const;
};

// At most `instances` instances are listed.
TVariations ReadVariations(TBytes fvar, size_t instances);

} // namespace vellum
