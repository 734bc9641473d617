// SPDX-License-Identifier: MIT
// The "OS/2" table: weight, width, class and pitch as the font's maker declares them, and which
// blocks of Unicode and code pages it is made for.
#pragma once

#include "describe/table_bytes.hpp"

#include <array>
#include <optional>

namespace vellum {

// What an absent table says is 0, false or nothing; so does each field beyond the end of a short one.
class OS2Table {
public:
    // 128 bits: bit n is bit n % 32 of word n / 32, as in ulUnicodeRange1 to 4.
    using TUnicodeRanges = std::array<uint32_t, 4>;

    // ulCodePageRange1 and 2, numbered alike.
    using TCodePageRanges = std::array<uint32_t, 2>;

    explicit OS2Table(Ref<const ValData> table) noexcept : table_(std::move(table)) {}

    // Whether all fields of version 0 are there: 78 bytes. Pitch and class are not believed without,
    // even where their own bytes are there.
    bool IsComplete() const noexcept { return table_.Length() >= kVersion0Length; }

    uint16_t GetVersion() const noexcept { return table_.U16(0); }
    uint16_t GetWeightClass() const noexcept { return table_.U16(4); }
    uint16_t GetWidthClass() const noexcept { return table_.U16(6); }
    uint16_t GetSelection() const noexcept { return table_.U16(62); }

    // The class in the high byte, the subclass in the low one; negative for classes from 128 on.
    int32_t GetFamilyClass() const noexcept { return IsComplete() ? table_.S16(30) : 0; }

    // Only the PANOSE digit "proportion" counts, and only as Latin text faces use it (9: monospaced).
    bool IsFixedPitch() const noexcept { return IsComplete() && table_.U8(35) == kMonospaced; }

    // One of the ten PANOSE digits, from 0 (family kind) to 9; 0, which is "any", for other numbers.
    uint8_t GetPanoseDigit(size_t digit) const noexcept {
        return digit < kPanoseDigits ? table_.U8(32 + digit) : uint8_t{0};
    }

    // What the table declares, be it true of the font's characters or not.
    TUnicodeRanges GetUnicodeRanges() const noexcept {
        return {table_.U32(42), table_.U32(46), table_.U32(50), table_.U32(54)};
    }

    // Nothing unless both words are there. The version is not asked: tables of version 0 may be
    // longer than they should, and what their bytes mean then is the caller's to judge.
    std::optional<TCodePageRanges> GetCodePageRanges() const noexcept {
        if (table_.Length() < kVersion1Length) return std::nullopt;
        return TCodePageRanges{table_.U32(78), table_.U32(82)};
    }

    // The languages that stand for bits which are set (os2_languages.hpp), interned; code pages count from
    // version 1 on. Null for none, and when the table is not complete. Takes no lock but the string
    // pool's. Throws std::bad_alloc when memory is exhausted.
    Ref<const ValSet> CopySupportedLanguages() const;

    // Adds to `ranges` the bits of the blocks that `set` has members in; for null it does nothing.
    //
    // The threshold is no least coverage, although it reads like one: one member is enough under
    // any. It is compared with the coverage of blocks without members alone, so that positive ones
    // change nothing, and a negative one sets every bit. This is deliberate and must stay: the bits
    // of a face are kept and compared outside of this process, and they have never depended on how
    // much of a block is covered. Callers want 0, which is also the fastest.
    static void GetUnicodeRangesFromCharacterSet(const ValCharacterSet *set, TUnicodeRanges &ranges,
                                                 double threshold) noexcept;

private:
    static constexpr size_t kVersion0Length = 78;
    static constexpr size_t kVersion1Length = 86;
    static constexpr size_t kPanoseDigits = 10;
    static constexpr uint8_t kMonospaced = 9;

    TableBytes table_;
};

} // namespace vellum
