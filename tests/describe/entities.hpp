// SPDX-License-Identifier: MIT
// Entities over fonts built for a test, what accompanies them, and short ways of reading their answers.
#pragma once

#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "support/font_builder.hpp"
#include "support/named_font.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"

#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

// A face's metadata; "MTD_Typeface_", with which every key begins, is left out.
using MetadataEntries = std::vector<std::pair<std::string, Ref<const void>>>;

inline Ref<const ValDictionary> Metadata(const MetadataEntries &entries) {
    const auto dictionary = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
    for (const auto &[key, value] : entries)
        ValDictionarySetValue(dictionary.Get(), String("MTD_Typeface_" + key).Get(), value.Get());
    return dictionary;
}

inline Ref<const ValArray> Strings(const std::vector<std::string> &texts) {
    const auto array = Adopt(ValArrayCreateMutable(texts.size(), nullptr));
    for (const std::string &text : texts) ValArrayAppend(array.Get(), String(text).Get());
    return array;
}

// Values that are neither strings nor arrays, and so are no names.
inline std::vector<Ref<const void>> NoNames() {
    return {Ref<const void>(MakeNumber(int32_t{1})), Retain(kValBooleanTrue),
            Ref<const void>(Metadata({{"Name", String("Foo")}})),
            Ref<const void>(Adopt(ValDataCreate("Foo", 3)))};
}

// A font in memory.
inline Ref<const GxFont> FontOf(const Bytes &bytes) {
    return TGxFont(AsData(bytes).Get()).Font();
}

inline TClientFontEntity EntityOf(const FontBuilder &font, const MetadataEntries &metadata = {}) {
    return TClientFontEntity(FontOf(font.Build()), Metadata(metadata));
}

inline TClientFontEntity WithNames(const std::vector<NameRecord> &names,
                                   const MetadataEntries &metadata = {}) {
    return EntityOf(FontBuilder().Names(names), metadata);
}

// The face of a file that a fragment selects, or the first.
inline TClientFontEntity EntityAt(const Ref<const ValURL> &url, const MetadataEntries &metadata = {}) {
    return TClientFontEntity(CreateFontFromURL(url.Get()), Metadata(metadata));
}

// One of several faces, with the metadata that lies beside its file, if any does.
inline TClientFontEntity FaceOf(const Ref<const ValArray> &fonts, size_t index) {
    return TClientFontEntity(Retain(static_cast<const GxFont *>(ValArrayGetValue(fonts.Get(), index))));
}

// The strings of what should be an array.
inline std::vector<std::string> All(const Ref<const void> &names) {
    if (!names) return {"(null)"};
    if (ValGetType(names.Get()) != kValTypeArray) return {"(no array)"};
    return Texts(Retain(static_cast<const ValArray *>(names.Get())));
}

// What a dictionary has for a key, the text of a string.
inline std::string TextIn(const void *dictionary, const ValString *key) {
    return TextOf(ValDictionaryGetValue(Cast<ValDictionary>(dictionary), key));
}

inline std::vector<std::string> KeysOf(const Ref<const ValDictionary> &dictionary) {
    std::vector<std::string> keys;
    for (const auto &entry : TValDict(dictionary)) keys.push_back(TextOf(entry.key));
    return keys;
}

// Languages by their numbers. The user of these tests reads French: see french_reader.cpp.
inline constexpr uint16_t kFrench = 0x40C;
inline constexpr uint16_t kGerman = 0x407;
inline constexpr uint16_t kGreek = 0x408;
inline constexpr uint16_t kJapanese = 0x411;

} // namespace vellum::test
