// SPDX-License-Identifier: MIT
// A client's arguments as values: lists are texts with a line for each item, keys of properties are called
// as the constants are, requests have a line "KEY=TEXT" for each pair.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellum::test {

inline Ref<const ValString> String(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

inline Ref<const ValURL> URL(std::string_view text) {
    return Adopt(ValURLCreateWithString(String(text).Get(), nullptr));
}

inline uint32_t Word(const char *text) {
    return static_cast<uint32_t>(std::strtoul(text, nullptr, 0));
}

inline std::vector<std::string> Lines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

inline Ref<const ValArray> URLs(std::string_view lines) {
    const auto array = Adopt(ValArrayCreateMutable(0, nullptr));
    for (const std::string &line : Lines(lines)) ValArrayAppend(array.Get(), URL(line).Get());
    return array;
}

// The constant of a key; what is none is taken for the key itself.
inline Ref<const ValString> Key(std::string_view name) {
    static const std::pair<std::string_view, const ValString *> keys[] = {
        {"Name", kVLFontPropertyName},
        {"FamilyName", kVLFontPropertyFamilyName},
        {"FullName", kVLFontPropertyFullName},
        {"SubfamilyName", kVLFontPropertySubfamilyName},
        {"URL", kVLFontPropertyURL},
        {"LocalizedNames", kVLFontPropertyLocalizedNames},
        {"CharacterSet", kVLFontPropertyCharacterSet},
        {"SupportedLanguages", kVLFontPropertySupportedLanguages},
        {"Enabled", kVLFontPropertyEnabled},
        {"Priority", kVLFontPropertyPriority},
        {"FontRef", kVLFontPropertyFontRef},
        {"Directory", kVLFontPropertyDirectory},
        {"Scope", kVLFontPropertyScope}};
    for (const auto &[key, constant] : keys)
        if (key == name) return Retain(constant);
    return String(name);
}

inline Ref<const ValSet> Keys(std::string_view lines) {
    const auto set = Adopt(ValSetCreateMutable(0, nullptr));
    for (const std::string &line : Lines(lines)) ValSetAdd(set.Get(), Key(line).Get());
    return set;
}

inline Ref<const ValDictionary> Request(std::string_view lines) {
    const auto request = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
    for (const std::string &line : Lines(lines)) {
        const size_t equals = line.find('=');
        const auto value = String(std::string_view(line).substr(equals + 1));
        ValDictionarySetValue(request.Get(), Key(line.substr(0, equals)).Get(), value.Get());
    }
    return request;
}

} // namespace vellum::test
