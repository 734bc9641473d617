// SPDX-License-Identifier: MIT
// What describes the faces of a font file to a register: computed from the file, or read from the font-info
// file that was made of it.
#pragma once

#include <vellum/values.hpp>

namespace vellum {

// The registration properties of the face that a URL names, or of the file's first when it names none. Null
// when there is no such face. A font-info file is looked for when `use_font_info` says so. Both throw
// std::bad_alloc.
Ref<const ValDictionary> CopyRegistrationInfo(const ValURL *url, bool use_font_info);

struct FontInfoFile {
    Ref<const ValString> name;
    Ref<const ValData> content; // null when the URL names no font file
};

// The font-info file of a whole font file.
FontInfoFile MakeFontInfo(const ValURL *url);

} // namespace vellum
