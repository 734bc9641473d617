// SPDX-License-Identifier: MIT
// TClientFontEntity: the entity over a live font object; derives each property of the face.
//
// What it derives is kept with the font, so that an entity is made for a question and costs nothing.
// Every name that it answers is interned: equal names of different faces are one object.
//
// Its operations are defined by subject: names in client_font_names.cpp, names by language in
// localized_names.cpp, flags in client_font_flags.cpp, all others in client_font_entity.cpp.
#pragma once

#include "describe/face_facts.hpp"
#include "describe/font_entity.hpp"
#include "describe/metadata_keys.hpp"
#include "platform/font/gx_font.hpp"

#include <memory>

namespace vellum {

class TClientFontEntity final : public TFontEntity {
public:
    // The metadata, what accompanies the face, is looked for when it is first needed. Throws
    // std::bad_alloc when memory is exhausted, as every operation does.
    explicit TClientFontEntity(Ref<const GxFont> font);

    // With metadata (null: none) from somewhere else; nothing is kept with the font.
    TClientFontEntity(Ref<const GxFont> font, Ref<const ValDictionary> metadata);

    Ref<const ValURL> CopyURL() const override;
    Ref<const void> CopyProperty(const ValString *key, bool all) const override;
    Ref<const ValDictionary> CopyProperties(const ValSet *keys, bool all) const override;

    // Of the file as it is now; null for a font in memory.
    Ref<const ValData> CopyBookmark() const;
    Ref<const GxFont> CopyFont() const { return font_; }

    // A string, or with `all` an array of distinct strings; null when there is none. Aliases from the
    // metadata stand at the end, as they are.
    Ref<const void> CopyPostScriptName(bool all) const;
    Ref<const void> CopyFamilyName(bool all) const;
    Ref<const void> CopySubfamilyName(bool all) const;
    Ref<const void> CopyFullName(bool all) const;
    Ref<const void> CopyVersionName(bool all) const;
    Ref<const void> CopyCopyrightName(bool all) const;

    // The name of one kind (a key of kVLFontPropertyLocalizedNames' inner dictionaries) in the first of
    // the user's preferred languages that the font's names are in; with `all` an array of the names in
    // each of those languages, in their order. Null when there is none.
    Ref<const void> CopyLocalizedName(const ValString *key, bool all) const;

    // From each language that the font's names are in to a dictionary with the names of each kind. Null for
    // a font without a name table.
    Ref<const ValDictionary> CopyLocalizedNames() const;

    Ref<const ValCharacterSet> CopyCharacterSet() const;

    // The four words of OS/2's Unicode ranges, as numbers; from the coverage, not from the table.
    Ref<const ValArray> CopyUnicodeRanges() const;

    // An array with a dictionary an axis, or null for a face without axes.
    Ref<const ValArray> CopyVariationAxes() const;
    Ref<const ValDictionary> CopyVariations() const;

    Ref<const ValArray> CopySupportedLanguages() const;
    Ref<const ValArray> CopyDesignLanguages() const;
    Ref<const ValDictionary> CopyTraits() const;

    // One of kVLFontFormat..., as a number.
    Ref<const ValNumber> CopyFormat() const;
    Ref<const ValNumber> CopyStringEncoding() const;

    // True, or null: nothing else is ever said.
    Ref<const ValBoolean> CopyIgnoreScriptAnalysis() const;

    // Nothing that a font holds identifies it for good: null.
    Ref<const ValUUID> CopyUUID() const { return nullptr; }

    // The language that the face was made for, a canonical identifier; null when the metadata is silent.
    Ref<const ValString> CopyLocale() const;
    Ref<const ValNumber> CopyFlags() const;

    // TFontEntity::Compare of the first faces that two URLs name. A URL that names none is a face without
    // any property.
    static int CompareFontURLs(const ValURL *a, const ValURL *b,
                               const TFontEntityComparisonContext *context);

    // Borrowed: it lives as long as the entity, which then belongs to one thread.
    const ValURL *GetURL() const;

    // Bits of kVLFontFlag....
    uint32_t GetFlags() const;

private:
    // Null when there is none.
    Ref<const ValDictionary> Metadata() const;

    template <class Derive>
    auto Keep(Fact fact, Derive derive) const {
        return facts_->Keep(fact, derive);
    }

    Ref<const void> PreferredName(Fact fact, GxNameKey key) const;
    uint32_t DeriveFlags() const;

    Ref<const GxFont> font_;
    std::unique_ptr<FaceFacts> own_; // when they are not the font's
    FaceFacts *facts_;
    mutable Ref<const ValURL> url_; // what GetURL lent
};

} // namespace vellum
