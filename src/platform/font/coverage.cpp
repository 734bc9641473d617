// SPDX-License-Identifier: MIT
// Coverage as HarfBuzz reads it, after a look at what that reading would cost: each group of a
// character map can claim all of Unicode, so that a small file can ask for hours.
#include "platform/font/coverage.hpp"

#include "platform/font/harfbuzz.hpp"
#include "platform/font/limits.hpp"
#include "platform/val/character_set.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <set>
#include <span>

namespace vellum {
namespace {

constexpr GxTag kCmapTag = MakeTag("cmap");
constexpr GxTag kOs2Tag = MakeTag("OS/2");

// What is left of the allowance for one character map.
struct TBudget {
    uint64_t code_points = 0; // of one subtable
    size_t groups = limits::kCmapGroups;

    // False when the allowance is used up.
    bool Take(uint64_t first, uint64_t last) noexcept {
        if (groups == 0) return false;
        --groups;
        if (last >= first) code_points += last - first + 1;
        return code_points <= limits::kCmapCodePoints;
    }
};

// Segment arrays of 16-bit numbers: ends at 14, starts behind them and two bytes of padding. Segments whose
// start is missing count from 0 on.
bool IsSegmentMapCheap(TBytes subtable, TBudget &budget) noexcept {
    const size_t segments = ReadU16(subtable, 6) / 2u;
    const TBytes ends = Slice(subtable, 14, 2 * segments);
    const TBytes starts = Slice(subtable, 16 + 2 * segments, 2 * segments);
    for (size_t i = 0; i < ends.size() / 2; ++i) {
        if (!budget.Take(ReadU16(starts, 2 * i), ReadU16(ends, 2 * i))) return false;
    }
    return true;
}

// Groups of twelve bytes from 16 on: first, last, glyph.
bool IsGroupMapCheap(TBytes subtable, TBudget &budget) noexcept {
    const TBytes groups = Slice(subtable, 16, subtable.size());
    const size_t count = std::min<size_t>(ReadU32(subtable, 12), groups.size() / 12);
    for (size_t i = 0; i < count; ++i) {
        const TBytes group = groups.subspan(12 * i, 12);
        const uint32_t last = std::min<uint32_t>(ReadU32(group, 4), 0x10FFFF);
        if (!budget.Take(ReadU32(group, 0), last)) return false;
    }
    return true;
}

// Other formats spend at least a byte on each code point.
bool IsSubtableCheap(TBytes subtable, TBudget &budget) noexcept {
    budget.code_points = 0;
    switch (ReadU16(subtable, 0)) {
    case 4:
        return IsSegmentMapCheap(subtable, budget);
    case 12:
    case 13:
        return IsGroupMapCheap(subtable, budget);
    default:
        return true;
    }
}

// HarfBuzz 6 cuts the groups of format 13, whose code points share one glyph, to the face's number of
// glyphs as if they had a glyph each. A number beyond all code points keeps it from that.
unsigned int GlyphsToAssume(TBytes cmap, unsigned int glyphs) noexcept {
    constexpr unsigned int kMoreThanCodePoints = 0x120000;
    for (size_t i = 0; i < ReadU16(cmap, 2); ++i) {
        if (ReadU16(cmap, ReadU32(cmap, 4 + 8 * i + 4)) == 13) return kMoreThanCodePoints;
    }
    return glyphs;
}

// Looks at every subtable, since which one is read is HarfBuzz's choice.
bool IsCheap(TBytes cmap) {
    const size_t records = ReadU16(cmap, 2);
    if (records > limits::kCmapRecords) return false;
    TBudget budget;
    std::set<uint32_t> seen;
    for (size_t i = 0; i < records; ++i) {
        const uint32_t offset = ReadU32(cmap, 4 + 8 * i + 4);
        if (!seen.insert(offset).second) continue;
        if (!IsSubtableCheap(Slice(cmap, offset, cmap.size()), budget)) return false;
    }
    return true;
}

// Fonts cover long ranges whole: a stretch of members that are all neighbours is added as one.
void AddMembers(TPageCollector &pages, std::span<const hb_codepoint_t> members) {
    constexpr size_t kStretch = 64;
    while (!members.empty()) {
        const auto stretch = members.first(std::min(kStretch, members.size()));
        if (stretch.back() - stretch.front() == stretch.size() - 1) {
            pages.AddRange(stretch.front(), stretch.back());
        } else {
            for (const hb_codepoint_t member : stretch) pages.AddRange(member, member);
        }
        members = members.subspan(stretch.size());
    }
}

// HarfBuzz hands out many members at a time much faster than ranges.
Ref<const ValCharacterSet> CopyMembers(const hb_set_t *set) {
    TPageCollector pages;
    std::array<hb_codepoint_t, 1024> members;
    hb_codepoint_t last = HB_SET_VALUE_INVALID;
    while (const size_t count = hb_set_next_many(set, last, members.data(), members.size())) {
        AddMembers(pages, std::span(members).first(count));
        last = members[count - 1];
    }
    return pages.MakeSet();
}

} // namespace

Ref<const ValCharacterSet> ReadCoverage(TBytes cmap, TBytes os2, unsigned int glyphs) {
    if (!sHarfBuzz.Open()) throw std::bad_alloc();
    const TSetHandle set(hb_set_create());
    if (IsCheap(cmap)) {
        const TTableFunction tables = [cmap, os2](GxTag tag) {
            return tag == kCmapTag ? cmap : tag == kOs2Tag ? os2 : TBytes();
        };
        const TFaceHandle face = MakeFace(tables);
        hb_face_set_glyph_count(face.get(), GlyphsToAssume(cmap, glyphs));
        hb_face_collect_unicodes(face.get(), set.get());
        if (face.get() == hb_face_get_empty() || !hb_set_allocation_successful(set.get()))
            throw std::bad_alloc();
    }
    return ShareCharacterSet(CopyMembers(set.get()));
}

} // namespace vellum
