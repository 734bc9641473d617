// SPDX-License-Identifier: MIT
// TFontInfo: the properties of all faces of a font file, computed beforehand and kept in the folder
// FontInfo of the framework's resources, in the flattened form.
#pragma once

#include <vellum/values.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vellum {

// More than the faces of any font file have. Nothing larger is read, and so nothing larger is written.
inline constexpr size_t kMaximumFontInfoSize = size_t{1} << 26; // 64 MiB

// The name of a font file's font info: it tells of the sizes of both forks, so that a font file that has
// changed finds none. A font file Foo.otf of 0x1A2B bytes without a second fork has
// Foo.otf.1A2B_0.fontinfo.
std::string FontInfoFileName(std::string_view font_name, uint64_t data_size, uint64_t fork_size);

class TFontInfo {
public:
    // An array with a new dictionary of properties for each face of the font file, in the order in which
    // they are stored. URL and bookmark are those of the file where it lies now, and the flags have those
    // of its volume. What is stored is not believed: an element is left out that is no dictionary, has no
    // URL or has flags that are no number; so is a property whose value is of another kind than the
    // property's. Null when there is no font info for the file as it is.
    static Ref<const ValArray> CreateFontInfoForFontURL(const ValURL *url);

    // The content of a font-info file: the flattened form of an array of property dictionaries. Null for
    // null, for what cannot be flattened and for more than kMaximumFontInfoSize.
    static Ref<const ValData> FlattenFontInfo(const ValArray *faces);
};

} // namespace vellum
