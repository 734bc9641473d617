// SPDX-License-Identifier: MIT
// Construction of PostScript names from families, subfamilies and coordinates.
#include "platform/font/instance_naming.hpp"

#include <charconv>

namespace vellum {
namespace {

constexpr size_t kMaximumLength = 127;

constexpr bool IsKept(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::string LettersAndDigits(std::string_view text) {
    std::string kept(text);
    std::erase_if(kept, [](char c) { return !IsKept(c); });
    return kept;
}

std::string Bounded(std::string name) {
    if (name.size() > kMaximumLength) name.resize(kMaximumLength);
    return name;
}

void AppendAxis(std::string &name, GxTag tag, double value) {
    name += '_';
    name += ShortestNumber(value);
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>(tag >> shift);
        if (IsKept(c)) name += c;
    }
}

} // namespace

std::string NamedInstancePostScriptName(std::string_view prefix, std::string_view subfamily) {
    const std::string family = LettersAndDigits(prefix);
    const std::string style = LettersAndDigits(subfamily);
    if (family.empty() || style.empty()) return {};
    return Bounded(family + '-' + style);
}

std::string UnnamedInstancePostScriptName(std::string_view prefix, std::span<const GxAxis> axes,
                                          std::span<const double> coordinates) {
    std::string name = LettersAndDigits(prefix);
    if (name.empty()) return {};
    for (size_t i = 0; i < axes.size(); ++i) {
        if (coordinates[i] != axes[i].default_value) AppendAxis(name, axes[i].tag, coordinates[i]);
    }
    return Bounded(std::move(name));
}

std::string ShortestNumber(double number) {
    char text[64];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number, std::chars_format::fixed);
    return error == std::errc() ? std::string(text, end) : std::string("0");
}

} // namespace vellum
