// SPDX-License-Identifier: MIT
// TFontMetadata: what the builders of the system wrote down about one face of a font file, in a
// property list in the folder FontMetadata of the framework's resources. It goes before what would be
// computed from the font.
#pragma once

#include "values/val_dictionary.hpp"

#include <cstdint>

namespace vellum {

// The dictionary of a face, keyed "MTD_Typeface_...", or none. The constructor and the static function
// throw std::bad_alloc when memory is exhausted; the rest never throws.
class TFontMetadata {
public:
    static constexpr uint32_t kNoStringEncoding = 0xFFFFFFFF;

    TFontMetadata() noexcept = default;

    // Of the face that a font URL names; nothing is verified.
    explicit TFontMetadata(const ValURL *url) : metadata_(CreateMetadataForFontURL(url, false)) {}

    // The dictionary of a face that somebody else found.
    explicit TFontMetadata(Ref<const ValDictionary> metadata) noexcept : metadata_(std::move(metadata)) {}

    // The dictionary of the face that a font URL names: of the one with the fragment's PostScript name,
    // else of the first. Null when there is none, a file is malformed or missing, and for a font in
    // memory.
    //
    // An entry for the file is one with its name; with `verify`, one with its path and its sizes.
    static Ref<const ValDictionary> CreateMetadataForFontURL(const ValURL *url, bool verify);

    explicit operator bool() const noexcept { return static_cast<bool>(metadata_); }
    const ValDictionary *Get() const noexcept { return metadata_.Get(); }

    // A value (borrowed); null without metadata or without that key. The typed one is null as well for
    // a value of another kind.
    const void *operator[](const ValString *key) const noexcept { return metadata_[key]; }
    template <class T>
    const T *Get(const ValString *key) const noexcept {
        return metadata_.Get<T>(key);
    }

    // The string encoding of the face's primary script; kNoStringEncoding when the metadata does not say
    // which that is, or names one that is not known.
    uint32_t GetStringEncoding() const noexcept;

private:
    TValDict metadata_;
};

} // namespace vellum
