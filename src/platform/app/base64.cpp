// SPDX-License-Identifier: MIT
#include "platform/app/base64.hpp"

#include "platform/late/glib.hpp"
#include "platform/val/data.hpp"

#include <new>

namespace vellum {
namespace {

constexpr bool IsSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
constexpr bool IsDigit64(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
           c == '/';
}

// Whole groups of four, of which the last may end in one or two "=".
bool IsBase64(std::string_view text) noexcept {
    size_t digits = 0;
    size_t pads = 0;
    for (char c : text) {
        if (IsSpace(c)) continue;
        if (c == '=')
            ++pads;
        else if (pads || !IsDigit64(c))
            return false;
        else
            ++digits;
    }
    return pads <= 2 && (digits + pads) % 4 == 0 && (pads == 0 || digits % 4 + pads == 4);
}

} // namespace

Ref<const ValData> DecodeBase64(std::string_view text) noexcept {
    if (!IsBase64(text) || !sGLib.Open()) return nullptr;
    // GLib's decoder passes over all that is no digit; it writes 3 bytes for 4 digits, and wants 3 more.
    Ref<ValData> data = Adopt(ValDataCreateMutable(text.size() / 4 * 3 + 3));
    if (!data) return nullptr;
    int state = 0;
    unsigned save = 0;
    const size_t length =
        g_base64_decode_step(text.data(), text.size(), ValDataGetMutableBytes(data.Get()), &state, &save);
    ExtendData(data.Get(), length);
    return data;
}

std::string EncodeBase64(std::string_view bytes) {
    if (!sGLib.Open()) throw std::bad_alloc();
    // For 3 bytes 4 digits, and as much again at the end.
    std::string text((bytes.size() / 3 + 1) * 4 + 4, '\0');
    int state = 0;
    int save = 0;
    const auto *first = reinterpret_cast<const guchar *>(bytes.data());
    size_t length = g_base64_encode_step(first, bytes.size(), FALSE, text.data(), &state, &save);
    length += g_base64_encode_close(FALSE, text.data() + length, &state, &save);
    text.resize(length);
    return text;
}

} // namespace vellum
