// SPDX-License-Identifier: MIT
#include "tools/text.hpp"

#include <new>

namespace vellum::tool {

namespace {

// U+FFFD for each byte that is no ASCII: such names are rare, and what matters is that they show.
std::string ReplaceForeignBytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x80)
            text += byte;
        else
            text += "\uFFFD";
    }
    return text;
}

const void *ValueAt(const ValDictionary *dictionary, const void *key, ValType type) {
    const void *value = ValDictionaryGetValue(dictionary, key);
    return ValGetType(value) == type ? value : nullptr;
}

} // namespace

std::string Bytes(const ValString *string) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(string, &length);
    return bytes ? std::string(bytes, length) : std::string();
}

std::optional<std::string> Text(const ValString *string) {
    if (!string) return std::nullopt;
    size_t length = 0;
    if (const char *text = ValStringGetUTF8(string, &length)) return std::string(text, length);
    return ReplaceForeignBytes(Bytes(string));
}

Ref<const ValURL> FileURL(std::string_view path) {
    const auto text = Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size()));
    auto url = Adopt(ValURLCreateWithFileSystemPath(text.Get(), false, nullptr));
    if (!url) throw std::bad_alloc();
    return url;
}

std::string PathOf(const ValURL *url) {
    return Bytes(Adopt(ValURLCopyFileSystemPath(url)).Get());
}

const ValString *StringAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValString *>(ValueAt(dictionary, key, kValTypeString));
}

const ValURL *URLAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValURL *>(ValueAt(dictionary, key, kValTypeURL));
}

const ValArray *ArrayAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValArray *>(ValueAt(dictionary, key, kValTypeArray));
}

const ValDictionary *DictionaryAt(const ValDictionary *dictionary, const ValString *key) {
    return static_cast<const ValDictionary *>(ValueAt(dictionary, key, kValTypeDictionary));
}

double NumberAt(const ValDictionary *dictionary, const void *key) {
    return ValNumberGetFloat64(static_cast<const ValNumber *>(ValueAt(dictionary, key, kValTypeNumber)));
}

} // namespace vellum::tool
