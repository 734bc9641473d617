// SPDX-License-Identifier: MIT
#include "beacon/query_language.hpp"

#include <algorithm>

namespace vellum {

namespace {

struct AttributeRow {
    std::string_view name;
    NameAttribute attribute;
};

constexpr AttributeRow kAttributes[] = {
    {"com_orrery_fount_name_postscript", NameAttribute::kPostScript},
    {"com_orrery_fount_name_family", NameAttribute::kFamily},
    {"com_orrery_fount_name_style", NameAttribute::kStyle},
    {"com_orrery_fount_name_full", NameAttribute::kFull},
};

constexpr std::string_view kEquals = " == \"";
constexpr std::string_view kAnd = "\" && ";

bool TakeOff(std::string_view &text, std::string_view beginning) noexcept {
    if (!text.starts_with(beginning)) return false;
    text.remove_prefix(beginning.size());
    return true;
}

// What a clause begins with, up to its value, which is taken off the text; nothing where none begins.
std::optional<NameAttribute> TakeAttribute(std::string_view &text) noexcept {
    for (const AttributeRow &row : kAttributes) {
        std::string_view rest = text;
        if (!TakeOff(rest, row.name) || !TakeOff(rest, kEquals)) continue;
        text = rest;
        return row.attribute;
    }
    return std::nullopt;
}

// Where the value that the text begins with ends: at a quote. npos when it does not.
size_t EndOfValue(std::string_view text) noexcept {
    for (size_t at = text.find('"'); at != std::string_view::npos; at = text.find('"', at + 1)) {
        std::string_view rest = text.substr(at);
        if (rest.size() == 1 || (TakeOff(rest, kAnd) && TakeAttribute(rest))) return at;
    }
    return std::string_view::npos;
}

} // namespace

std::optional<std::vector<NameClause>> ParseQuery(std::string_view text) {
    if (text.size() > kLongestQuery) return std::nullopt;
    std::vector<NameClause> clauses;
    for (;;) {
        const auto attribute = TakeAttribute(text);
        if (!attribute || std::ranges::find(clauses, *attribute, &NameClause::attribute) != clauses.end())
            return std::nullopt;
        const size_t end = EndOfValue(text);
        if (end == std::string_view::npos) return std::nullopt;
        clauses.push_back({*attribute, std::string(text.substr(0, end))});
        text.remove_prefix(end);
        if (!TakeOff(text, kAnd)) return clauses;
    }
}

} // namespace vellum
