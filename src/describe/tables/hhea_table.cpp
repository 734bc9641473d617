// SPDX-License-Identifier: MIT
// The slope of the caret as an angle.
#include "describe/tables/hhea_table.hpp"

#include <cmath>

namespace vellum {

float hheaTable::GetItalicAngle() const noexcept {
    const double rise = table_.S16(18);
    const double run = table_.S16(20);
    if (run == 0) return 0;
    return static_cast<float>(std::atan(rise / run) / 180.0);
}

} // namespace vellum
