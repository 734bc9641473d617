// SPDX-License-Identifier: MIT
// One walk over a text, character by character, for both ways of writing it.
#include "xml_text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vellum::legacy {
namespace {

// Lengths of UTF-8's characters: the first byte's fixed bits, and the least that the length is for.
struct Utf8Length {
    uint8_t mask;
    uint8_t bits;
    uint32_t least;
};
constexpr std::array<Utf8Length, 4> kUtf8Lengths = {
    {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

// Whether XML 1.0 lets a character stand in a file, as itself or by its number.
constexpr bool IsXmlCharacter(uint32_t c) noexcept {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return c < 0xD800 || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

// The length of the character that `text` begins with; 0 when it begins with none that may be written.
size_t CharacterLength(std::string_view text) noexcept {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const auto fits = [&](const Utf8Length &length) { return (byte(0) & length.mask) == length.bits; };
    const auto found = std::find_if(kUtf8Lengths.begin(), kUtf8Lengths.end(), fits);
    if (found == kUtf8Lengths.end()) return 0;
    const auto length = static_cast<size_t>(found - kUtf8Lengths.begin()) + 1;
    if (text.size() < length) return 0;
    uint32_t c = byte(0) & static_cast<uint8_t>(~found->mask);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        c = c << 6 | (byte(i) & 0x3F);
    }
    return c >= found->least && IsXmlCharacter(c) ? length : 0;
}

std::string Written(std::string_view character) {
    switch (character.front()) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\r':
        return "&#13;"; // as itself it would be read as a line's end
    default:
        return std::string(character);
    }
}

} // namespace

std::optional<std::string> XmlText(std::string_view text) {
    std::string xml;
    while (!text.empty()) {
        const size_t length = CharacterLength(text);
        if (length == 0) return std::nullopt;
        xml += Written(text.substr(0, length));
        text.remove_prefix(length);
    }
    return xml;
}

std::string XmlGlob(std::string_view path) {
    std::string xml;
    while (!path.empty()) {
        const size_t length = CharacterLength(path);
        xml += length == 0 || path.front() == '*' ? "?" : Written(path.substr(0, length));
        path.remove_prefix(std::max<size_t>(length, 1));
    }
    return xml;
}

} // namespace vellum::legacy
