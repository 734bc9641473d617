// SPDX-License-Identifier: MIT
// The index by path: a face is found under its file's path and under every folder above it.
#pragma once

#include "store/font_index.hpp"

#include <string>
#include <string_view>

namespace vellum {

class TFontPathIndex final : public TFontIndex {
public:
    // Keys are URLs here; anything else is passed over.
    void AddFontForKey(FontReference font, const void *key) override;
    void RemoveFontForKey(FontReference font, const void *key) override;
    Ref<const ValSet> CopyFontsForKey(const void *key) const override;
    std::vector<FontReference> FontsForKey(const void *key) const override;
    const ValString *GetIndexedProperty() const override { return kVLFontPropertyURL; }
};

// The path of a file URL, null for any other. Throws std::bad_alloc: that memory is exhausted must not look
// as if a URL had none.
Ref<const ValString> CopyPath(const ValURL *url);

// The text under which a URL's file is known: its absolute path with ".", "..", doubled and
// trailing slashes taken out of the text. Links are not resolved, so that it works for files that
// are gone. For a font in memory it is the URL's host, which is what names the font. Empty for a
// URL that has neither.
std::string CopyNormalizedPath(const ValURL *url);

// The same for a path; a relative one stays relative.
std::string NormalizePath(std::string_view path);

} // namespace vellum
