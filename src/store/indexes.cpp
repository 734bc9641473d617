// SPDX-License-Identifier: MIT
// The indexes of a register: made when first asked for, then kept current by every change.
#include "describe/client_font_entity.hpp"
#include "describe/font_properties.hpp"
#include "platform/font/gx_font_round.hpp"
#include "platform/process/passing_failures.hpp"
#include "store/font_name_index.hpp"
#include "store/font_path_index.hpp"
#include "store/local_glyphary_imp.hpp"

#include <new>

namespace vellum {

namespace {

std::unique_ptr<TFontIndex> MakeIndex(uint16_t id) {
    switch (id) {
    case kPostScriptNameIndex:
        return std::make_unique<TFontPostScriptNameIndex>();
    case kFullNameIndex:
        return std::make_unique<TFontFullNameIndex>();
    case kFamilyNameIndex:
        return std::make_unique<TFontFamilyNameIndex>();
    case kSubfamilyNameIndex:
        return std::make_unique<TFontSubfamilyNameIndex>();
    default:
        return std::make_unique<TFontPathIndex>();
    }
}

// Calls visit(value) for what a property's value stands for: the members of an array or a set, or
// the value itself.
template <class Visit>
void ForEachIndexKey(const void *value, Visit visit) {
    if (const auto *array = Cast<ValArray>(value)) {
        for (size_t i = 0; i < ValArrayGetCount(array); ++i) visit(ValArrayGetValue(array, i));
    } else if (const auto *set = Cast<ValSet>(value)) {
        size_t cursor = 0;
        for (const void *member; ValSetNext(set, &cursor, &member);) visit(member);
    } else if (value) {
        visit(value);
    }
}

// Names are read from the font's file, which may fail for the moment: the index is then made again when it
// is next asked for. Paths are known.
constexpr bool IsOfNames(uint16_t id) {
    return id >= kPostScriptNameIndex && id <= kSubfamilyNameIndex;
}

// A face whose path is not to be had for want of memory must not pass for one without.
Ref<const void> IndexedValue(const TFontIndex &index, const GxFont *font) {
    const GxFontRound round; // a list of names may take more than one look at the file
    const uint32_t failures = tPassingFailures;
    auto value = TClientFontEntity(Retain(font)).CopyProperty(index.GetIndexedProperty(), true);
    if (!value && failures != tPassingFailures && index.GetIndexedProperty() == kVLFontPropertyURL)
        throw std::bad_alloc();
    return value;
}

} // namespace

uint16_t TLocalGlypharyImp::GetIndexCount(uint16_t &first_id) const {
    first_id = 0;
    return kIndexCount;
}

TFontIndex *TLocalGlypharyImp::GetIndex(uint16_t id) const {
    auto &slot = indexes_[id];
    RetryPace &pace = index_paces_[id];
    if (!slot || pace.TakeTurn()) {
        const uint32_t failures = tPassingFailures;
        auto index = MakeIndex(id);
        AddAllFontsToIndex(*index);
        slot = std::move(index);
        pace.MadeAgain(IsOfNames(id) && failures != tPassingFailures);
    }
    return slot.get();
}

TFontIndex *TLocalGlypharyImp::GetIndexForProperty(const ValString *key) const {
    switch (TFontProperties::GetPropertyID(key)) {
    case PropertyID::kName:
        return GetIndex(kPostScriptNameIndex);
    case PropertyID::kFamilyName:
        return GetIndex(kFamilyNameIndex);
    case PropertyID::kFullName:
        return GetIndex(kFullNameIndex);
    case PropertyID::kSubfamilyName:
        return GetIndex(kSubfamilyNameIndex);
    case PropertyID::kURL:
        return GetIndex(kPathIndex);
    default:
        return nullptr;
    }
}

void TLocalGlypharyImp::AddAllFontsToIndex(TFontIndex &index) const {
    for (const auto &[reference, font] : enabled_.Snapshot()) AddFontToIndex(index, reference, font.Get());
}

void TLocalGlypharyImp::AddFontToIndex(TFontIndex &index, FontReference reference,
                                       const GxFont *font) const {
    if (!font) font = enabled_.Find(reference);
    if (!font) return;
    const auto value = IndexedValue(index, font);
    ForEachIndexKey(value.Get(), [&](const void *key) { index.AddFontForKey(reference, key); });
}

void TLocalGlypharyImp::RemoveFontFromIndex(TFontIndex &index, FontReference reference,
                                            const GxFont *font) const {
    if (!font) font = GetPossiblyDisabledFont(reference);
    if (!font) return;
    const auto value = IndexedValue(index, font);
    ForEachIndexKey(value.Get(), [&](const void *key) { index.RemoveFontForKey(reference, key); });
}

// The order, and an index that can't take a font because memory is exhausted, are given up: they are made
// again from the enabled fonts when they are next asked for. That is no way for the index of disabled ones.

void TLocalGlypharyImp::AddFontToIndexes(FontReference reference, const GxFont *font) const noexcept {
    for (uint16_t id = kPathIndex; id < kDisabledPathIndex; ++id) {
        const uint32_t failures = tPassingFailures;
        try {
            if (indexes_[id]) AddFontToIndex(*indexes_[id], reference, font);
        } catch (...) {
            indexes_[id].reset();
        }
        if (IsOfNames(id) && failures != tPassingFailures) index_paces_[id].Failed();
    }
    try {
        if (order_) order_->FaceAdded(reference);
    } catch (...) {
        order_.reset();
    }
}

// Where there is no memory to ask for the font's keys it is sought under all of them, which needs none.
void TLocalGlypharyImp::TakeOutOfIndex(uint16_t id, FontReference reference,
                                       const GxFont *font) const noexcept {
    if (!indexes_[id]) return;
    const uint32_t failures = tPassingFailures;
    try {
        RemoveFontFromIndex(*indexes_[id], reference, font);
    } catch (...) {
        indexes_[id]->RemoveFontForAllKeys(reference);
    }
    if (IsOfNames(id) && failures != tPassingFailures) index_paces_[id].Failed();
}

void TLocalGlypharyImp::RemoveFontFromIndexes(FontReference reference, const GxFont *font) const noexcept {
    for (uint16_t id = kPathIndex; id < kDisabledPathIndex; ++id) TakeOutOfIndex(id, reference, font);
    try {
        if (order_) order_->FaceRemoved(reference);
    } catch (...) {
        order_.reset();
    }
}

} // namespace vellum
