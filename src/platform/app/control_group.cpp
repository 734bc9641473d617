// SPDX-License-Identifier: MIT
#include "platform/app/control_group.hpp"

#include <charconv>

namespace vellum {

namespace {

constexpr std::string_view kApplication = "app-";
constexpr std::string_view kScope = ".scope";
constexpr std::string_view kService = ".service";
constexpr std::string_view kEscape = "\\x";

// The first part of a text up to a mark, which is taken away with it.
std::string_view TakePart(std::string_view &text, char mark) noexcept {
    const size_t length = text.find(mark);
    const std::string_view part = text.substr(0, length);
    text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
    return part;
}

bool TakeSuffix(std::string_view &text, std::string_view suffix) noexcept {
    if (!text.ends_with(suffix)) return false;
    text.remove_suffix(suffix.size());
    return true;
}

std::string Unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned char byte = 0;
        const char *end = text.data() + 4;
        if (text.starts_with(kEscape) && text.size() >= 4 &&
            std::from_chars(text.data() + 2, end, byte, 16).ptr == end) {
            plain += static_cast<char>(byte);
            text.remove_prefix(4);
        } else {
            plain += text.front();
            text.remove_prefix(1);
        }
    }
    return plain;
}

// Dashes part the pieces of a unit's name; those within a piece are escaped.
std::string ApplicationOfUnit(std::string_view unit) {
    if (!unit.starts_with(kApplication)) return {};
    unit.remove_prefix(kApplication.size());
    if (TakeSuffix(unit, kScope)) {
        const size_t random = unit.rfind('-');
        if (random == std::string_view::npos || random + 1 == unit.size()) return {};
        unit = unit.substr(0, random);
    } else if (TakeSuffix(unit, kService)) {
        unit = unit.substr(0, unit.find('@'));
    } else {
        return {};
    }
    const size_t launcher = unit.rfind('-');
    return Unescaped(launcher == std::string_view::npos ? unit : unit.substr(launcher + 1));
}

} // namespace

std::string_view ControlGroup(std::string_view text) noexcept {
    std::string_view found;
    while (!text.empty()) {
        std::string_view line = TakePart(text, '\n');
        TakePart(line, ':');
        const std::string_view controllers = TakePart(line, ':');
        if (controllers == "name=systemd") return line;
        if (controllers.empty()) found = line;
    }
    return found;
}

std::string ApplicationOfControlGroup(std::string_view group) {
    std::string application;
    while (!group.empty()) {
        std::string inner = ApplicationOfUnit(TakePart(group, '/'));
        if (!inner.empty()) application = std::move(inner);
    }
    return application;
}

bool IsSystemService(std::string_view group) noexcept {
    return group.starts_with("/system.slice/") && group.find(kService) != std::string_view::npos;
}

} // namespace vellum
