// SPDX-License-Identifier: MIT
// A table from font reference to face, in order of registration.
#pragma once

#include "platform/font/gx_font.hpp"
#include "store/font_reference.hpp"
#include "values/val_dictionary.hpp"

#include <vector>

namespace vellum {

class FontTable {
public:
    FontTable() : fonts_(kValRawCallbacks, kValValueCallbacks) {}

    // The face (borrowed), or null.
    const GxFont *Find(FontReference reference) const noexcept {
        return static_cast<const GxFont *>(ValDictionaryGetValue(fonts_.Get(), AsItem(reference)));
    }

    bool IsEmpty() const noexcept { return ValDictionaryGetCount(fonts_.Get()) == 0; }
    void Add(FontReference reference, const GxFont *font) { fonts_.Set(AsItem(reference), font); }
    void Remove(FontReference reference) noexcept {
        ValDictionaryRemoveValue(fonts_.Get(), AsItem(reference));
    }

    struct Entry {
        FontReference reference;
        Ref<const GxFont> font;
    };

    // The table as it is now, for walks that change it or call out.
    std::vector<Entry> Snapshot() const {
        std::vector<Entry> entries;
        entries.reserve(ValDictionaryGetCount(fonts_.Get()));
        ForEach([&](FontReference reference, const GxFont *font) {
            entries.push_back({reference, Retain(font)});
        });
        return entries;
    }

    // Calls visit(reference, font) for each entry; the table must not change meanwhile.
    template <class Visit>
    void ForEach(Visit visit) const {
        size_t cursor = 0;
        const void *key, *value;
        while (ValDictionaryNext(fonts_.Get(), &cursor, &key, &value))
            visit(AsReference(key), static_cast<const GxFont *>(value));
    }

private:
    TValMutableDict fonts_;
};

} // namespace vellum
