// SPDX-License-Identifier: MIT
#include "case_values.hpp"

#include "case_keys.hpp"
#include "support/temp_dir.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_number.hpp"
#include "values/val_set.hpp"

#include <stdexcept>

namespace vellum::test {

namespace {

[[noreturn]] void Refuse(const Json &json) {
    throw std::invalid_argument("no value: " + json.dump());
}

template <class T>
Ref<T> OrRefuse(Ref<T> value, const Json &json) {
    if (!value) Refuse(json);
    return value;
}

uint32_t ReadHex(const std::string &digits) {
    size_t end = 0;
    const unsigned long number = std::stoul(digits, &end, 16);
    if (end != digits.size() || number > UINT32_MAX) throw std::invalid_argument("no number: " + digits);
    return static_cast<uint32_t>(number);
}

// Four characters, the first in the highest byte.
int32_t ReadTag(const std::string &tag) {
    if (tag.size() != 4) throw std::invalid_argument("no tag: " + tag);
    uint32_t number = 0;
    for (const char c : tag) number = number << 8 | static_cast<uint8_t>(c);
    return static_cast<int32_t>(number);
}

Ref<const ValNumber> MakeInteger(const Json &json) {
    const auto number = json.get<int64_t>();
    if (number < INT32_MIN || number > INT32_MAX) Refuse(json); // "$int64" says so
    return MakeNumber(static_cast<int32_t>(number));
}

// "0041-005A", "1F600"
Ref<const ValCharacterSet> MakeCharacters(const Json &json) {
    const auto set = Adopt(ValCharacterSetCreateMutable());
    for (const Json &item : json) {
        const auto text = item.get<std::string>();
        const size_t dash = text.find('-');
        const uint32_t first = ReadHex(text.substr(0, dash));
        const uint32_t last = dash == std::string::npos ? first : ReadHex(text.substr(dash + 1));
        if (!ValCharacterSetAddRange(set.Get(), first, last)) Refuse(json);
    }
    return set;
}

Ref<const ValData> MakeData(const std::string &text) {
    return Adopt(ValDataCreate(text.data(), text.size()));
}

// What the keys of a dictionary are, by the key under which it stands.
CaseKeys KeysUnder(CaseKeys keys, const std::string &name) {
    if (keys != CaseKeys::kProperties) return CaseKeys::kPlain;
    if (name == "Traits") return CaseKeys::kTraits;
    if (name == "VariationAxes") return CaseKeys::kAxes;
    return CaseKeys::kPlain;
}

} // namespace

CaseValues::CaseValues(const Json &objects) {
    for (const auto &[name, json] : objects.items()) objects_[name] = Make(json);
}

Ref<const void> CaseValues::Make(const Json &json, CaseKeys keys) const {
    switch (json.type()) {
    case Json::value_t::string:
        return Text(json);
    case Json::value_t::boolean:
        return Retain(json.get<bool>() ? kValBooleanTrue : kValBooleanFalse);
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
        return MakeInteger(json);
    case Json::value_t::number_float:
        return MakeNumber(json.get<double>());
    case Json::value_t::array: {
        TValMutableArray array;
        for (const Json &item : json) array.Append(Make(item, keys).Get());
        return array.Publish();
    }
    case Json::value_t::object:
        if (json.size() == 1 && json.begin().key().starts_with('$'))
            return MakeNoted(json.begin().key(), json.begin().value());
        return MakeDictionary(json, keys);
    default:
        Refuse(json);
    }
}

Ref<const void> CaseValues::MakeNoted(const std::string &kind, const Json &json) const {
    if (kind == "$int64") return MakeNumber(json.get<int64_t>());
    if (kind == "$bits") return MakeNumber(static_cast<int32_t>(ReadHex(json.get<std::string>())));
    if (kind == "$tag") return MakeNumber(ReadTag(json.get<std::string>()));
    if (kind == "$float") return MakeNumber(json.get<float>());
    if (kind == "$double") return MakeNumber(std::stod(json.get<std::string>()));
    if (kind == "$url") return OrRefuse(MakeURL(json.get<std::string>()), json);
    if (kind == "$characters") return MakeCharacters(json);
    if (kind == "$data") return MakeData(json.get<std::string>());
    if (kind == "$set") return MakeSet(json);
    if (kind == "$pairs") return MakePairs(json);
    if (kind == "$object") return objects_.at(json.get<std::string>());
    throw std::invalid_argument("no notation: " + kind);
}

Ref<const void> CaseValues::MakeDictionary(const Json &json, CaseKeys keys) const {
    TValMutableDict dictionary;
    for (const auto &[name, item] : json.items()) {
        auto key = CaseKey(keys, name);
        if (!key) key = String(name);
        dictionary.Set(key.Get(), Make(item, KeysUnder(keys, name)).Get());
    }
    return dictionary.Publish();
}

Ref<const ValDictionary> CaseValues::MakePairs(const Json &json) const {
    TValMutableDict dictionary;
    for (const Json &pair : json) dictionary.Set(Make(pair.at(0)).Get(), Make(pair.at(1)).Get());
    return dictionary.Publish();
}

Ref<const ValSet> CaseValues::MakeSet(const Json &json) const {
    TValMutableSet set;
    for (const Json &item : json) set.Add(Make(item).Get());
    return set.Publish();
}

Ref<const ValDictionary> CaseValues::Dictionary(const Json &json, CaseKeys keys) const {
    if (json.is_null()) return nullptr;
    const auto value = Make(json, keys);
    const auto *dictionary = Cast<ValDictionary>(value.Get());
    if (!dictionary) Refuse(json);
    return Retain(dictionary);
}

Ref<const ValString> CaseValues::Text(const Json &json) const {
    if (json.is_null()) return nullptr;
    return OrRefuse(String(json.get<std::string>()), json);
}

Ref<const ValSet> CaseValues::PropertyKeys(const Json &json) const {
    TValMutableSet set;
    for (const Json &name : json)
        set.Add(OrRefuse(CaseKey(CaseKeys::kProperties, name.get<std::string>()), name).Get());
    return set.Publish();
}

} // namespace vellum::test
