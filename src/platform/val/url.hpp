// SPDX-License-Identifier: MIT
// How a URL lies in memory, and views of its parts for the library's other rooms.
#pragma once

#include "platform/val/object.hpp"
#include "platform/val/url_parts.hpp"

#include <vellum/values.hpp>

namespace vellum {
extern const ValKind kURLKind;
} // namespace vellum

struct ValURL : vellum::ValObject {
    ValURL(vellum::Ref<const ValString> own, vellum::Ref<const ValURL> own_base,
           vellum::Ref<const ValString> absolute_text) noexcept
        : ValObject(vellum::kURLKind), text(std::move(own)), base(std::move(own_base)),
          absolute(std::move(absolute_text)) {}

    vellum::Ref<const ValString> text;
    vellum::Ref<const ValURL> base;        // only when the text is relative
    vellum::Ref<const ValString> absolute; // the text itself when it is not
};

namespace vellum {

// The URL's absolute form; it lives as long as the URL.
inline std::string_view AbsoluteText(const ValURL &url) noexcept {
    return Text(url.absolute);
}

// Views into the absolute form.
inline URLParts Parts(const ValURL &url) noexcept {
    return SplitURL(AbsoluteText(url));
}

// Whether a text is a URL that needs no base; it cannot be made for want of memory alone.
bool IsAbsoluteURL(std::string_view text) noexcept;

// Null when the text is no URL, is relative without a base, or memory is exhausted.
Ref<const ValURL> MakeURL(Ref<const ValString> text, const ValURL *base = nullptr) noexcept;

} // namespace vellum
