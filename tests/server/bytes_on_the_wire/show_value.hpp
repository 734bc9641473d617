// SPDX-License-Identifier: MIT
// What a program got, written for the test that ran it: values as JSON arrays, a kind and what is in it.
// Texts and bytes are hexadecimal, so that nothing is to be escaped; numbers come with their type, reals as
// C writes them.
#pragma once

#include <vellum/values.hpp>

#include <cstdio>
#include <string>

namespace vellum::test {

std::string Shown(const void *value);

inline std::string Hexadecimal(const void *bytes, size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char *>(bytes)[i]);
        text += digits;
    }
    return text;
}

inline std::string Item(const std::string &kind, const std::string &content) {
    return "[\"" + kind + "\"," + content + "]";
}

inline std::string Quoted(const void *bytes, size_t length) {
    return '"' + Hexadecimal(bytes, length) + '"';
}

inline std::string ShownText(const ValString *text) {
    size_t length = 0;
    const char *bytes = ValStringGetUTF8(text, &length);
    return Quoted(bytes, length);
}

inline std::string ShownNumber(const ValNumber *number) {
    const ValNumberType type = ValNumberGetNumberType(number);
    char digits[64];
    if (type == kValNumberTypeFloat32 || type == kValNumberTypeFloat64)
        std::snprintf(digits, sizeof digits, "\"%a\"", ValNumberGetFloat64(number));
    else
        std::snprintf(digits, sizeof digits, "\"%lld\"",
                      static_cast<long long>(ValNumberGetSInt64(number)));
    return std::to_string(type) + "," + digits;
}

inline std::string ShownItems(const ValArray *array) {
    std::string items;
    for (size_t i = 0; i < ValArrayGetCount(array); ++i)
        items += (i ? "," : "") + Shown(ValArrayGetValue(array, i));
    return "[" + items + "]";
}

inline std::string ShownMembers(const ValSet *set) {
    std::string items;
    size_t cursor = 0;
    for (const void *member; ValSetNext(set, &cursor, &member);)
        items += (items.empty() ? "" : ",") + Shown(member);
    return "[" + items + "]";
}

inline std::string ShownPairs(const ValDictionary *dictionary) {
    std::string pairs;
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(dictionary, &cursor, &key, &value);)
        pairs += (pairs.empty() ? "[" : ",[") + Shown(key) + "," + Shown(value) + "]";
    return "[" + pairs + "]";
}

inline std::string ShownData(const ValData *data) {
    return Quoted(ValDataGetBytes(data), ValDataGetLength(data));
}

inline std::string Shown(const void *value) {
    switch (ValGetType(value)) {
    case kValTypeString:
        return Item("string", ShownText(static_cast<const ValString *>(value)));
    case kValTypeNumber:
        return Item("number", ShownNumber(static_cast<const ValNumber *>(value)));
    case kValTypeBoolean:
        return Item("boolean",
                    ValBooleanGetValue(static_cast<const ValBoolean *>(value)) ? "true" : "false");
    case kValTypeData:
        return Item("data", ShownData(static_cast<const ValData *>(value)));
    case kValTypeUUID:
        return Item("uuid", Quoted(ValUUIDGetBytes(static_cast<const ValUUID *>(value)), 16));
    case kValTypeURL: {
        const auto absolute = Adopt(ValURLCopyAbsolute(static_cast<const ValURL *>(value)));
        return Item("url", ShownText(ValURLGetString(absolute.Get())));
    }
    case kValTypeArray:
        return Item("array", ShownItems(static_cast<const ValArray *>(value)));
    case kValTypeDictionary:
        return Item("dictionary", ShownPairs(static_cast<const ValDictionary *>(value)));
    case kValTypeSet:
        return Item("set", ShownMembers(static_cast<const ValSet *>(value)));
    case kValTypeCharacterSet: {
        const auto bitmap = Adopt(ValCharacterSetCopyBitmap(static_cast<const ValCharacterSet *>(value)));
        return Item("characters", ShownData(bitmap.Get()));
    }
    default:
        return "null";
    }
}

} // namespace vellum::test
