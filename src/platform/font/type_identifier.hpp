// SPDX-License-Identifier: MIT
// Type identifiers: what kind of file a file is, and which kinds are special cases of which.
//
// The first bytes of the file decide; its extension breaks ties.
#pragma once

#include <vellum/values.hpp>

#include <string_view>

namespace vellum {

// The type identifier of a file, from its content; null when the file cannot be read or its kind
// is not known here.
Ref<const ValString> CopyTypeIdentifier(const ValURL *url) noexcept;

// True when `type` is `tag` or a special case of it.
bool TypeConformsTo(std::string_view type, std::string_view tag) noexcept;

// True when the file's type conforms to `tag`.
bool ConformsToTypeTag(const ValURL *url, std::string_view tag) noexcept;

} // namespace vellum
