// SPDX-License-Identifier: MIT
#include "describe/client_font_entity.hpp"

#include "describe/font_format.hpp"
#include "describe/font_metadata.hpp"
#include "describe/font_properties.hpp"
#include "describe/font_traits.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "describe/locale_manager.hpp"
#include "describe/tables/cmap_table.hpp"
#include "describe/tables/os2_table.hpp"
#include "platform/font/gx_font_round.hpp"
#include "values/val_array.hpp"
#include "values/val_bookmark.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"

#include <algorithm>
#include <vector>

namespace vellum {

namespace {

constexpr size_t kUnicodeRangeWords = 4;

// An array in the metadata, provided that all of its items are of one kind.
Ref<const ValArray> CopyArray(const Ref<const ValDictionary> &metadata, const ValString &key,
                              ValType items) {
    const auto *array = metadata::Find<ValArray>(metadata.Get(), key);
    const auto fits = [items](const void *item) { return ValGetType(item) == items; };
    return std::ranges::all_of(Elements(array), fits) ? Retain(array) : nullptr;
}

// All records of the table, without the subtables behind them: those may take megabytes.
uint32_t StringEncodingOfCmap(const GxFont *font) {
    constexpr size_t kHeader = 4, kRecord = 8, kUsualRecords = 16;
    constexpr size_t kLimits[] = {kHeader + kUsualRecords * kRecord, kHeader + UINT16_MAX * kRecord};
    uint32_t encoding = kValStringEncodingUnicode;
    for (const size_t limit : kLimits) {
        auto table = GxFontCopyTable(font, MakeTag("cmap"), limit);
        const TableBytes bytes(table);
        encoding = cmapTable(std::move(table)).GetStringEncoding();
        if (kHeader + bytes.U16(2) * kRecord <= limit) break;
    }
    return encoding;
}

} // namespace

TClientFontEntity::TClientFontEntity(Ref<const GxFont> font)
    : font_(std::move(font)), facts_(FaceFacts::Of(font_.Get())) {
    if (facts_) return;
    own_ = std::make_unique<FaceFacts>();
    facts_ = own_.get();
}

TClientFontEntity::TClientFontEntity(Ref<const GxFont> font, Ref<const ValDictionary> metadata)
    : font_(std::move(font)), own_(std::make_unique<FaceFacts>()), facts_(own_.get()) {
    facts_->Keep(Fact::kMetadata, [&] { return std::move(metadata); });
}

Ref<const ValDictionary> TClientFontEntity::Metadata() const {
    return Keep(Fact::kMetadata,
                [this] { return TFontMetadata::CreateMetadataForFontURL(CopyURL().Get(), false); });
}

Ref<const void> TClientFontEntity::CopyProperty(const ValString *key, bool all) const {
    const PropertyRow *row = TFontProperties::Find(key);
    return row && row->derive ? row->derive(*this, all) : nullptr;
}

Ref<const ValDictionary> TClientFontEntity::CopyProperties(const ValSet *keys, bool all) const {
    const GxFontRound round;
    return TFontEntity::CopyProperties(keys, all);
}

Ref<const ValURL> TClientFontEntity::CopyURL() const {
    return Keep(Fact::kURL, [this] { return TGxFont(font_).CopyURL(); });
}

const ValURL *TClientFontEntity::GetURL() const {
    if (!url_) url_ = CopyURL();
    return url_.Get();
}

Ref<const ValData> TClientFontEntity::CopyBookmark() const {
    const auto url = CopyURL();
    if (!url || TGxFont::IsInMemoryURL(url.Get())) return nullptr;
    return TValBookmark(url.Get()).Ref();
}

Ref<const ValCharacterSet> TClientFontEntity::CopyCharacterSet() const {
    return GxFontCopyCharacterSet(font_.Get());
}

Ref<const ValArray> TClientFontEntity::CopyUnicodeRanges() const {
    const auto stated = CopyArray(Metadata(), metadata::kUnicodeRanges, kValTypeNumber);
    if (ValArrayGetCount(stated.Get()) == kUnicodeRangeWords) return stated;
    return Keep(Fact::kUnicodeRanges, [this] {
        OS2Table::TUnicodeRanges ranges{};
        OS2Table::GetUnicodeRangesFromCharacterSet(CopyCharacterSet().Get(), ranges, 0.0);
        TValMutableArray words;
        for (const uint32_t word : ranges) words.Append(MakeNumber(static_cast<int32_t>(word)).Get());
        return words.Publish();
    });
}

Ref<const ValArray> TClientFontEntity::CopyVariationAxes() const {
    return Keep(Fact::kVariationAxes, [this]() -> Ref<const ValArray> {
        TValMutableArray axes;
        for (const GxAxis &axis : GxFontGetVariationAxes(font_.Get())) {
            TValMutableDict entry;
            entry.Set(kVLVariationAxisName, axis.name.Get());
            entry.Set(kVLVariationAxisIdentifier, MakeNumber(static_cast<int32_t>(axis.tag)).Get());
            entry.Set(kVLVariationAxisDefaultValue, MakeNumber(axis.default_value).Get());
            entry.Set(kVLVariationAxisMaxValue, MakeNumber(axis.maximum).Get());
            entry.Set(kVLVariationAxisMinValue, MakeNumber(axis.minimum).Get());
            axes.Append(entry.Publish().Get());
        }
        return axes.IsEmpty() ? nullptr : axes.Publish();
    });
}

Ref<const ValDictionary> TClientFontEntity::CopyVariations() const {
    return GxFontCopyVariations(font_.Get());
}

// The languages of the coverage stand first, those that only the table claims behind them.
Ref<const ValArray> TClientFontEntity::CopySupportedLanguages() const {
    if (auto stated = CopyArray(Metadata(), metadata::kSupportedLanguages, kValTypeString)) return stated;
    return Keep(Fact::kSupportedLanguages, [this]() -> Ref<const ValArray> {
        constexpr size_t kMuchMoreThanFields = 128;
        const auto claimed = OS2Table(GxFontCopyTable(font_.Get(), MakeTag("OS/2"), kMuchMoreThanFields))
                                 .CopySupportedLanguages();
        const auto coverage = CopyCharacterSet();
        const auto covered =
            TLocaleManager().CopyLanguagesFromCharacterSet(coverage.Get(), nullptr, nullptr);
        const auto known = Elements(covered.Get());
        std::vector<const void *> languages(known.begin(), known.end());
        for (const void *language : TValSet(claimed)) { // identifiers are interned
            if (std::ranges::count(known, language) == 0) languages.push_back(language);
        }
        if (languages.empty()) return nullptr;
        return OrBadAlloc(Adopt(ValArrayCreate(languages.data(), languages.size()))); // of just that size
    });
}

Ref<const ValArray> TClientFontEntity::CopyDesignLanguages() const {
    return CopyArray(Metadata(), metadata::kPrimaryScriptLanguages, kValTypeString);
}

Ref<const ValDictionary> TClientFontEntity::CopyTraits() const {
    return Keep(Fact::kTraits,
                [this] { return TFontTraits(font_.Get(), Metadata().Get()).CreateTraitsDictionary(); });
}

Ref<const ValNumber> TClientFontEntity::CopyFormat() const {
    return Keep(Fact::kFormat,
                [this] { return MakeNumber(static_cast<int32_t>(DetermineFormat(font_.Get()))); });
}

Ref<const ValNumber> TClientFontEntity::CopyStringEncoding() const {
    return Keep(Fact::kStringEncoding, [this] {
        uint32_t encoding = TFontMetadata(Metadata()).GetStringEncoding();
        if (encoding == TFontMetadata::kNoStringEncoding) encoding = StringEncodingOfCmap(font_.Get());
        return MakeNumber(static_cast<int32_t>(encoding));
    });
}

Ref<const ValBoolean> TClientFontEntity::CopyIgnoreScriptAnalysis() const {
    if (!metadata::IsTrue(Metadata().Get(), metadata::kIgnoreScriptAnalysis)) return nullptr;
    return Retain(kValBooleanTrue);
}

} // namespace vellum
