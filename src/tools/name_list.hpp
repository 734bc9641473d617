// SPDX-License-Identifier: MIT
// Names of fonts as they are gathered: each once, and only those that are a font's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellum::tool {

class NameList {
public:
    // A name as a document has it, white space around it taken away. Left out: what stands for a font of
    // some kind (serif, system-ui) or for one that a theme names, and what is empty.
    void Add(std::string_view name);

    // The families of a style's font-family: with commas between them, quoted or not.
    void AddFamilies(std::string_view families);

    // Every font-family of a style sheet, or of text that has styles in it.
    void AddStyles(std::string_view style_sheet);

    std::vector<std::string> Names() && { return std::move(names_); }

private:
    std::vector<std::string> names_;
};

} // namespace vellum::tool
