// SPDX-License-Identifier: MIT
// Short ways of making values and of looking into them; URLs are made in temp_dir.hpp.
#pragma once

#include "store/font_reference.hpp"

#include <vellum/vellum.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

inline Ref<const ValString> String(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

inline Ref<const ValArray> Array(const std::vector<Ref<const ValURL>> &urls) {
    std::vector<const void *> items;
    for (const auto &url : urls) items.push_back(url.Get());
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

inline Ref<const ValSet> Keys(const std::vector<const ValString *> &keys) {
    return Adopt(ValSetCreate(reinterpret_cast<const void *const *>(keys.data()), keys.size()));
}

// The bytes of a string; "(null)" for null, so that a test says what it saw.
inline std::string TextOf(const void *value) {
    if (!value) return "(null)";
    if (ValGetType(value) != kValTypeString) return "(no string)";
    size_t length = 0;
    const char *bytes = ValStringGetBytes(static_cast<const ValString *>(value), &length);
    return std::string(bytes, length);
}

template <class T>
std::string TextOf(const Ref<T> &value) {
    return TextOf(value.Get());
}

// The strings of an array; of an array of URLs, their texts.
inline std::vector<std::string> Texts(const Ref<const ValArray> &array) {
    std::vector<std::string> texts;
    for (size_t i = 0; i < ValArrayGetCount(array.Get()); ++i) {
        const void *item = ValArrayGetValue(array.Get(), i);
        if (ValGetType(item) == kValTypeURL) item = ValURLGetString(static_cast<const ValURL *>(item));
        texts.push_back(TextOf(item));
    }
    return texts;
}

inline std::vector<FontReference> References(const Ref<const ValSet> &set) {
    std::vector<FontReference> references;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set.Get(), &cursor, &member);)
        references.push_back(AsReference(member));
    return references;
}

} // namespace vellum::test
