// SPDX-License-Identifier: MIT
// Finding, trimming and splitting strings. What is found always begins and ends between characters.
#include "platform/val/letter_case.hpp"
#include "platform/val/string.hpp"

#include <algorithm>

namespace vellum {
namespace {

constexpr size_t kNowhere = std::string_view::npos;

bool IsCut(std::string_view text, size_t at, size_t length) noexcept {
    return IsCharacterBoundary(text, at) && IsCharacterBoundary(text, at + length);
}

size_t FindExact(std::string_view text, std::string_view sought, size_t from = 0) noexcept {
    size_t at = text.find(sought, from);
    while (at != kNowhere && !IsCut(text, at, sought.size())) at = text.find(sought, at + 1);
    return at;
}

size_t FindLastExact(std::string_view text, std::string_view sought) noexcept {
    size_t at = text.rfind(sought);
    while (at != kNowhere && !IsCut(text, at, sought.size()))
        at = at ? text.rfind(sought, at - 1) : kNowhere;
    return at;
}

// How many bytes at the front of `text` fold to the same as `sought`, or kNowhere. A character that
// folds to several is taken whole or not at all.
size_t MatchFolded(std::string_view text, std::string_view sought) noexcept {
    size_t common = CommonAsciiLength(text, sought);
    MappedText left(text.substr(common), FoldCharacter);
    MappedText right(sought.substr(common), FoldCharacter);
    while (!right.AtEnd()) {
        if (left.AtEnd() || left.Next() != right.Next()) return kNowhere;
    }
    return left.AtBoundary() ? common + left.Position() : kNowhere;
}

bool FindFolded(std::string_view text, std::string_view sought, bool last, ValRange &found) noexcept {
    bool any = false;
    for (size_t at = 0; at < text.size(); at += DecodeCharacter(text.substr(at)).length) {
        size_t length = MatchFolded(text.substr(at), sought);
        if (length == kNowhere) continue;
        found = {at, length};
        any = true;
        if (!last) break;
    }
    return any;
}

// Unicode's White_Space (PropList.txt), which is not to change any more.
bool IsWhitespace(char32_t c) noexcept {
    constexpr char32_t kOthers[] = {0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
    if (c < 0x80) return c == ' ' || (c >= '\t' && c <= '\r');
    return (c >= 0x2000 && c <= 0x200A) || std::ranges::binary_search(kOthers, c);
}

std::string_view TrimWhitespace(std::string_view text) noexcept {
    while (!text.empty()) {
        Character c = DecodeCharacter(text);
        if (!IsWhitespace(c.value)) break;
        text.remove_prefix(c.length);
    }
    while (!text.empty()) {
        Character c = DecodeLastCharacter(text);
        if (!IsWhitespace(c.value)) break;
        text.remove_suffix(c.length);
    }
    return text;
}

std::string_view Trim(std::string_view text, std::string_view trim) noexcept {
    while (text.starts_with(trim) && IsCharacterBoundary(text, trim.size()))
        text.remove_prefix(trim.size());
    while (text.ends_with(trim) && IsCharacterBoundary(text, text.size() - trim.size())) {
        text.remove_suffix(trim.size());
    }
    return text;
}

// `part`, which lies in `string`, as a string of its own; itself when it is all of it.
const ValString *CopyPart(const ValString *string, std::string_view part) noexcept {
    if (part.size() == string->length) return Retain(string).Release();
    return MakeString(part).Release();
}

bool AppendText(ValArray *array, std::string_view text) noexcept {
    Ref<const ValString> piece = MakeString(text);
    return piece && ValArrayAppend(array, piece.Get());
}

} // namespace
} // namespace vellum

using namespace vellum;

bool ValStringFind(const ValString *string, const ValString *sought, ValCompareOptions options,
                   ValRange *found) noexcept {
    if (!string || !sought || sought->length == 0) return false;
    std::string_view text = Text(*string);
    std::string_view needle = Text(*sought);
    bool last = (options & kValCompareBackwards) != 0;
    ValRange range{};
    if (options & kValCompareCaseInsensitive) {
        if (!FindFolded(text, needle, last, range)) return false;
    } else {
        size_t at = last ? FindLastExact(text, needle) : FindExact(text, needle);
        if (at == kNowhere) return false;
        range = {at, needle.size()};
    }
    if (found) *found = range;
    return true;
}

bool ValStringHasPrefix(const ValString *string, const ValString *prefix) noexcept {
    return string && prefix && Text(*string).starts_with(Text(*prefix)) &&
           IsCharacterBoundary(Text(*string), prefix->length);
}

bool ValStringHasSuffix(const ValString *string, const ValString *suffix) noexcept {
    return string && suffix && Text(*string).ends_with(Text(*suffix)) &&
           IsCharacterBoundary(Text(*string), string->length - suffix->length);
}

const ValString *ValStringCopyTrimming(const ValString *string, const ValString *trim) noexcept {
    if (!string) return nullptr;
    std::string_view text = Text(*string);
    return CopyPart(string, trim && trim->length ? Trim(text, Text(*trim)) : text);
}

const ValString *ValStringCopyTrimmingWhitespace(const ValString *string) noexcept {
    return string ? CopyPart(string, TrimWhitespace(Text(*string))) : nullptr;
}

const ValArray *ValStringCopyComponents(const ValString *string, const ValString *separator) noexcept {
    if (!string) return nullptr;
    Ref<ValArray> pieces = Adopt(ValArrayCreateMutable(0, nullptr));
    std::string_view text = Text(*string);
    std::string_view mark = Text(separator);
    size_t start = 0;
    for (size_t at; !mark.empty() && (at = FindExact(text, mark, start)) != kNowhere;
         start = at + mark.size()) {
        if (!AppendText(pieces.Get(), text.substr(start, at - start))) return nullptr;
    }
    return AppendText(pieces.Get(), text.substr(start)) ? pieces.Release() : nullptr;
}
