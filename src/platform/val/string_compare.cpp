// SPDX-License-Identifier: MIT
// The order of strings.
//
// Every combination of options is a total order up to ties, so that any of them can sort: strings
// that are no valid Unicode stand after all others and compare by bytes among themselves, but for
// the exact order, which is bytes for all.
#include "platform/val/collation.hpp"
#include "platform/val/letter_case.hpp"
#include "platform/val/sort_key.hpp"
#include "platform/val/text_buffer.hpp"

#include <new>

namespace vellum {
namespace {

constexpr int Sign(int order) noexcept {
    return (order > 0) - (order < 0);
}

constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// Cuts the digits off the front of a text; without their leading zeros.
std::string_view TakeNumber(std::string_view &text) noexcept {
    size_t end = 0;
    while (end < text.size() && IsDigit(text[end])) ++end;
    std::string_view digits = text.substr(0, end);
    text.remove_prefix(end);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

// Cuts what stands before the next digit off the front of a text.
std::string_view TakeWords(std::string_view &text) noexcept {
    size_t end = 0;
    while (end < text.size() && !IsDigit(text[end])) ++end;
    std::string_view words = text.substr(0, end);
    text.remove_prefix(end);
    return words;
}

int CompareNumbers(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    return Sign(a.compare(b));
}

// Texts as they stand, but for runs of digits, which compare by value where both have one.
int CompareNumeric(std::string_view a, std::string_view b) noexcept {
    while (!a.empty() && !b.empty()) {
        int order = 0;
        if (IsDigit(a[0]) && IsDigit(b[0])) {
            std::string_view number = TakeNumber(a);
            order = CompareNumbers(number, TakeNumber(b));
        } else {
            order = Sign(a.substr(0, 1).compare(b.substr(0, 1)));
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
        if (order != 0) return order;
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

// Words are collated, the numbers between them compare by value.
int CompareLocalizedNumeric(std::string_view a, std::string_view b) noexcept {
    while (!a.empty() || !b.empty()) {
        std::string_view words = TakeWords(a);
        if (int order = Collate(words, TakeWords(b))) return order;
        if (a.empty() || b.empty()) break;
        std::string_view number = TakeNumber(a);
        if (int order = CompareNumbers(number, TakeNumber(b))) return order;
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

int CompareUnfolded(std::string_view a, std::string_view b, ValCompareOptions options) noexcept {
    bool numeric = (options & kValCompareNumeric) != 0;
    if (options & kValCompareLocalized) return numeric ? CompareLocalizedNumeric(a, b) : Collate(a, b);
    return numeric ? CompareNumeric(a, b) : Sign(a.compare(b));
}

void AppendFolded(TextBuffer &buffer, std::string_view text) noexcept {
    MappedText folded(text, FoldCharacter);
    while (!folded.AtEnd()) buffer.AppendCharacter(folded.Next());
}

int CompareFolded(std::string_view a, std::string_view b, ValCompareOptions options) noexcept {
    if (!(options & (kValCompareNumeric | kValCompareLocalized))) return CompareMapped(a, b, FoldCharacter);
    TextBuffer left;
    TextBuffer right;
    AppendFolded(left, a);
    AppendFolded(right, b);
    if (left.Failed() || right.Failed()) return CompareMapped(a, b, FoldCharacter);
    return CompareUnfolded(left.View(), right.View(), options);
}

// What follows the words in a sort key: a number, or nothing.
constexpr char kEnd = 0, kNumber = 1;

// The number's digits, behind their count: the longer number is the greater one.
void AppendNumber(std::string &key, std::string_view digits) {
    for (int shift = 24; shift >= 0; shift -= 8)
        key += static_cast<char>(static_cast<uint32_t>(digits.size()) >> shift);
    key += digits;
}

} // namespace

std::string MakeSortKey(const ValString &string) {
    if (!string.is_unicode) return '\xFF' + std::string(Text(string));
    TextBuffer folded;
    AppendFolded(folded, Text(string));
    if (folded.Failed()) throw std::bad_alloc();
    std::string key;
    for (std::string_view text = folded.View();;) {
        AppendCollationKey(key, TakeWords(text));
        key += text.empty() ? kEnd : kNumber;
        if (text.empty()) return key;
        AppendNumber(key, TakeNumber(text));
    }
}

} // namespace vellum

using namespace vellum;

int ValStringCompare(const ValString *a, const ValString *b, ValCompareOptions options) noexcept {
    if (a == b) return 0;
    if (!a || !b) return a ? 1 : -1;
    options &= kValCompareCaseInsensitive | kValCompareNumeric | kValCompareLocalized;
    if (options && a->is_unicode != b->is_unicode) return a->is_unicode ? -1 : 1;
    if (!a->is_unicode) options = kValCompareExact;
    return options & kValCompareCaseInsensitive ? CompareFolded(Text(*a), Text(*b), options)
                                                : CompareUnfolded(Text(*a), Text(*b), options);
}
