// SPDX-License-Identifier: MIT
// Walking the members of a character set as ranges.
#include "platform/val/character_set.hpp"

#include <bit>

namespace vellum {
namespace {

// The first code point from `from` on that is a member (with invert: that is none), else
// kCodePointCount.
uint32_t FindNext(const ValCharacterSet &set, uint32_t from, bool invert) noexcept {
    const uint64_t flip = invert ? ~uint64_t{0} : 0;
    while (from < kCodePointCount) {
        const CharacterPage *page = FindPage(set, from / kPageBits);
        uint64_t word = ((page ? (*page)[from % kPageBits / 64] : 0) ^ flip) >> (from % 64);
        if (word) return from + static_cast<uint32_t>(std::countr_zero(word));
        const uint32_t step = page ? 64 : kPageBits; // to the next word, or over a page that is not there
        from = (from | (step - 1)) + 1;
    }
    return kCodePointCount;
}

} // namespace
} // namespace vellum

using namespace vellum;

bool ValCharacterSetNextRange(const ValCharacterSet *set, uint32_t *first, uint32_t *last) noexcept {
    if (!set || !first || !last) return false;
    uint32_t start = FindNext(*set, *last + 1, false); // UINT32_MAX + 1 is 0
    if (start == kCodePointCount) return false;
    *first = start;
    *last = FindNext(*set, start, true) - 1;
    return true;
}
