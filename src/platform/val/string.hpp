// SPDX-License-Identifier: MIT
// How a string lies in memory, and the ways in which the library's other rooms make and read one.
//
// Equal text is equal bytes: surrogate pairs are always joined when a string is made, so equality
// and order never look at anything but bytes.
#pragma once

#include "platform/val/object.hpp"
#include "platform/val/text.hpp"

#include <vellum/values.hpp>

#include <string_view>

namespace vellum {
extern const ValKind kStringKind;
} // namespace vellum

// The bytes and a zero stand right behind it.
struct ValString : vellum::ValObject {
    constexpr ValString(size_t byte_length, const vellum::TextFacts &facts, uint64_t known_hash,
                        uint32_t count) noexcept
        : ValObject(vellum::kStringKind, count), is_ascii(facts.is_ascii), is_unicode(facts.is_unicode),
          length(byte_length), utf16_length(facts.utf16_length), hash(known_hash) {}

    bool is_ascii;
    bool is_unicode;
    size_t length;
    size_t utf16_length;
    mutable std::atomic<uint64_t> hash; // 0: not computed yet. Every thread would store the same.
};

namespace vellum {

// The bytes of a string, whatever they are; behind them stands a zero.
inline std::string_view Text(const ValString &string) noexcept {
    return {reinterpret_cast<const char *>(&string) + sizeof(ValString), string.length};
}

// The same, with null as the empty text.
inline std::string_view Text(const ValString *string) noexcept {
    return string ? Text(*string) : std::string_view();
}
inline std::string_view Text(const Ref<const ValString> &string) noexcept {
    return Text(string.Get());
}

// Hash of a text as a string has it; never 0.
constexpr uint64_t HashText(std::string_view text) noexcept {
    uint64_t hash = HashBytes(text);
    return hash ? hash : 1;
}

// The empty string.
Ref<const ValString> EmptyString() noexcept;

// A string of any bytes. Null only when memory is exhausted.
Ref<const ValString> MakeString(std::string_view bytes) noexcept;

// A string of `length` bytes that `fill` writes.
template <class Fill>
Ref<const ValString> MakeString(size_t length, Fill fill) noexcept {
    if (length == 0) return EmptyString();
    if (length == SIZE_MAX) return nullptr;
    auto *string = AllocateObject<ValString>(length + 1, length, TextFacts{}, 0u, 1u);
    if (!string) return nullptr;
    char *bytes = static_cast<char *>(ExtraBytes(string));
    fill(bytes);
    bytes[length] = '\0';
    TextFacts facts = ScanText({bytes, length});
    string->is_ascii = facts.is_ascii;
    string->is_unicode = facts.is_unicode;
    string->utf16_length = facts.utf16_length;
    return Ref<const ValString>::Adopt(string);
}

} // namespace vellum
