// SPDX-License-Identifier: MIT
#include "tools/arguments.hpp"

#include "tools/text.hpp"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <system_error>

namespace vellum::tool {

namespace {

// The number that all of a text says; 0 for none, and for one that is too large or too small.
template <class Number>
Number NumberIn(const std::string &text) {
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end ? number : Number{};
}

std::string Quoted(const std::string &text) {
    return '\'' + Printable(text) + '\'';
}

} // namespace

CLI::Validator IsPath() {
    return {[](std::string &text) {
                return std::string(text.empty() ? "an empty text is no path: name a file or a folder" : "");
            },
            ""};
}

CLI::Validator IsCount() {
    return {[](std::string &text) {
                if (NumberIn<size_t>(text) > 0) return std::string();
                return Quoted(text) + " is no whole number above 0: write one such as 10";
            },
            ""};
}

CLI::Validator IsDuration() {
    return {[](std::string &text) {
                const auto seconds = NumberIn<double>(text);
                if (seconds > 0 && std::isfinite(seconds)) return std::string();
                return Quoted(text) + " is no number of seconds above 0: write one such as 2.5";
            },
            ""};
}

} // namespace vellum::tool
