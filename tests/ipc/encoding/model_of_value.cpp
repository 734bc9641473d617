// SPDX-License-Identifier: MIT
// One small function a kind.
#include "ipc/encoding/model_of_value.hpp"

#include <vellum/values.hpp>

#include <bit>
#include <stdexcept>

namespace vellum::test {
namespace {

std::string StoredBytes(const ValString *string) {
    size_t length = 0;
    const char *bytes = ValStringGetBytes(string, &length);
    return std::string(bytes, length);
}

std::string AsString(const uint8_t *bytes, size_t length) {
    return length == 0 ? "" : std::string(reinterpret_cast<const char *>(bytes), length);
}

Model OfString(const void *value) {
    return StringModel(StoredBytes(static_cast<const ValString *>(value)));
}

Model OfNumber(const void *value) {
    const auto *number = static_cast<const ValNumber *>(value);
    const ValNumberType type = ValNumberGetNumberType(number);
    const double real = ValNumberGetFloat64(number);
    if (type == kValNumberTypeFloat64) return Float64Model(std::bit_cast<uint64_t>(real));
    if (type == kValNumberTypeFloat32) {
        return Float32Model(std::bit_cast<uint32_t>(static_cast<float>(real)));
    }
    return IntegerModel(static_cast<ModelNumberType>(type), ValNumberGetSInt64(number));
}

Model OfBoolean(const void *value) {
    return BooleanModel(ValBooleanGetValue(static_cast<const ValBoolean *>(value)));
}

Model OfData(const void *value) {
    const auto *data = static_cast<const ValData *>(value);
    return DataModel(AsString(ValDataGetBytes(data), ValDataGetLength(data)));
}

Model OfUUID(const void *value) {
    return UUIDModel(AsString(ValUUIDGetBytes(static_cast<const ValUUID *>(value)), 16));
}

Model OfURL(const void *value) {
    const auto *url = static_cast<const ValURL *>(value);
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    return URLModel(StoredBytes(ValURLGetString(url)), StoredBytes(ValURLGetString(absolute.Get())));
}

Model OfArray(const void *value) {
    const auto *array = static_cast<const ValArray *>(value);
    Model model = EmptyModel(ModelKind::kArray);
    for (size_t i = 0; i < ValArrayGetCount(array); ++i) {
        model.items.push_back(ModelOf(ValArrayGetValue(array, i)));
    }
    return model;
}

Model OfDictionary(const void *value) {
    Model model = EmptyModel(ModelKind::kDictionary);
    size_t cursor = 0;
    for (const void *key, *item;
         ValDictionaryNext(static_cast<const ValDictionary *>(value), &cursor, &key, &item);) {
        model.items.push_back(ModelOf(key));
        model.items.push_back(ModelOf(item));
    }
    return model;
}

Model OfSet(const void *value) {
    Model model = EmptyModel(ModelKind::kSet);
    size_t cursor = 0;
    for (const void *member; ValSetNext(static_cast<const ValSet *>(value), &cursor, &member);) {
        model.items.push_back(ModelOf(member));
    }
    return model;
}

Model OfCharacterSet(const void *value) {
    std::vector<CodePointRange> ranges;
    uint32_t first = 0;
    uint32_t last = UINT32_MAX;
    while (ValCharacterSetNextRange(static_cast<const ValCharacterSet *>(value), &first, &last)) {
        ranges.push_back({first, last});
    }
    return CharacterSetModel(std::move(ranges));
}

} // namespace

Model ModelOf(const void *value) {
    switch (ValGetType(value)) {
    case kValTypeNone:
        return {};
    case kValTypeString:
        return OfString(value);
    case kValTypeNumber:
        return OfNumber(value);
    case kValTypeBoolean:
        return OfBoolean(value);
    case kValTypeData:
        return OfData(value);
    case kValTypeUUID:
        return OfUUID(value);
    case kValTypeURL:
        return OfURL(value);
    case kValTypeArray:
        return OfArray(value);
    case kValTypeDictionary:
        return OfDictionary(value);
    case kValTypeSet:
        return OfSet(value);
    case kValTypeCharacterSet:
        return OfCharacterSet(value);
    default:
        throw std::logic_error("a value of a kind that has no model");
    }
}

} // namespace vellum::test
