// SPDX-License-Identifier: MIT
#include "dialogue_text.hpp"

#include <vellum/vellum.hpp>

#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>

namespace vellum::companion {

namespace {

constexpr size_t kLongestName = 100;
constexpr size_t kLongestPath = 300;
constexpr size_t kMostFonts = 8;

// The first character of a text and its length in bytes; a length of 0 for bytes that are none.
struct Decoded {
    uint32_t value;
    size_t length;
};

Decoded Decode(std::string_view text) noexcept {
    constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return {lead, 1};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {0, 0};
    uint32_t value = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) return {0, 0};
        value = value << 6 | (byte & 0x3Fu);
    }
    const bool is_surrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < kSmallest[length] || value > 0x10FFFF || is_surrogate ? Decoded{0, 0}
                                                                         : Decoded{value, length};
}

// Control characters, and what turns or hides the text around it.
bool IsHidden(uint32_t c) noexcept {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xAD || c == 0x61C || (c >= 0x200B && c <= 0x200F) ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF;
}

const char *Replacement(uint32_t c) noexcept {
    switch (c) {
    case '&':
        return "＆";
    case '<':
        return "＜";
    case '>':
        return "＞";
    case '\\':
        return "＼";
    case '%':
        return "％";
    default:
        return nullptr;
    }
}

std::string_view Text(const void *value) noexcept {
    if (ValGetType(value) != kValTypeString) return {};
    size_t length = 0;
    const char *bytes = ValStringGetBytes(static_cast<const ValString *>(value), &length);
    return {bytes, length};
}

// What was asked for, in the most telling of its names.
std::string RequestedName(const ValDictionary *request) {
    for (const ValString *key : {kVLFontPropertyFullName, kVLFontPropertyName, kVLFontPropertyFamilyName,
                                 kVLFontPropertySubfamilyName}) {
        std::string name = Shown(Text(ValDictionaryGetValue(request, key)), kLongestName);
        if (!name.empty()) return name;
    }
    return {};
}

// Where a file was downloaded from, as whoever downloaded it wrote down; empty when nobody did.
std::string OriginOf(const std::string &path) {
    char origin[1024];
    const ssize_t length = ::getxattr(path.c_str(), "user.xdg.origin.url", origin, sizeof origin);
    return length > 0 ? Shown({origin, static_cast<size_t>(length)}, kLongestPath) : std::string();
}

std::string LineFor(const ValURL *font) {
    const auto path = Adopt(ValURLCopyFileSystemPath(font));
    const std::string plain(Text(path.Get()));
    std::string line = "\n- " + Shown(plain, kLongestPath);
    const std::string origin = OriginOf(plain);
    if (!origin.empty()) line += "\n  (downloaded from " + origin + ")";
    return line;
}

} // namespace

std::string Shown(std::string_view text, size_t longest) {
    std::string shown;
    while (!text.empty()) {
        const Decoded c = Decode(text);
        const char *replacement = Replacement(c.value);
        if (c.length != 0 && !IsHidden(c.value)) {
            if (shown.size() + 4 > longest) return shown + "…";
            shown += replacement ? replacement : text.substr(0, c.length);
        }
        text.remove_prefix(c.length ? c.length : 1);
    }
    return shown;
}

std::string QuestionFor(const ValDictionary *request, const ValArray *fonts) {
    const std::string name = RequestedName(request);
    std::string text = "The program " + Shown(::program_invocation_short_name, kLongestName);
    text += " needs a font that is not active";
    text += name.empty() ? "." : ": " + name;
    text += "\nFound on this computer:";
    const size_t count = ValArrayGetCount(fonts);
    for (size_t i = 0; i < count && i < kMostFonts; ++i) {
        const void *font = ValArrayGetValue(fonts, i);
        if (ValGetType(font) == kValTypeURL) text += LineFor(static_cast<const ValURL *>(font));
    }
    if (count > kMostFonts) text += "\n- and " + std::to_string(count - kMostFonts) + " more";
    return text + "\n\nMay the program use it?";
}

} // namespace vellum::companion
