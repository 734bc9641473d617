// SPDX-License-Identifier: MIT
// Font-info files, written as a test wants them, and asked for.
#pragma once

#include "describe/font_info.hpp"
#include "support/framework_resources.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vellum::test {

struct Property {
    const void *key;
    Ref<const void> value;
};

inline Ref<const ValDictionary> Dictionary(const std::vector<Property> &properties) {
    TValMutableDict dictionary;
    for (const Property &property : properties) dictionary.Set(property.key, property.value.Get());
    return dictionary.Publish();
}

// What is stored of a face: its URL, and more.
inline Ref<const ValDictionary> Face(std::string_view url, std::vector<Property> more = {}) {
    more.insert(more.begin(), {kVLFontPropertyURL, MakeURL(url)});
    return Dictionary(more);
}

template <class... Values>
Ref<const ValArray> ArrayOf(const Values &...values) {
    const std::vector<const void *> items{values.Get()...};
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

inline Bytes Flatten(const ValArray *faces) {
    const auto data = TFontInfo::FlattenFontInfo(faces);
    const uint8_t *bytes = ValDataGetBytes(data.Get());
    return Bytes(bytes, bytes + ValDataGetLength(data.Get()));
}

inline const void *PropertyOf(const Ref<const ValArray> &faces, size_t index, const ValString *key) {
    return ValDictionaryGetValue(Cast<ValDictionary>(ValArrayGetValue(faces.Get(), index)), key);
}

inline std::string URLOf(const Ref<const ValArray> &faces, size_t index = 0) {
    return TextOf(ValURLGetString(Cast<ValURL>(PropertyOf(faces, index, kVLFontPropertyURL))));
}

inline std::vector<std::string> NamesOf(const Ref<const ValArray> &faces) {
    std::vector<std::string> names;
    for (size_t i = 0; i < ValArrayGetCount(faces.Get()); ++i)
        names.push_back(TextOf(PropertyOf(faces, i, kVLFontPropertyName)));
    return names;
}

class FontInfo : public testing::Test {
protected:
    // Writes a font file and returns its path.
    std::string WriteFont(std::string_view name, std::string_view content = "12345") const {
        return folder_.Write(name, content);
    }

    void WriteInfo(std::string_view file_name, const Bytes &content) const {
        resources_.Folder().Write("FontInfo/" + std::string(file_name), content);
    }

    // Writes the font file Foo.ttf, of five bytes, and its font info.
    void Store(const Bytes &content) const {
        WriteFont("Foo.ttf");
        WriteInfo("Foo.ttf.5_0.fontinfo", content);
    }

    template <class... Values>
    void StoreFaces(const Values &...faces) const {
        Store(Flatten(ArrayOf(faces...).Get()));
    }

    std::string Path() const { return folder_.File("Foo.ttf"); }
    Ref<const ValArray> Load() const { return LoadFrom(Path()); }
    static Ref<const ValArray> LoadFrom(const std::string &path) {
        return TFontInfo::CreateFontInfoForFontURL(FileURL(path).Get());
    }

    const FrameworkResources resources_;
    const TempDir folder_;
};

} // namespace vellum::test
