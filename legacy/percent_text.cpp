// SPDX-License-Identifier: MIT
// Percent escapes. Letters are ASCII's in every locale.
#include "percent_text.hpp"

#include <algorithm>
#include <charconv>

namespace vellum::legacy {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

constexpr bool StandsForItself(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

// The byte of the two digits that `text` begins with; zero stands for a broken escape.
unsigned char ReadEscape(std::string_view text) noexcept {
    if (text.size() < 2) return 0;
    unsigned char byte = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + 2, byte, 16);
    return error == std::errc() && end == text.data() + 2 ? byte : 0;
}

std::string_view TakePiece(std::string_view &rest, char separator) noexcept {
    const size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return piece;
}

} // namespace

std::string PercentEscape(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        if (StandsForItself(c)) {
            text += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return text;
}

std::optional<std::string> PercentUnescape(std::string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        const unsigned char byte = ReadEscape(text.substr(i + 1));
        if (!byte) return std::nullopt;
        bytes += static_cast<char>(byte);
        i += 2;
    }
    return bytes;
}

std::vector<std::pair<std::string, std::string>> ReadParameters(std::string_view fragment) {
    std::vector<std::pair<std::string, std::string>> parameters;
    while (!fragment.empty()) {
        std::string_view rest = TakePiece(fragment, ';');
        if (std::count(rest.begin(), rest.end(), '=') != 1) continue;
        auto key = PercentUnescape(TakePiece(rest, '='));
        auto value = PercentUnescape(rest);
        if (key && value) parameters.emplace_back(std::move(*key), std::move(*value));
    }
    return parameters;
}

} // namespace vellum::legacy
