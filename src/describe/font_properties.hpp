// SPDX-License-Identifier: MIT
// The table of font property keys: one place that says which key has which identifier.
//
// A new key is a row here and a declaration in vellum.h; what derives its value is one case of
// TClientFontEntity::CopyProperty.
#pragma once

#include <vellum/vellum.h>

namespace vellum {

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

class TFontProperties {
public:
    // The identifier of a key, found by identity, else by equality. Unknown for any other key.
    static PropertyID GetPropertyID(const ValString *key);

    // Whether a key is one of the six names of a face, of which there may be several of each kind.
    static bool IsNameKey(const ValString *key);
};

} // namespace vellum
