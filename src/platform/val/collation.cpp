// SPDX-License-Identifier: MIT
// Collation by the user's locale, through the C library.
#include "platform/val/collation.hpp"

#include <langinfo.h>
#include <locale.h>
#include <string.h>

#include <algorithm>

namespace vellum {
namespace {

// The environment's LC_COLLATE with the LC_CTYPE that belongs to it, which the environment may set
// to something else. Null: by code points.
locale_t MakeCollationLocale() noexcept {
    locale_t named = newlocale(LC_COLLATE_MASK, "", nullptr);
    if (!named) return nullptr;
    const char *name = nl_langinfo_l(NL_LOCALE_NAME(LC_COLLATE), named);
    locale_t locale = newlocale(LC_COLLATE_MASK | LC_CTYPE_MASK, name, nullptr);
    freelocale(named);
    if (locale && std::string_view(nl_langinfo_l(CODESET, locale)) != "UTF-8") {
        freelocale(locale);
        return nullptr;
    }
    return locale;
}

locale_t CollationLocale() noexcept {
    static const locale_t sLocale = MakeCollationLocale(); // never freed: other threads may be in it
    return sLocale;
}

int CompareBytes(std::string_view a, std::string_view b) noexcept {
    int order = a.compare(b);
    return (order > 0) - (order < 0);
}

// The text up to the next U+0000, which the C library takes for the end.
std::string_view TakePiece(std::string_view &text) noexcept {
    std::string_view piece = text.substr(0, text.find('\0'));
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
    return piece;
}

// Appends the transformed form of a text without U+0000, and the byte 0, which no such form holds.
void AppendTransformed(std::string &key, std::string_view piece, locale_t locale) {
    const std::string text(piece);
    const size_t start = key.size();
    key.resize(start + 4 * text.size() + 16);
    for (size_t length;
         start + (length = strxfrm_l(&key[start], text.c_str(), key.size() - start, locale)) >= key.size();)
        key.resize(start + length + 1);
    key.resize(start + std::char_traits<char>::length(&key[start]));
    key += '\0';
}

// By the transformed forms, as sort keys are: the C library's own comparison differs from them for some
// texts with combining marks.
int CollatePiece(std::string_view a, std::string_view b, locale_t locale) {
    if (a == b) return 0;
    std::string left, right;
    AppendTransformed(left, a, locale);
    AppendTransformed(right, b, locale);
    return CompareBytes(left, right);
}

} // namespace

int Collate(std::string_view a, std::string_view b) noexcept {
    locale_t locale = CollationLocale();
    if (!locale) return CompareBytes(a, b);
    try {
        while (!a.empty() && !b.empty()) {
            std::string_view piece = TakePiece(a);
            if (int order = CollatePiece(piece, TakePiece(b), locale)) return order;
        }
    } catch (...) { // memory is exhausted
        return CompareBytes(a, b);
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

void AppendCollationKey(std::string &key, std::string_view text) {
    const std::string_view piece = TakePiece(text);
    if (locale_t locale = CollationLocale()) return AppendTransformed(key, piece, locale);
    key += piece;
    key += '\0';
}

} // namespace vellum
