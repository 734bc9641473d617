// SPDX-License-Identifier: MIT
// Small Type 1 fonts, as text and in binary segments, with the glyphs .notdef, A and B.
#pragma once

#include "support/bytes.hpp"

#include <string>

namespace vellum::test {

struct Type1Font {
    std::string header = "%!PS-AdobeFont-1.0: TestType-Oblique 001.002";
    std::string name = "TestType-Oblique";
    std::string family = "Test Type";
    std::string full_name = "Test Type Oblique";
    std::string weight = "Regular";
    double italic_angle = -12;
    bool fixed_pitch = true;
};

std::string BuildPfa(const Type1Font &font = {});
Bytes BuildPfb(const Type1Font &font = {});

} // namespace vellum::test
