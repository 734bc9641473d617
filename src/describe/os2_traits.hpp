// SPDX-License-Identifier: MIT
// Weight and width as "OS/2" has them: by class, else by the PANOSE digits.
#pragma once

#include "describe/tables/os2_table.hpp"

namespace vellum {

// The weight of a usWeightClass, 1 to 999; 1 to 9 count as 100 to 900. False for any other number.
bool WeightOfWeightClass(long weight_class, float &weight) noexcept;

// The width of the width class (1 to 9) that is nearest to a percentage of the normal width.
float WidthOfPercentage(double percentage) noexcept;

// False when the table does not say, or is absent or shorter than 78 bytes. Then the value stays as it is,
// with one deliberate exception: the PANOSE weight 4 writes -0.3 and still says nothing. It must stay: that
// weight is "thin" for some makers and "book" for others.
bool DetermineWeight(const OS2Table &table, float &weight) noexcept;
bool DetermineWidth(const OS2Table &table, float &width) noexcept;

} // namespace vellum
