// SPDX-License-Identifier: MIT
// The lower-cased form of a string, and the callbacks of containers whose strings ignore letter case.
#include "platform/val/letter_case.hpp"
#include "platform/val/text_buffer.hpp"

#include <algorithm>

using namespace vellum;

namespace {

const ValString *AsString(const void *value) noexcept {
    return ValGetType(value) == kValTypeString ? static_cast<const ValString *>(value) : nullptr;
}

bool EqualIgnoringCase(const void *a, const void *b) {
    const ValString *left = AsString(a);
    const ValString *right = AsString(b);
    if (!left || !right) return ValEqual(a, b);
    if (left == right) return true;
    if (left->is_ascii && right->is_ascii && left->length != right->length) return false;
    return CompareMapped(Text(*left), Text(*right), LowerCharacter) == 0;
}

uint64_t HashIgnoringCase(const void *value) {
    const ValString *string = AsString(value);
    return string ? HashLowercase(Text(*string)) : ValHash(value);
}

bool IsLowercaseAscii(const ValString &string) noexcept {
    return string.is_ascii &&
           std::ranges::none_of(Text(string), [](char c) { return c >= 'A' && c <= 'Z'; });
}

} // namespace

extern constinit const ValCallbacks kValCaseInsensitiveStringCallbacks = {
    ValRetain, ValRelease, EqualIgnoringCase, HashIgnoringCase, ValCopyDescription};

const ValString *ValStringCopyLowercase(const ValString *string) noexcept {
    if (!string) return nullptr;
    if (IsLowercaseAscii(*string)) return Retain(string).Release();
    TextBuffer lower;
    MappedText text(Text(*string), LowerCharacter);
    while (!text.AtEnd()) lower.AppendCharacter(text.Next());
    return lower.MakeString().Release();
}
