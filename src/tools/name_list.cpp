// SPDX-License-Identifier: MIT
#include "tools/name_list.hpp"

#include <algorithm>
#include <cctype>

namespace vellum::tool {

namespace {

constexpr std::string_view kNoFonts[] = {
    "serif",    "sans-serif",    "monospace",  "cursive",      "fantasy", "system-ui",
    "ui-serif", "ui-sans-serif", "ui-rounded", "ui-monospace", "math",    "emoji",
    "fangsong", "inherit",       "initial",    "unset",        "revert",  "revert-layer",
    "none",     "default",       "auto",       "-apple-system"};

constexpr std::string_view kWhite = " \t\r\n\f";

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kWhite);
    return begin == text.npos ? "" : text.substr(begin, text.find_last_not_of(kWhite) - begin + 1);
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

// Where a value of a style ends: outside of quotes, at what ends a declaration, a rule, an attribute or an
// element. A quote that ends the attribute in which the style stands ends it, too.
size_t EndOfValue(std::string_view text, char attribute_quote) {
    char quote = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == attribute_quote) return i;
        if (quote) {
            if (c == quote || c == '\n') quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == ';' || c == '}' || c == '<' || c == '>') {
            return i;
        }
    }
    return text.size();
}

// The quote of the attribute that the text before a style begins; 0 outside of attributes.
char QuoteBefore(std::string_view text) {
    for (size_t i = text.size(); i > 0; --i) {
        const char c = text[i - 1];
        if (c == '<' || c == '>' || c == '{' || c == '}') return 0;
        if ((c == '"' || c == '\'') && i > 1 && text[i - 2] == '=') return c;
    }
    return 0;
}

} // namespace

void NameList::Add(std::string_view name) {
    name = Trimmed(name);
    if (name.starts_with('@')) name.remove_prefix(1); // the same font, set vertically
    if (name.empty() || name.starts_with('+') || name.starts_with("var(")) return;
    if (std::ranges::count(kNoFonts, Lower(name)) != 0) return;
    if (std::ranges::count(names_, name) == 0) names_.emplace_back(name);
}

void NameList::AddFamilies(std::string_view families) {
    for (size_t i = 0; i < families.size();) {
        const size_t begin = families.find_first_not_of(kWhite, i);
        if (begin == families.npos) return;
        const char c = families[begin];
        const bool is_quoted = c == '"' || c == '\'';
        const size_t from = is_quoted ? begin + 1 : begin;
        const size_t end = std::min(families.find(is_quoted ? c : ',', from), families.size());
        std::string_view name = families.substr(from, end - from);
        name = name.substr(0, name.find("!important"));
        Add(name);
        i = is_quoted ? std::min(families.find(',', end), families.size()) + 1 : end + 1;
    }
}

void NameList::AddStyles(std::string_view style_sheet) {
    constexpr std::string_view kProperty = "font-family";
    const std::string lower = Lower(style_sheet);
    for (size_t at = lower.find(kProperty); at != lower.npos; at = lower.find(kProperty, at)) {
        const char quote = QuoteBefore(style_sheet.substr(0, at));
        at += kProperty.size();
        const size_t colon = style_sheet.find_first_not_of(kWhite, at);
        if (colon == style_sheet.npos || (style_sheet[colon] != ':' && style_sheet[colon] != '=')) continue;
        const std::string_view rest = style_sheet.substr(colon + 1);
        if (style_sheet[colon] == ':') {
            AddFamilies(rest.substr(0, EndOfValue(rest, quote)));
        } else if (!rest.empty() && (rest[0] == '"' || rest[0] == '\'')) {
            AddFamilies(rest.substr(1, rest.find(rest[0], 1) - 1));
        }
    }
}

} // namespace vellum::tool
