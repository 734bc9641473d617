// SPDX-License-Identifier: MIT
// The indexes by name: one for each kind of name, letter case ignored.
//
// A new one is a class that says which property it indexes, and a slot in TLocalGlypharyImp.
#pragma once

#include "store/font_index.hpp"

namespace vellum {

class TFontNameIndex : public TFontIndex {
public:
    const ValCallbacks &GetIndexDictKeyCallBacks() const noexcept final {
        return kValCaseInsensitiveStringCallbacks;
    }
};

class TFontPostScriptNameIndex final : public TFontNameIndex {
public:
    const ValString *GetIndexedProperty() const override { return kVLFontPropertyName; }
};

class TFontFullNameIndex final : public TFontNameIndex {
public:
    const ValString *GetIndexedProperty() const override { return kVLFontPropertyFullName; }
};

class TFontFamilyNameIndex final : public TFontNameIndex {
public:
    const ValString *GetIndexedProperty() const override { return kVLFontPropertyFamilyName; }
};

class TFontSubfamilyNameIndex final : public TFontNameIndex {
public:
    const ValString *GetIndexedProperty() const override { return kVLFontPropertySubfamilyName; }
};

} // namespace vellum
