// SPDX-License-Identifier: MIT
// Strings: making, reading, equality and hash. Comparison, search and encodings have files of their
// own.
#include "platform/val/string.hpp"

#include "platform/val/static_string.hpp"

#include <cstring>

namespace vellum {
namespace {

constinit const StaticString kEmptyString("");

bool EqualStrings(const ValObject *a, const ValObject *b) {
    auto &left = *static_cast<const ValString *>(a);
    auto &right = *static_cast<const ValString *>(b);
    return Text(left) == Text(right);
}

uint64_t HashString(const ValObject *object) {
    auto *string = static_cast<const ValString *>(object);
    uint64_t hash = string->hash.load(std::memory_order_relaxed);
    if (hash == 0) {
        hash = HashText(Text(*string));
        string->hash.store(hash, std::memory_order_relaxed);
    }
    return hash;
}

} // namespace

constinit const ValKind kStringKind{kValTypeString, "String", nullptr, EqualStrings, HashString, nullptr};

Ref<const ValString> EmptyString() noexcept {
    return Ref<const ValString>::Adopt(kEmptyString.Get());
}

Ref<const ValString> MakeString(std::string_view bytes) noexcept {
    return MakeString(bytes.size(), [bytes](char *out) { std::memcpy(out, bytes.data(), bytes.size()); });
}

} // namespace vellum

using namespace vellum;

const ValString *ValStringCreateWithUTF8(const char *bytes, size_t length) noexcept {
    if (!bytes) return nullptr;
    Ref<const ValString> string = MakeString({bytes, length});
    return string && string.Get()->is_unicode ? string.Release() : nullptr;
}

const ValString *ValStringCreateWithCString(const char *text) noexcept {
    return text ? ValStringCreateWithUTF8(text, std::strlen(text)) : nullptr;
}

const ValString *ValStringCreateWithFileSystemRepresentation(const char *bytes, size_t length) noexcept {
    if (!bytes || std::memchr(bytes, 0, length)) return nullptr;
    return MakeString({bytes, length}).Release();
}

const char *ValStringGetUTF8(const ValString *string, size_t *length) noexcept {
    if (!string || !string->is_unicode) return nullptr;
    return ValStringGetBytes(string, length);
}

const char *ValStringGetBytes(const ValString *string, size_t *length) noexcept {
    if (!string) return nullptr;
    if (length) *length = string->length;
    return Text(*string).data();
}

size_t ValStringGetUTF16Length(const ValString *string) noexcept {
    return string ? string->utf16_length : 0;
}

const ValString *ValStringCopySubstring(const ValString *string, ValRange range) noexcept {
    if (!string || range.offset > string->length || range.length > string->length - range.offset)
        return nullptr;
    std::string_view text = Text(*string);
    if (!IsCharacterBoundary(text, range.offset) ||
        !IsCharacterBoundary(text, range.offset + range.length)) {
        return nullptr;
    }
    if (range.length == string->length) return Retain(string).Release();
    return MakeString(text.substr(range.offset, range.length)).Release();
}
