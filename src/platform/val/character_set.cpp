// SPDX-License-Identifier: MIT
// Character sets: making, changing, comparing.
#include "platform/val/character_set.hpp"

#include "platform/val/hash.hpp"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// The bits `first` to `last` of a 64-bit word.
constexpr uint64_t WordMask(uint32_t first, uint32_t last) noexcept {
    return (~uint64_t{0} >> (63 - last)) & (~uint64_t{0} << first);
}

// Visits the words of a page that hold the bits `first` to `last`.
template <class Visit>
void ForEachWord(CharacterPage &page, uint32_t first, uint32_t last, Visit visit) noexcept {
    for (uint32_t word = first / 64; word <= last / 64; ++word) {
        visit(page[word],
              WordMask(word == first / 64 ? first % 64 : 0, word == last / 64 ? last % 64 : 63));
    }
}

bool IsEmpty(const CharacterPage &page) noexcept {
    return std::ranges::all_of(page, [](uint64_t word) { return word == 0; });
}

// Every word is looked at: a page is no longer than what a branch that is guessed wrong costs.
bool CoversPage(const CharacterPage &ours, const CharacterPage &theirs) noexcept {
    uint64_t excess = 0;
    for (size_t i = 0; i < ours.size(); ++i) excess |= theirs[i] & ~ours[i];
    return excess == 0;
}

bool HasPage(const PageBitmap &presence, uint32_t page) noexcept {
    return presence[page / 64] >> (page % 64) & 1;
}

// Most words of most sets are zero, and counting bits is slow on the least processor.
uint32_t CountBits(uint64_t word) noexcept {
    return word ? static_cast<uint32_t>(std::popcount(word)) : 0;
}

void CountRanks(ValCharacterSet *set) noexcept {
    uint32_t rank = 0;
    for (size_t i = 0; i < set->presence.size(); ++i) {
        set->rank[i] = static_cast<uint16_t>(rank);
        rank += CountBits(set->presence[i]);
    }
    set->page_count = rank;
}

uint32_t CountPages(const PageBitmap &presence) noexcept {
    uint32_t count = 0;
    for (uint64_t word : presence) count += CountBits(word);
    return count;
}

bool Reserve(ValCharacterSet *set, uint32_t pages) noexcept {
    if (pages <= set->page_capacity) return true;
    uint32_t capacity = std::clamp(set->page_capacity * 2, pages, kPageCount);
    void *grown = Reallocate(set->on_heap ? set->pages : nullptr, capacity * sizeof(CharacterPage));
    if (!grown) return false;
    if (!set->on_heap && set->page_count) {
        std::memcpy(grown, set->pages, set->page_count * sizeof(CharacterPage));
    }
    set->pages = static_cast<CharacterPage *>(grown);
    set->page_capacity = capacity;
    set->on_heap = true;
    return true;
}

// Adds every page of `wanted` that is not there yet, empty; the caller fills them.
bool AddPages(ValCharacterSet *set, const PageBitmap &wanted) noexcept {
    PageBitmap both;
    for (size_t i = 0; i < both.size(); ++i) both[i] = set->presence[i] | wanted[i];
    if (both == set->presence) return true;
    uint32_t count = CountPages(both);
    if (!Reserve(set, count)) return false;
    // From the end, so that nothing is overwritten; in front of the first new page nothing moves.
    uint32_t from = set->page_count;
    for (uint32_t page = kPageCount; from < count;) {
        if (!HasPage(both, --page)) continue;
        --count;
        if (HasPage(set->presence, page))
            set->pages[count] = set->pages[--from];
        else
            set->pages[count] = CharacterPage{};
    }
    set->presence = both;
    CountRanks(set);
    return true;
}

