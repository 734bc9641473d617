// SPDX-License-Identifier: MIT
#include "store/font_index.hpp"

#include <vector>

namespace vellum {

namespace {

size_t CountOf(const std::optional<TValMutableDict> &table) noexcept {
    return table ? ValDictionaryGetCount(table->Get()) : 0;
}

// The keys of a table, each held by a reference.
std::vector<Ref<const void>> KeysOf(const std::optional<TValMutableDict> &table) {
    std::vector<Ref<const void>> keys;
    if (!table) return keys;
    size_t cursor = 0;
    const void *key;
    while (ValDictionaryNext(table->Get(), &cursor, &key, nullptr)) keys.push_back(Retain(key));
    return keys;
}

} // namespace

TValMutableDict &TFontIndex::Direct() {
    if (!direct_) direct_.emplace(GetIndexDictKeyCallBacks(), kValRawCallbacks);
    return *direct_;
}

TValMutableDict &TFontIndex::Sets() {
    if (!sets_) sets_.emplace(GetIndexDictKeyCallBacks(), GetIndexDictValueCallBacks());
    return *sets_;
}

bool TFontIndex::IsEmpty() const noexcept {
    return CountOf(direct_) == 0 && CountOf(sets_) == 0;
}

FontReference TFontIndex::GetFontForKeyInternal(const void *key) const noexcept {
    return direct_ ? AsReference(ValDictionaryGetValue(direct_->Get(), key)) : 0;
}

ValSet *TFontIndex::GetFontsSetForKeyInternal(const void *key) const noexcept {
    // The index made the sets of its table, and only it changes them.
    const void *set = sets_ ? ValDictionaryGetValue(sets_->Get(), key) : nullptr;
    return static_cast<ValSet *>(const_cast<void *>(set));
}

void TFontIndex::AddFontForKey(FontReference font, const void *key) {
    if (const FontReference present = GetFontForKeyInternal(key)) {
        if (present == font) return;
        TValMutableSet both(GetFontSetCallBacks());
        both.Add(AsItem(present));
        both.Add(AsItem(font));
        Sets().Set(key, both.Get());
        ValDictionaryRemoveValue(direct_->Get(), key);
    } else if (ValSet *set = GetFontsSetForKeyInternal(key)) {
        if (!ValSetAdd(set, AsItem(font))) throw std::bad_alloc();
    } else {
        Direct().Set(key, AsItem(font));
    }
}

void TFontIndex::RemoveFontForKey(FontReference font, const void *key) {
    Remove(font, key);
}

void TFontIndex::Remove(FontReference font, const void *key) noexcept {
    if (const FontReference present = GetFontForKeyInternal(key)) {
        if (present == font) ValDictionaryRemoveValue(direct_->Get(), key);
    } else if (ValSet *set = GetFontsSetForKeyInternal(key)) {
        ValSetRemove(set, AsItem(font));
        if (ValSetGetCount(set) == 0) ValDictionaryRemoveValue(sets_->Get(), key);
    }
}

Ref<const ValSet> TFontIndex::CopyFontsForKey(const void *key) const {
    if (const FontReference present = GetFontForKeyInternal(key)) {
        TValMutableSet one(GetFontSetCallBacks());
        one.Add(AsItem(present));
        return one.Publish();
    }
    return Retain<const ValSet>(GetFontsSetForKeyInternal(key));
}

std::vector<FontReference> TFontIndex::FontsForKey(const void *key) const {
    if (const FontReference present = GetFontForKeyInternal(key)) return {present};
    return ReferencesIn(GetFontsSetForKeyInternal(key));
}

Ref<const ValArray> TFontIndex::CopyAllKeys() const {
    TValMutableArray keys(GetIndexKeyArrayCallBacks());
    for (const auto *table : {&direct_, &sets_})
        for (const auto &key : KeysOf(*table)) keys.Append(key.Get());
    return keys.Publish();
}

void TFontIndex::RemoveFontForAllKeys(FontReference font) noexcept {
    for (const auto *table : {&direct_, &sets_}) {
        size_t cursor = 0;
        for (const void *key; *table && ValDictionaryNext((*table)->Get(), &cursor, &key, nullptr);)
            Remove(font, Retain(key).Get()); // the table's own reference may go with the entry
    }
}

std::vector<FontReference> ReferencesIn(const ValSet *fonts) {
    std::vector<FontReference> references;
    size_t cursor = 0;
    for (const void *member; ValSetNext(fonts, &cursor, &member);)
        references.push_back(AsReference(member));
    return references;
}

} // namespace vellum
