// SPDX-License-Identifier: MIT
// The italic angle, a 16.16 fixed-point number, as a slant.
#include "describe/tables/post_table.hpp"

namespace vellum {

namespace {

constexpr float kFixedUnit = 1.5258789e-5f;
static_assert(kFixedUnit == 1.0f / 65536);

} // namespace

// Single precision up to the division, which is in double: so the last bits are always the same.
float postTable::GetItalicAngle() const noexcept {
    const float degrees = static_cast<float>(table_.U32(4)) * kFixedUnit;
    return static_cast<float>(degrees / 180.0);
}

} // namespace vellum
