// SPDX-License-Identifier: MIT
// The words in which names of faces tell weight, width and slant.
#pragma once

#include "platform/val/letter_case.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vellum {

// A word and the value that it stands for. Words are sought in their order, and the first one that is
// found wins: longer words therefore stand before those that they contain. Where they do not, and where a
// word stands twice, that is deliberate and must stay: values are kept and asked for by others.
struct StyleWord {
    constexpr StyleWord(std::string_view its_word, float its_value) noexcept
        : word(its_word), value(its_value), letters(LettersOf(its_word)) {}

    std::string_view word; // ASCII
    float value;
    uint32_t letters; // that occur in the word

    // A bit for each letter of ASCII that occurs in a text, whatever its case.
    static constexpr uint32_t LettersOf(std::string_view text) noexcept {
        uint32_t letters = 0;
        for (const char c : text) {
            if (LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z') letters |= 1U << (LowerAscii(c) - 'a');
        }
        return letters;
    }
};

// Weights from -1 (thinnest) over 0 (regular) to 1; widths below 0 condensed; slants as fractions of 180
// degrees, leaning right above 0.
extern const std::span<const StyleWord> kWeightStyleGlossaryNameMap;
extern const std::span<const StyleWord> kWidthStyleGlossaryNameMap;
extern const std::span<const StyleWord> kSlantStyleGlossaryNameMap;

// Weights that are a whole name.
extern const std::span<const StyleWord> kAbbreviatedWeightStyleGlossaryNameMap;

// A name in which words are sought whatever their letter case.
class StyleName {
public:
    // Throws std::bad_alloc.
    explicit StyleName(std::string_view name);

    // The value of the first word of a glossary that occurs anywhere in the name, also within other
    // words; false, with `value` as it was, when none does.
    bool DetermineTraitValueFromString(std::span<const StyleWord> glossary, float &value) const noexcept;

    // The same for a glossary whose words must be all of the name.
    bool DetermineTraitValueFromWholeString(std::span<const StyleWord> glossary,
                                            float &value) const noexcept;

    // Where a word occurs last, or std::string_view::npos.
    size_t FindLast(std::string_view word) const noexcept;

    // Whether a word stands at a place.
    bool HasWordAt(size_t place, std::string_view word) const noexcept;

private:
    std::string folded_;
    uint32_t letters_; // that occur in it: most words have another, and need not be sought
};

} // namespace vellum
