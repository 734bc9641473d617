// SPDX-License-Identifier: MIT
// Text as bytes: UTF-8 that may also hold lone surrogates (three bytes each) and, in file names,
// bytes that are no text at all. Everything here is total: it has an answer for any bytes.
#pragma once

#include "platform/val/hash.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vellum {

// A byte that is no text decodes as kRawByte + its value, above every code point.
inline constexpr char32_t kRawByte = 0x110000;
inline constexpr char32_t kLastCodePoint = 0x10FFFF;

struct Character {
    char32_t value;
    size_t length; // in bytes
};

constexpr bool IsSurrogate(char32_t c) noexcept {
    return c >= 0xD800 && c <= 0xDFFF;
}
constexpr bool IsScalar(char32_t c) noexcept {
    return c <= kLastCodePoint && !IsSurrogate(c);
}
constexpr bool IsContinuationByte(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// The first character of a text that is not empty.
constexpr Character DecodeCharacter(std::string_view text) noexcept {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return {lead, 1};
    const Character raw{kRawByte + lead, 1};
    size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return raw;
    char32_t value = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if (!IsContinuationByte(text[i])) return raw;
        value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    if (value < kSmallest[length] || value > kLastCodePoint) return raw;
    return {value, length};
}

// Writes a character as DecodeCharacter reads it; the number of bytes.
constexpr size_t EncodeCharacter(char32_t c, char (&out)[4]) noexcept {
    auto put = [&out](size_t at, char32_t byte) { out[at] = static_cast<char>(byte); };
    if (c < 0x80 || c >= kRawByte) {
        put(0, c < 0x80 ? c : c - kRawByte);
        return 1;
    }
    size_t length = c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    for (size_t i = length - 1; i > 0; --i, c >>= 6) put(i, 0x80 | (c & 0x3F));
    put(0, (0xF00u >> length & 0xF0) | c);
    return length;
}

// How many bytes at the front are ASCII.
constexpr size_t AsciiPrefixLength(std::string_view text) noexcept {
    constexpr uint64_t kHighBits = 0x8080808080808080;
    size_t at = 0;
    while (text.size() - at >= 8 && !(LoadBytes(text.data() + at, 8) & kHighBits)) at += 8;
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

struct TextFacts {
    size_t utf16_length;
    bool is_ascii;
    bool is_unicode; // valid UTF-8
};

constexpr TextFacts ScanText(std::string_view text) noexcept {
    size_t at = AsciiPrefixLength(text);
    TextFacts facts{at, at == text.size(), true};
    while (at < text.size()) {
        Character c = DecodeCharacter(text.substr(at));
        facts.is_unicode = facts.is_unicode && IsScalar(c.value);
        facts.utf16_length += c.length == 4 ? 2 : 1;
        at += c.length;
    }
    return facts;
}

// True when a character begins at `at`, or the text ends there.
constexpr bool IsCharacterBoundary(std::string_view text, size_t at) noexcept {
    if (at >= text.size()) return at == text.size();
    if (!IsContinuationByte(text[at])) return true;
    for (size_t back = 1; back <= 3 && back <= at; ++back) {
        if (IsContinuationByte(text[at - back])) continue;
        return DecodeCharacter(text.substr(at - back)).length <= back;
    }
    return true;
}

// The last character of a text that is not empty.
constexpr Character DecodeLastCharacter(std::string_view text) noexcept {
    size_t start = text.size() - 1;
    while (!IsCharacterBoundary(text, start)) --start;
    return DecodeCharacter(text.substr(start));
}

} // namespace vellum
