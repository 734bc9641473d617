// SPDX-License-Identifier: MIT
// How a character set lies in memory, and how the parser makes one fast.
//
// The code space is 2,176 pages of 512 code points. A set has one bit for each page that holds a
// member, and those pages in ascending order; the place of a page is the number of bits before its
// own, of which all but the last word's are counted beforehand. A page that is there is never empty,
// so equal sets have equal bits and equal pages.
#pragma once

#include "platform/val/object.hpp"

#include <vellum/values.hpp>

#include <array>
#include <bit>
#include <span>
#include <string_view>
#include <vector>

namespace vellum {

extern const ValKind kCharacterSetKind;

inline constexpr uint32_t kCodePointCount = 0x110000;
inline constexpr uint32_t kPageBits = 512;
inline constexpr uint32_t kPageCount = kCodePointCount / kPageBits;

using CharacterPage = std::array<uint64_t, kPageBits / 64>;
using PageBitmap = std::array<uint64_t, kPageCount / 64>;

} // namespace vellum

struct ValCharacterSet : vellum::ValObject {
    ValCharacterSet() noexcept : ValObject(vellum::kCharacterSetKind) {}

    bool on_heap = false;           // `pages` is a block of its own
    mutable bool is_shared = false; // stands in the table of shared sets, whose mutex guards
    mutable const ValCharacterSet *next_shared = nullptr; // these two
    uint32_t page_count = 0;
    uint32_t page_capacity = 0;
    vellum::CharacterPage *pages = nullptr;
    std::array<uint16_t, vellum::kPageCount / 64> rank{}; // pages before those of each word
    vellum::PageBitmap presence{};
};

namespace vellum {

// The pages before `page`; a page that is there stands in this place.
inline uint32_t PageRank(const ValCharacterSet &set, uint32_t page) noexcept {
    uint64_t before = set.presence[page / 64] & ((uint64_t{1} << (page % 64)) - 1);
    return set.rank[page / 64] + static_cast<uint32_t>(std::popcount(before));
}

inline const CharacterPage *FindPage(const ValCharacterSet &set, uint32_t page) noexcept {
    return set.presence[page / 64] >> (page % 64) & 1 ? &set.pages[PageRank(set, page)] : nullptr;
}

inline std::span<const CharacterPage> Pages(const ValCharacterSet &set) noexcept {
    return {set.pages, set.page_count};
}

// Sets the bits `first` to `last` of a page.
void FillPage(CharacterPage &page, uint32_t first, uint32_t last) noexcept;

// A set with the given pages in one block; the caller writes every one.
ValCharacterSet *AllocateCharacterSet(const PageBitmap &presence) noexcept;

// A set from ranges in any order. `next` is a function (uint32_t *first, uint32_t *last) -> bool as
// ValCharacterSetNextRange and hb_set_next_range are, without the set. It is walked twice, so that
// the set takes one block of just the right size. Code points above U+10FFFF are left out.
template <class Next>
Ref<const ValCharacterSet> MakeCharacterSet(Next next) noexcept {
    PageBitmap presence{};
    auto walk = [&next](auto visit) {
        uint32_t first = UINT32_MAX;
        uint32_t last = UINT32_MAX;
        while (next(&first, &last)) {
            uint32_t end = last < kCodePointCount ? last : kCodePointCount - 1;
            for (uint32_t from = first; from <= end; from = (from | (kPageBits - 1)) + 1) {
                uint32_t page_end = from | (kPageBits - 1);
                visit(from, page_end < end ? page_end : end);
            }
        }
    };
    walk([&presence](uint32_t from, uint32_t) {
        presence[from / kPageBits / 64] |= uint64_t{1} << (from / kPageBits % 64);
    });
    ValCharacterSet *set = AllocateCharacterSet(presence);
    if (!set) return nullptr;
    for (CharacterPage &page : std::span(set->pages, set->page_count)) page = {};
    walk([set](uint32_t from, uint32_t to) {
        FillPage(set->pages[PageRank(*set, from / kPageBits)], from % kPageBits, to % kPageBits);
    });
    return Ref<const ValCharacterSet>::Adopt(set);
}

// A set from its members in ascending order.
class TPageCollector {
public:
    // Adds up to 64 neighbours. Throws std::bad_alloc. Code points above U+10FFFF are left out.
    void AddRange(uint32_t first, uint32_t last) {
        if (first >= kCodePointCount) return;
        const uint64_t bits = ~uint64_t{0} >> (63 - (last - first));
        Word(first) |= bits << (first % 64);
        if (last / 64 != first / 64 && last < kCodePointCount) Word(last) |= bits >> (64 - first % 64);
    }

    // Null when memory is exhausted.
    Ref<const ValCharacterSet> MakeSet() const noexcept;

private:
    uint64_t &Word(uint32_t code_point) {
        if (code_point / kPageBits != page_) BeginPage(code_point / kPageBits);
        return pages_.back()[code_point % kPageBits / 64];
    }

    void BeginPage(uint32_t page);

    uint32_t page_ = kPageCount; // the one whose members are being added; at first none
    std::vector<CharacterPage> pages_;
    PageBitmap presence_{};
};

// Whether bytes are a whole bitmap form, with all of its first plane: what WriteBitmap may have written.
bool IsBitmap(std::string_view bytes) noexcept;

// The length of a set's bitmap form, and that many bytes of it into `out`.
size_t BitmapLength(const ValCharacterSet &set) noexcept;
void WriteBitmap(const ValCharacterSet &set, uint8_t *out) noexcept;

// The one live set that is equal to `set` among those given to this function: most faces of a
// family cover the same characters. The table does not keep sets alive. When memory is exhausted,
// `set` itself.
Ref<const ValCharacterSet> ShareCharacterSet(Ref<const ValCharacterSet> set) noexcept;

// For a set that is dying: takes it out of that table.
void ForgetSharedCharacterSet(const ValCharacterSet *set) noexcept;

} // namespace vellum
