// SPDX-License-Identifier: MIT
// Small whole fonts that differ in their names, for tests of what is done with fonts.
#pragma once

#include "support/bytes.hpp"
#include "support/temp_dir.hpp"

#include <vellum/values.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

struct NamedFace {
    std::string family;
    std::string style = "Regular";
    std::string postscript_name = family + "-" + style; // empty: the font has none

    std::string FullName() const { return family + " " + style; }
};

// A TrueType font with one glyph, for the letter A.
Bytes MakeFont(const NamedFace &face);

// A collection of such fonts.
Bytes MakeCollection(const std::vector<NamedFace> &faces);

// A variable font with the axis wght, 100 to 900, 400 by default, called "Weight", and a named
// instance a weight; it is called "W" and the weight, "W700" for instance.
Bytes MakeVariableFont(const NamedFace &face, const std::vector<int> &instance_weights);

// Bytes as a value.
Ref<const ValData> AsData(const Bytes &bytes);

// A folder of fonts, gone with the object.
class FontFolder : public TempDir {
public:
    // Writes a file (the folders in its name are made) and answers its URL.
    Ref<const ValURL> Add(std::string_view name, const Bytes &bytes) const {
        return FileURL(Write(name, bytes));
    }
    Ref<const ValURL> Add(std::string_view name, const NamedFace &face) const {
        return Add(name, MakeFont(face));
    }

    Ref<const ValURL> URLOf(std::string_view name) const { return FileURL(File(name)); }
};

} // namespace vellum::test
