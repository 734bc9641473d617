// SPDX-License-Identifier: MIT
#include "store/printer_font_name.hpp"

#include <utility>

namespace vellum {
namespace {

// A foundry that stands in front of many names and in none of their files'.
constexpr std::string_view kFoundry = "ITC-";

// How many bytes of a word are kept behind its capital.
constexpr int kFirstAllowance = 4;
constexpr int kLaterAllowance = 2;

constexpr size_t kMaximumLength = 32;

constexpr bool IsCapital(char c) noexcept {
    return c >= 'A' && c <= 'Z';
}

constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// Without what is no part of any word: the foundry, and what follows an underscore and begins with a digit.
std::string_view Words(std::string_view name) noexcept {
    if (name.size() > kFoundry.size() && name.starts_with(kFoundry)) name.remove_prefix(kFoundry.size());
    for (size_t i = 1; i < name.size(); ++i)
        if (name[i - 1] == '_' && IsDigit(name[i])) return name.substr(0, i - 1);
    return name;
}

} // namespace

std::string PrinterFontName(std::string_view postscript_name) {
    std::string file;
    int next_allowance = kFirstAllowance;
    int allowance = 0; // what comes before the first capital is no word
    for (const char c : Words(postscript_name)) {
        if (file.size() == kMaximumLength) break;
        if (c == '-' || c == '_') continue;
        if (IsCapital(c)) {
            allowance = std::exchange(next_allowance, kLaterAllowance);
            file += c;
        } else if (allowance > 0) {
            --allowance;
            file += c;
        }
    }
    return file;
}

bool IsPlainFileName(std::string_view name) noexcept {
    constexpr std::string_view kForbidden("/\0", 2);
    return !name.empty() && name != "." && name != ".." && name.find_first_of(kForbidden) == name.npos;
}

} // namespace vellum
