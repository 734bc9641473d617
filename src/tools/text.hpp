// SPDX-License-Identifier: MIT
// From values to the tool's own text and numbers, and back.
#pragma once

#include <vellum/vellum.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vellum::tool {

// The bytes of a string, for the terminal; empty for null.
std::string Bytes(const ValString *string);

// The text of a string, as JSON wants it: what is no Unicode is replaced. Nothing for null.
std::optional<std::string> Text(const ValString *string);

// Text as it may be shown to people: characters with which a name in a font could drive the terminal, or
// turn what is shown around, are written as \x and two digits, or \u and four.
std::string Printable(std::string_view text);

// RFC 4648, with padding.
std::string Base64(std::span<const uint8_t> bytes);

// A set of characters as ranges in hexadecimal: "20-7e a0".
std::string RangesOf(const ValCharacterSet *characters);

// A code point (a Unicode scalar value) in UTF-8.
std::string UTF8(uint32_t character);

// A number with its thousands apart: "12,345".
std::string Grouped(size_t number);

// A number of things: "1 font", "12,345 fonts".
std::string Counted(size_t number, const char *one, const char *many);

Ref<const ValURL> FileURL(std::string_view path);

// The path of a file URL; its escapes decoded.
std::string PathOf(const ValURL *url);

// A dictionary's value when it is of the kind that is asked for, else null. Borrowed.
const ValString *StringAt(const ValDictionary *dictionary, const ValString *key);
const ValURL *URLAt(const ValDictionary *dictionary, const ValString *key);
const ValArray *ArrayAt(const ValDictionary *dictionary, const ValString *key);
const ValDictionary *DictionaryAt(const ValDictionary *dictionary, const ValString *key);

// A dictionary's number, 0 when there is none.
double NumberAt(const ValDictionary *dictionary, const void *key);

} // namespace vellum::tool
