// SPDX-License-Identifier: MIT
// Lower-casing and case folding, character by character and the same in every locale.
//
// One character at a time, because searches must know where each one stood, and because hashes and
// comparisons of folded text shall need no memory. GLib has the simple mappings; the foldings that
// are not the simple lower-case letter are a table here (case_folding.cpp), which a test compares
// with GLib's own for every code point.
#pragma once

#include "platform/val/text.hpp"

#include <array>
#include <string_view>

namespace vellum {

// What one character becomes: up to three characters.
struct CaseMapping {
    std::array<char32_t, 3> characters;
    uint8_t count;
};

using CaseMapper = CaseMapping (*)(char32_t c) noexcept;

// To lower case without looking at the neighbours: U+0130 becomes two characters, all others one.
CaseMapping LowerCharacter(char32_t c) noexcept;

// Unicode full case folding.
CaseMapping FoldCharacter(char32_t c) noexcept;

constexpr char LowerAscii(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// Reads a text as the characters that it becomes under a mapping.
class MappedText {
public:
    MappedText(std::string_view text, CaseMapper mapper) noexcept : text_(text), mapper_(mapper) {}

    // True when nothing of a character that became several is left over.
    bool AtBoundary() const noexcept { return next_ == mapping_.count; }
    bool AtEnd() const noexcept { return AtBoundary() && position_ == text_.size(); }

    // Bytes of the text that have been read.
    size_t Position() const noexcept { return position_; }

    // The next character; not to be called at the end.
    char32_t Next() noexcept;

private:
    std::string_view text_;
    CaseMapper mapper_;
    size_t position_ = 0;
    CaseMapping mapping_ = {};
    uint8_t next_ = 0;
};

// How many bytes at the front of both are ASCII and the same but for letter case. They map one to one
// under every mapping, so what follows can be compared by itself.
size_t CommonAsciiLength(std::string_view a, std::string_view b) noexcept;

// Compares two texts as they are under a mapping, by code points: negative, 0 or positive.
int CompareMapped(std::string_view a, std::string_view b, CaseMapper mapper) noexcept;

// A hash of the lower-cased text, without making it.
uint64_t HashLowercase(std::string_view text) noexcept;

} // namespace vellum
