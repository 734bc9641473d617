// SPDX-License-Identifier: MIT
// How a number lies in memory.
#pragma once

#include "platform/val/object.hpp"

namespace vellum {
extern const ValKind kNumberKind;
} // namespace vellum

struct ValNumber : vellum::ValObject {
    ValNumber(ValNumberType number_type, int64_t value) noexcept
        : ValObject(vellum::kNumberKind), type(number_type), integer(value) {}
    ValNumber(ValNumberType number_type, double value) noexcept
        : ValObject(vellum::kNumberKind), type(number_type), real(value) {}

    bool IsReal() const noexcept { return type == kValNumberTypeFloat32 || type == kValNumberTypeFloat64; }

    ValNumberType type;
    union {
        int64_t integer; // unless IsReal
        double real;
    };
};
