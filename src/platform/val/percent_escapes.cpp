// SPDX-License-Identifier: MIT
// Percent escapes of URLs.
#include "platform/val/percent_escapes.hpp"

#include <algorithm>
#include <array>

namespace vellum {
namespace {

// RFC 3986's unreserved and sub-delims, and what else a path may hold.
constexpr std::string_view kPlainMarks = "-._~!$&'()*+,;=:@/";
constexpr char kHexDigits[] = "0123456789ABCDEF";

constexpr auto kIsPlain = [] {
    std::array<bool, 256> is_plain{};
    for (int c = 0; c < 128; ++c)
        is_plain[static_cast<size_t>(c)] = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                           (c >= '0' && c <= '9') ||
                                           kPlainMarks.find(static_cast<char>(c)) != std::string_view::npos;
    return is_plain;
}();

constexpr int HexValue(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The byte that an escape at the front of `text` stands for, or -1.
constexpr int EscapedByte(std::string_view text) noexcept {
    if (text.size() < 3 || text[0] != '%') return -1;
    int high = HexValue(text[1]);
    int low = HexValue(text[2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

} // namespace

void AppendEscaped(TextBuffer &out, std::string_view text, std::string_view also) noexcept {
    const auto is_plain = [also](char c) {
        return kIsPlain[static_cast<unsigned char>(c)] &&
               (also.empty() || also.find(c) == std::string_view::npos);
    };
    while (!text.empty()) {
        const auto plain = static_cast<size_t>(std::ranges::find_if_not(text, is_plain) - text.begin());
        out.Append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        const auto byte = static_cast<unsigned char>(text[0]);
        const char escape[] = {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
        out.Append({escape, sizeof escape});
        text.remove_prefix(1);
    }
}

bool AppendUnescaped(TextBuffer &out, std::string_view text, std::string_view refused) noexcept {
    while (!text.empty()) {
        size_t plain = std::min(text.find('%'), text.size());
        out.Append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        int escaped = EscapedByte(text);
        char byte = escaped < 0 ? '%' : static_cast<char>(escaped);
        if (escaped == 0 || (escaped > 0 && refused.find(byte) != std::string_view::npos)) return false;
        out.AppendByte(byte);
        text.remove_prefix(escaped < 0 ? 1 : 3);
    }
    return true;
}

Ref<const ValString> Unescape(std::string_view text, std::string_view refused) noexcept {
    TextBuffer decoded;
    return AppendUnescaped(decoded, text, refused) ? decoded.MakeString() : nullptr;
}

} // namespace vellum

using namespace vellum;

const ValString *ValStringCopyAddingPercentEscapes(const ValString *string,
                                                   const ValString *also) noexcept {
    if (!string) return nullptr;
    TextBuffer escaped;
    AppendEscaped(escaped, Text(*string), Text(also));
    return escaped.MakeString().Release();
}

const ValString *ValStringCopyRemovingPercentEscapes(const ValString *string) noexcept {
    return string ? Unescape(Text(*string)).Release() : nullptr;
}
