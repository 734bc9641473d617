// SPDX-License-Identifier: MIT
// Small bitmap fonts, BDF and PCF, of empty 8 by 8 glyphs.
#pragma once

#include "support/bytes.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

struct BitmapFont {
    std::string family = "Test Bits"; // empty: the font states none
    std::string weight = "Medium";
    std::string slant = "R";
    std::string registry = "ISO10646";
    std::string encoding = "1";
    uint32_t first = 'A';
    uint32_t last = 'C';

    // Further properties.
    std::vector<std::pair<std::string, std::string>> texts;
    std::vector<std::pair<std::string, int32_t>> numbers;
};

std::string BuildBdf(const BitmapFont &font);
Bytes BuildPcf(const BitmapFont &font);

} // namespace vellum::test
