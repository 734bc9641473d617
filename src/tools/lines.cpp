// SPDX-License-Identifier: MIT
#include "tools/lines.hpp"

#include "tools/text.hpp"

#include <algorithm>
#include <sstream>

namespace vellum::tool {

namespace {

constexpr size_t kLabelWidth = 14; // with the margin before it
constexpr size_t kLineWidth = 100;

// How many columns a text takes: ideographs and their like take two, marks are counted as if they took one.
size_t WidthOf(std::string_view text) {
    size_t width = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 || byte >= 0xC0) width += byte >= 0xE3 ? 2 : 1; // U+3000 begins with E3
    }
    return width;
}

} // namespace

void Lines::Add(std::string_view label, std::string_view text) {
    if (text.empty()) return;
    std::string line = "  " + Printable(label);
    line.resize(std::max(line.size() + 1, kLabelWidth), ' ');
    size_t width = WidthOf(line);
    bool first = true; // of the words of this line
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word; first = false) {
        word = Printable(word);
        if (!first && width + 1 + WidthOf(word) > kLineWidth) {
            out_ << line << '\n';
            line.assign(kLabelWidth, ' ');
            width = kLabelWidth;
            first = true;
        }
        line += (first ? "" : " ") + word;
        width += (first ? 0 : 1) + WidthOf(word);
    }
    out_ << line << '\n';
}

} // namespace vellum::tool
