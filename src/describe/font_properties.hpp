// SPDX-License-Identifier: MIT
// The table of font property keys: the one place that says which key has which identifier, what kind of
// value it has, how a face derives it, and by which rule a request for it is matched.
//
// A new key is a row here, and a declaration in vellum.h.
#pragma once

#include <vellum/values.hpp>
#include <vellum/vellum.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace vellum {

class TClientFontEntity;

// Identifiers of property keys; the numbers are the keys' places in the table, from 1.
enum class PropertyID : uint32_t {
    kUnknown = 0,
    kName = 1,
    kFamilyName = 2,
    kFullName = 3,
    kSubfamilyName = 4,
    kVersionName = 5,
    kCopyrightName = 6,
    kInstanceName = 7,
    kLocalizedNames = 8,
    kTraits = 9,
    kURL = 10,
    kUUID = 11,
    kBookmark = 12,
    kCharacterSet = 13,
    kVariationAxes = 14,
    kVariations = 15,
    kSupportedLanguages = 16,
    kDesignLanguages = 17,
    kEnabled = 18,
    kPriority = 19,
    kFormat = 20,
    kStringEncoding = 21,
    kIgnoreScriptAnalysis = 22,
    kFontRef = 23,
    kDirectory = 24,
    kScope = 25,
    kFlags = 26,
    kUnicodeRanges = 27,
};

constexpr size_t kPropertyCount = 27;

// How a requested value is matched with a face's own; query/ carries it out. A face without a value for the
// key matches nothing.
enum class MatchRule : uint8_t {
    kNever,        // whatever is requested
    kAlways,       // whatever is requested
    kName,         // one of the face's names is the requested one, to the letter
    kTraits,       // the requested traits are among the face's
    kURL,          // the same file, and the face that the fragment selects
    kCharacterSet, // the face covers the requested characters
    kEqual,        // the values are equal
    kLanguages,    // the face supports the requested languages
};

// A set of kinds of values.
using KindSet = uint32_t;

constexpr KindSet KindBit(ValType type) noexcept {
    return KindSet{1} << type;
}

struct PropertyRow {
    const ValString *const *key; // what an exported constant holds is known only at run time
    PropertyID id;
    MatchRule match;
    KindSet kinds; // of which the value may be
    KindSet items; // of which the items in it may be, where it is a container

    // Null for what a register says of a font and not the font of itself, and for what nobody says.
    Ref<const void> (*derive)(const TClientFontEntity &face, bool all);
};

class TFontProperties {
public:
    // All properties, in the order of their identifiers.
    static std::span<const PropertyRow, kPropertyCount> Rows() noexcept;

    // The row of a key, found by identity, else by equality; null for any other key.
    static const PropertyRow *Find(const ValString *key) noexcept;

    // The identifier of a key; unknown for any other key.
    static PropertyID GetPropertyID(const ValString *key) noexcept {
        const PropertyRow *row = Find(key);
        return row ? row->id : PropertyID::kUnknown;
    }

    // Whether a key is one of the six names of a face, of which there may be several of each kind.
    static bool IsNameKey(const ValString *key) noexcept {
        const PropertyID id = GetPropertyID(key);
        return id >= PropertyID::kName && id <= PropertyID::kCopyrightName;
    }
};

} // namespace vellum
