// SPDX-License-Identifier: MIT
#include "tools/text.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <new>

namespace vellum::tool {

namespace {

// U+FFFD for each byte that is no ASCII: such names are rare, and what matters is that they show.
std::string ReplaceForeignBytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x80)
            text += byte;
        else
            text += "\uFFFD";
    }
    return text;
}

void AppendHex(std::string &text, uint32_t number) {
    char digits[8];
    text.append(digits, std::to_chars(digits, std::end(digits), number, 16).ptr);
}

uint8_t ByteAt(std::string_view text, size_t place) {
    return place < text.size() ? static_cast<uint8_t>(text[place]) : uint8_t{0};
}

// How many bytes the character takes that a text begins with, if it does something to the terminal instead
// of being shown: a control character (the second block of them, U+0080 to U+009F, is C2 80 to C2 9F), one
// that ends a line (U+2028, U+2029), or one that turns the direction of what follows (U+202A to U+202E,
// U+2066 to U+2069). Else 0.
size_t LengthOfCommand(std::string_view text) {
    const uint8_t first = ByteAt(text, 0), second = ByteAt(text, 1), third = ByteAt(text, 2);
    if (first < 0x20 || first == 0x7F) return 1;
    if (first == 0xC2 && second >= 0x80 && second < 0xA0) return 2;
    const bool turns = (second == 0x80 && third >= 0xA8 && third <= 0xAE) ||
                       (second == 0x81 && third >= 0xA6 && third <= 0xA9);
    return first == 0xE2 && turns ? 3 : 0;
}

// "\x1b", "\u202e".
std::string Escaped(std::string_view character) {
    char text[16];
    if (character.size() == 3) {
        const unsigned code =
            0x2000U | (ByteAt(character, 1) & 0x3FU) << 6 | (ByteAt(character, 2) & 0x3FU);
        std::snprintf(text, sizeof text, "\\u%04x", code);
    } else {
        std::snprintf(text, sizeof text, "\\x%02x", ByteAt(character, character.size() - 1));
    }
    return text;
}

const void *ValueAt(const ValDictionary *dictionary, const void *key, ValType type) {
    const void *value = ValDictionaryGetValue(dictionary, key);
    return ValGetType(value) == type ? value : nullptr;
}

} // namespace

std::string Bytes(const ValString *string) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(string, &length);
    return bytes ? std::string(bytes, length) : std::string();
}

std::optional<std::string> Text(const ValString *string) {
    if (!string) return std::nullopt;
    size_t length = 0;
    if (const char *text = ValStringGetUTF8(string, &length)) return std::string(text, length);
    return ReplaceForeignBytes(Bytes(string));
}

std::string Printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const size_t length = LengthOfCommand(text);
        shown += length == 0 ? std::string(1, text[0]) : Escaped(text.substr(0, length));
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return shown;
}

std::string Base64(std::span<const uint8_t> bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += 3) {
        const auto byte = [&](size_t i) { return at + i < bytes.size() ? uint32_t{bytes[at + i]} : 0; };
        const uint32_t group = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (const unsigned shift : {18U, 12U, 6U, 0U}) text += kDigits[group >> shift & 63];
    }
    const size_t padding = (3 - bytes.size() % 3) % 3;
    text.replace(text.size() - padding, padding, padding, '=');
    return text;
}

std::string RangesOf(const ValCharacterSet *characters) {
    std::string ranges;
    uint32_t first = UINT32_MAX, last = UINT32_MAX;
    while (ValCharacterSetNextRange(characters, &first, &last)) {
        if (!ranges.empty()) ranges += ' ';
        AppendHex(ranges, first);
        if (first == last) continue;
        ranges += '-';
        AppendHex(ranges, last);
    }
    return ranges;
}

std::string UTF8(uint32_t character) {
    constexpr unsigned kPayload = 6; // bits of each byte after the first
    constexpr uint8_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    if (character < 0x80) return {static_cast<char>(character)};
    const unsigned more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    std::string text(1, static_cast<char>(kLead[more] | character >> more * kPayload));
    for (unsigned left = more; left-- > 0;)
        text += static_cast<char>(0x80 | (character >> left * kPayload & 0x3F));
    return text;
}

std::string Grouped(size_t number) {
    std::string text = std::to_string(number);
    for (size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, ",");
    return text;
}

std::string Counted(size_t number, const char *one, const char *many) {
    return Grouped(number) + ' ' + (number == 1 ? one : many);
}

Ref<const ValURL> FileURL(std::string_view path) {
    const auto text = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    auto url = Adopt(ValURLCreateWithFileSystemPath(text.Get(), false, nullptr));
    if (!url) throw std::bad_alloc();
    return url;
}

std::string PathOf(const ValURL *url) {
    return Bytes(Adopt(ValURLCopyFileSystemPath(url)).Get());
}

const ValString *StringAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValString *>(ValueAt(dictionary, key, kValTypeString));
}

const ValURL *URLAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValURL *>(ValueAt(dictionary, key, kValTypeURL));
}

const ValArray *ArrayAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValArray *>(ValueAt(dictionary, key, kValTypeArray));
}

const ValDictionary *DictionaryAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValDictionary *>(ValueAt(dictionary, key, kValTypeDictionary));
}

double NumberAt(const ValDictionary *dictionary, const void *key) {
    return ValNumberGetFloat64(static_cast<const ValNumber *>(ValueAt(dictionary, key, kValTypeNumber)));
}

} // namespace vellum::tool