PageBitmap PagesOfRange(uint32_t first, uint32_t last) noexcept {
    PageBitmap pages{};
    uint32_t first_page = first / kPageBits;
    uint32_t last_page = last / kPageBits;
    for (uint32_t word = first_page / 64; word <= last_page / 64; ++word) {
        pages[word] = WordMask(word == first_page / 64 ? first_page % 64 : 0,
                               word == last_page / 64 ? last_page % 64 : 63);
    }
    return pages;
}

// Closes the gaps of pages that have become empty.
void DropEmptyPages(ValCharacterSet *set) noexcept {
    uint32_t kept = 0;
    uint32_t at = 0;
    for (uint32_t page = 0; at < set->page_count; ++page) {
        if (!HasPage(set->presence, page)) continue;
        const CharacterPage &old = set->pages[at++];
        if (IsEmpty(old))
            set->presence[page / 64] &= ~(uint64_t{1} << (page % 64));
        else
            set->pages[kept++] = old;
    }
    CountRanks(set);
}

void FinalizeCharacterSet(ValObject *object) {
    auto *set = static_cast<ValCharacterSet *>(object);
    if (set->is_shared) ForgetSharedCharacterSet(set);
    if (set->on_heap) std::free(set->pages);
}

bool EqualCharacterSets(const ValObject *a, const ValObject *b) {
    auto &left = *static_cast<const ValCharacterSet *>(a);
    auto &right = *static_cast<const ValCharacterSet *>(b);
    return left.presence == right.presence && std::ranges::equal(Pages(left), Pages(right));
}

uint64_t HashCharacterSet(const ValObject *object) {
    auto &set = *static_cast<const ValCharacterSet *>(object);
    uint64_t hash = kValTypeCharacterSet;
    for (uint64_t word : set.presence) hash = CombineHash(hash, word);
    auto *bytes = reinterpret_cast<const char *>(set.pages);
    return CombineHash(hash, HashBytes({bytes, set.page_count * sizeof(CharacterPage)}));
}

} // namespace

constinit const ValKind kCharacterSetKind{kValTypeCharacterSet, "CharacterSet",   FinalizeCharacterSet,
                                          EqualCharacterSets,   HashCharacterSet, nullptr};

void FillPage(CharacterPage &page, uint32_t first, uint32_t last) noexcept {
    ForEachWord(page, first, last, [](uint64_t &word, uint64_t mask) { word |= mask; });
}

ValCharacterSet *AllocateCharacterSet(const PageBitmap &presence) noexcept {
    uint32_t count = CountPages(presence);
    auto *set = AllocateObject<ValCharacterSet>(count * sizeof(CharacterPage));
    if (!set) return nullptr;
    set->pages = static_cast<CharacterPage *>(ExtraBytes(set));
    set->page_capacity = count;
    set->presence = presence;
    CountRanks(set);
    return set;
}

void TPageCollector::BeginPage(uint32_t page) {
    page_ = page;
    pages_.emplace_back();
    presence_[page / 64] |= uint64_t{1} << (page % 64);
}

Ref<const ValCharacterSet> TPageCollector::MakeSet() const noexcept {
    ValCharacterSet *set = AllocateCharacterSet(presence_);
    if (set) std::ranges::copy(pages_, set->pages);
    return Ref<const ValCharacterSet>::Adopt(set);
}

} // namespace vellum

using namespace vellum;

const ValCharacterSet *ValCharacterSetCreateWithRange(uint32_t first, uint32_t last) noexcept {
    if (first > last) return nullptr;
    bool walked = false;
    auto next = [&](uint32_t *from, uint32_t *to) {
        *from = first;
        *to = last;
        return walked = !walked;
    };
    return MakeCharacterSet(next).Release();
}

ValCharacterSet *ValCharacterSetCreateMutable(void) noexcept {
    return AllocateCharacterSet({});
}

ValCharacterSet *ValCharacterSetCreateMutableCopy(const ValCharacterSet *set) noexcept {
    ValCharacterSet *copy = set ? AllocateCharacterSet(set->presence) : nullptr;
    if (copy) std::ranges::copy(Pages(*set), copy->pages);
    return copy;
}

