// SPDX-License-Identifier: MIT
// Which face is the first of an order that has a character, remembered for each page of code points.
//
// Coverages are gone through page by page and only as far as a question needs: up to the first one that has
// the character. What those on the way have in that page is noted, so that none is looked at twice for one
// page.
#pragma once

#include "platform/val/character_set.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

namespace vellum {

class CharacterPages {
public:
    static constexpr size_t kNone = SIZE_MAX;

    // A coverage, and the place of the first face that has it.
    struct Coverage {
        const ValCharacterSet *characters;
        size_t place;
    };

    // The place of the first face that has a character; kNone when none has. `coverage_at(i)` gives the
    // i-th coverage (a pointer, null past the last), in the order of their faces.
    template <class CoverageAt>
    size_t Find(uint32_t character, CoverageAt coverage_at) {
        if (character >= kCodePointCount) return kNone;
        const uint32_t number = character / kPageBits, bit = character % kPageBits;
        Page &page = pages_[number];
        while (!page.Has(bit)) {
            const Coverage *coverage = coverage_at(page.walked);
            if (!coverage) return kNone;
            page.Note(*coverage, number);
            ++page.walked;
        }
        return page.FirstWith(bit);
    }

    // For when the order has changed.
    void Clear() noexcept { pages_.clear(); }

private:
    // A register has no more faces than a reference has indexes.
    using Place = uint16_t;
    using Places = std::array<Place, kPageBits>;

    struct Page {
        size_t walked = 0;              // coverages from the front that are noted
        CharacterPage known{};          // the characters that one of them has
        std::unique_ptr<Places> places; // the first face for each of those; none without any

        bool Has(uint32_t bit) const noexcept { return known[bit / 64] >> (bit % 64) & 1; }
        size_t FirstWith(uint32_t bit) const noexcept { return (*places)[bit]; }
        void Note(const Coverage &coverage, uint32_t number);
    };

    std::unordered_map<uint32_t, Page> pages_;
};

} // namespace vellum
