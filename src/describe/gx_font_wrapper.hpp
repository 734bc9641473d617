// SPDX-License-Identifier: MIT
// TGxFont: a parsed face together with the URL that names it, in a file or in memory.
#pragma once

#include "platform/font/gx_font.hpp"

#include <vellum/values.hpp>

namespace vellum {

class TGxFont {
public:
    // From a font object that somebody else found.
    explicit TGxFont(Ref<const GxFont> font) noexcept : font_(std::move(font)) {}

    // The first face in a buffer; empty when it holds none.
    explicit TGxFont(const ValData *data);

    // The first face that the URL names; a live data font when it is an in-memory URL.
    // `known_in_memory` says that it can't be anything else. Empty when there is none.
    TGxFont(const ValURL *url, bool known_in_memory);

    const Ref<const GxFont> &Font() const noexcept { return font_; }
    bool IsInMemory() const noexcept { return in_memory_; }

    // The parser's URL for a face of a file, else the in-memory form, which is
    // file://inMemory_<address>#postscript-name=<name>. Null for an empty wrapper, and for a data
    // font without a PostScript name.
    Ref<const ValURL> CopyURL();

    // True when the URL's host begins with "inMemory_".
    static bool IsInMemoryURL(const ValURL *url);

private:
    Ref<const GxFont> font_;
    bool in_memory_ = false;
};

// Every face that the URL names, a non-empty array of GxFont; or null.
Ref<const ValArray> CreateFontsFromURL(const ValURL *url);

// The first of them, or null.
Ref<const GxFont> CreateFontFromURL(const ValURL *url);

} // namespace vellum
