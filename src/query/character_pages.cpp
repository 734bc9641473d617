// SPDX-License-Identifier: MIT
#include "query/character_pages.hpp"

#include "store/font_reference.hpp"

#include <bit>

namespace vellum {

static_assert(kLastFontIndex < UINT16_MAX);

void CharacterPages::Page::Note(const Coverage &coverage, uint32_t number) {
    const CharacterPage *own = FindPage(*coverage.characters, number);
    if (!own) return;
    if (!places) places = std::make_unique<Places>();
    for (size_t word = 0; word < known.size(); ++word) {
        for (uint64_t fresh = (*own)[word] & ~known[word]; fresh; fresh &= fresh - 1)
            (*places)[word * 64 + static_cast<size_t>(std::countr_zero(fresh))] =
                static_cast<Place>(coverage.place);
        known[word] |= (*own)[word];
    }
}

} // namespace vellum