size_t ValCharacterSetGetCount(const ValCharacterSet *set) noexcept {
    size_t count = 0;
    if (!set) return count;
    for (const CharacterPage &page : Pages(*set)) {
        for (uint64_t word : page) count += static_cast<size_t>(std::popcount(word));
    }
    return count;
}

bool ValCharacterSetContains(const ValCharacterSet *set, uint32_t codePoint) noexcept {
    if (!set || codePoint >= kCodePointCount) return false;
    const CharacterPage *page = FindPage(*set, codePoint / kPageBits);
    return page && ((*page)[codePoint % kPageBits / 64] >> (codePoint % 64) & 1);
}

bool ValCharacterSetHasMemberInPlane(const ValCharacterSet *set, uint32_t plane) noexcept {
    return set && plane <= 16 && (set->presence[plane * 2] | set->presence[plane * 2 + 1]);
}

bool ValCharacterSetIsSuperset(const ValCharacterSet *set, const ValCharacterSet *other) noexcept {
    if (set == other || !other) return true;
    if (!set) return other->page_count == 0;
    for (size_t word = 0, at = 0; at < other->page_count; ++word) {
        uint64_t theirs = other->presence[word];
        uint64_t ours = set->presence[word];
        if (theirs & ~ours) return false;
        for (const CharacterPage *page = set->pages + set->rank[word]; theirs; theirs &= theirs - 1) {
            const uint64_t below = (theirs - 1) & ~theirs;
            page += CountBits(ours & below);
            ours &= ~below; // the pages from this one on
            if (!CoversPage(*page, other->pages[at++])) return false;
        }
    }
    return true;
}

bool ValCharacterSetAddRange(ValCharacterSet *set, uint32_t first, uint32_t last) noexcept {
    if (!set || first > last) return false;
    if (first >= kCodePointCount) return true;
    last = std::min(last, kCodePointCount - 1);
    // Most ranges of a font begin and end on a page that is there.
    bool on_one_page = first / kPageBits == last / kPageBits && HasPage(set->presence, first / kPageBits);
    if (!on_one_page && !AddPages(set, PagesOfRange(first, last))) return false;
    uint32_t at = PageRank(*set, first / kPageBits);
    for (uint32_t page = first / kPageBits; page <= last / kPageBits; ++page) {
        FillPage(set->pages[at++], page == first / kPageBits ? first % kPageBits : 0,
                 page == last / kPageBits ? last % kPageBits : kPageBits - 1);
    }
    return true;
}

bool ValCharacterSetRemoveRange(ValCharacterSet *set, uint32_t first, uint32_t last) noexcept {
    if (!set || first > last) return false;
    if (first >= kCodePointCount) return true;
    last = std::min(last, kCodePointCount - 1);
    for (uint32_t page = first / kPageBits; page <= last / kPageBits; ++page) {
        if (!HasPage(set->presence, page)) continue;
        ForEachWord(set->pages[PageRank(*set, page)], page == first / kPageBits ? first % kPageBits : 0,
                    page == last / kPageBits ? last % kPageBits : kPageBits - 1,
                    [](uint64_t &word, uint64_t mask) { word &= ~mask; });
    }
    DropEmptyPages(set);
    return true;
}

bool ValCharacterSetUnion(ValCharacterSet *set, const ValCharacterSet *other) noexcept {
    if (!set) return false;
    if (!other || set == other) return true;
    if (!AddPages(set, other->presence)) return false;
    for (uint32_t page = 0, at = 0; at < other->page_count; ++page) {
        if (!HasPage(other->presence, page)) continue;
        CharacterPage &ours = set->pages[PageRank(*set, page)];
        for (size_t i = 0; i < ours.size(); ++i) ours[i] |= other->pages[at][i];
        ++at;
    }
    return true;
}
