// SPDX-License-Identifier: MIT
#include "tools/lines.hpp"

#include "tools/text.hpp"

#include <algorithm>
#include <sstream>

namespace vellum::tool {

namespace {

constexpr size_t kLabelWidth = 14; // with the margin before it
constexpr size_t kLineWidth = 100;

} // namespace

void Lines::Add(std::string_view label, std::string_view text) {
    if (text.empty()) return;
    std::string line = "  " + Printable(label);
    line.resize(std::max(line.size() + 1, kLabelWidth), ' ');
    bool first = true; // of the words of this line
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word; first = false) {
        word = Printable(word);
        if (!first && line.size() + 1 + word.size() > kLineWidth) {
            out_ << line << '\n';
            line.assign(kLabelWidth, ' ');
            first = true;
        }
        line += (first ? "" : " ") + word;
    }
    out_ << line << '\n';
}

} // namespace vellum::tool
