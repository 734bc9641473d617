// SPDX-License-Identifier: MIT
// Coverage as HarfBuzz reads it, after a look at what that reading would cost: each group of a
// character map can claim all of Unicode, so that a small file can ask for hours.
#include "platform/font/coverage.hpp"

#include "platform/font/harfbuzz.hpp"
#include "platform/font/limits.hpp"
#include "platform/val/character_set.hpp"

#include <algorithm>
#include <set>

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

// Segment arrays of 16-bit numbers: ends at 14, starts behind them and two bytes of padding.
bool IsSegmentMapCheap(TBytes subtable, TBudget &budget) noexcept {
    const size_t segments = ReadU16(subtable, 6) / 2u;
    for (size_t i = 0; i < segments; ++i) {
        const uint32_t last = ReadU16(subtable, 14 + 2 * i);
        const uint32_t first = ReadU16(subtable, 16 + 2 * (segments + i));
        if (!budget.Take(first, last)) return false;
    }
    return true;
}

// Groups of twelve bytes from 16 on: first, last, glyph.
bool IsGroupMapCheap(TBytes subtable, TBudget &budget) noexcept {
    const TBytes groups = Slice(subtable, 16, subtable.size());
    const size_t count = std::min<size_t>(ReadU32(subtable, 12), groups.size() / 12);
    for (size_t i = 0; i < count; ++i) {
        const uint32_t last = std::min<uint32_t>(ReadU32(groups, 12 * i + 4), 0x10FFFF);
        if (!budget.Take(ReadU32(groups, 12 * i), last)) return false;
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

} // namespace

Ref<const ValCharacterSet> ReadCoverage(TBytes cmap, TBytes os2, unsigned int glyphs) {
    const TSetHandle set(hb_set_create());
    if (IsCheap(cmap)) {
        const TTableFunction tables = [cmap, os2](GxTag tag) {
            return tag == kCmapTag ? cmap : tag == kOs2Tag ? os2 : TBytes();
        };
        const TFaceHandle face = MakeFace(tables);
        hb_face_set_glyph_count(face.get(), GlyphsToAssume(cmap, glyphs));
        hb_face_collect_unicodes(face.get(), set.get());
    }
    return ShareCharacterSet(MakeCharacterSet([&set](uint32_t *first, uint32_t *last) {
        return hb_set_next_range(set.get(), first, last) != 0;
    }));
}

} // namespace vellum
