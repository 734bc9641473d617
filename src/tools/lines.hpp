// SPDX-License-Identifier: MIT
// Labelled lines for people: "  label      text", a long text going on below itself.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace vellum::tool {

class Lines {
public:
    explicit Lines(std::ostream &out) noexcept : out_(out) {}

    // White space in the text counts as one blank, and control characters are made visible. Nothing is
    // written for an empty text.
    void Add(std::string_view label, std::string_view text);

private:
    std::ostream &out_;
};

} // namespace vellum::tool
