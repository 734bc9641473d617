// SPDX-License-Identifier: MIT
#include "tools/face_properties.hpp"

#include <charconv>
#include <iterator>

namespace vellum::tool {

namespace {

// By kVLFontFormat....
constexpr const char *kFormatNames[] = {"unrecognized", "opentype-postscript", "opentype-truetype",
                                        "truetype",     "postscript",          "bitmap"};

template <class T>
const T *As(const void *value, ValType type) {
    return ValGetType(value) == type ? static_cast<const T *>(value) : nullptr;
}

int64_t IntegerOf(const void *value) {
    return ValNumberGetSInt64(As<ValNumber>(value, kValTypeNumber));
}

// ---- one converter for each kind of value -----------------------------------------------------------

Json FromText(const void *value) {
    return ToJson(As<ValString>(value, kValTypeString));
}

Json FromTexts(const void *value) {
    return ToJson(As<ValArray>(value, kValTypeArray));
}

Json FromURL(const void *value) {
    const auto *url = As<ValURL>(value, kValTypeURL);
    return url ? ToJson(ValURLGetString(url)) : Json(nullptr);
}

Json FromInteger(const void *value) {
    return value ? Json(IntegerOf(value)) : Json(nullptr);
}

// A word of bits: its sign bit is one of them.
Json FromBits(const void *value) {
    return value ? Json(static_cast<uint32_t>(IntegerOf(value))) : Json(nullptr);
}

Json FromWords(const void *value) {
    const auto *words = As<ValArray>(value, kValTypeArray);
    if (!words) return nullptr;
    Json list = Json::array();
    for (size_t i = 0; i < ValArrayGetCount(words); ++i)
        list.push_back(FromBits(ValArrayGetValue(words, i)));
    return list;
}

Json FromFormat(const void *value) {
    if (!value) return nullptr;
    const auto format = static_cast<size_t>(IntegerOf(value));
    return kFormatNames[format < std::size(kFormatNames) ? format : 0];
}

Json FromBoolean(const void *value) {
    const auto *boolean = As<ValBoolean>(value, kValTypeBoolean);
    return boolean ? Json(ValBooleanGetValue(boolean)) : Json(nullptr);
}

Json FromUUID(const void *value) {
    const auto *uuid = As<ValUUID>(value, kValTypeUUID);
    return uuid ? ToJson(Adopt(ValUUIDCopyString(uuid)).Get()) : Json(nullptr);
}

Json FromBytes(const void *value) {
    const auto *data = As<ValData>(value, kValTypeData);
    return data ? Json(Base64({ValDataGetBytes(data), ValDataGetLength(data)})) : Json(nullptr);
}

Json FromCharacters(const void *value) {
    return ToJson(As<ValCharacterSet>(value, kValTypeCharacterSet));
}

// The shortest number that is the same single-precision one: 0.4, not 0.4000000059604645.
Json FromSingle(const ValDictionary *dictionary, const ValString *key) {
    char text[32];
    const auto [end, error] =
        std::to_chars(text, std::end(text), static_cast<float>(NumberAt(dictionary, key)));
    double shortest = 0;
    if (error == std::errc()) std::from_chars(text, end, shortest);
    return shortest;
}

Json FromTraits(const void *value) {
    const auto *traits = As<ValDictionary>(value, kValTypeDictionary);
    if (!traits) return nullptr;
    return {
        {"symbolic", FromBits(ValDictionaryGetValue(traits, kVLFontTraitSymbolic))},
        {"weight", FromSingle(traits, kVLFontTraitWeight)},
        {"width", FromSingle(traits, kVLFontTraitWidth)},
        {"slant", FromSingle(traits, kVLFontTraitSlant)},
    };
}

std::string TagText(uint32_t tag) {
    const char letters[] = {static_cast<char>(tag >> 24), static_cast<char>(tag >> 16),
                            static_cast<char>(tag >> 8), static_cast<char>(tag)};
    const auto text = Adopt(ValStringCreateWithBytes(letters, sizeof letters, kValStringEncodingLatin1));
    return Text(text.Get()).value_or("");
}

Json FromAxes(const void *value) {
    const auto *axes = As<ValArray>(value, kValTypeArray);
    Json list = Json::array();
    for (size_t i = 0; i < ValArrayGetCount(axes); ++i) {
        const auto *axis = As<ValDictionary>(ValArrayGetValue(axes, i), kValTypeDictionary);
        const auto tag = IntegerOf(ValDictionaryGetValue(axis, kVLVariationAxisIdentifier));
        list.push_back({{"tag", TagText(static_cast<uint32_t>(tag))},
                        {"name", ToJson(StringAt(axis, kVLVariationAxisName))},
                        {"minimum", NumberAt(axis, kVLVariationAxisMinValue)},
                        {"default", NumberAt(axis, kVLVariationAxisDefaultValue)},
                        {"maximum", NumberAt(axis, kVLVariationAxisMaxValue)}});
    }
    return list;
}

Json FromVariations(const void *value) {
    const auto *variations = As<ValDictionary>(value, kValTypeDictionary);
    if (!variations) return nullptr;
    Json places = Json::object();
    size_t cursor = 0;
    for (const void *axis; ValDictionaryNext(variations, &cursor, &axis, nullptr);)
        places[Text(As<ValString>(axis, kValTypeString)).value_or("")] = NumberAt(variations, axis);
    return places;
}

const char *NameOfKey(const void *key);

Json FromLocalizedNames(const void *value) {
    const auto *languages = As<ValDictionary>(value, kValTypeDictionary);
    if (!languages) return nullptr;
    Json localized = Json::object();
    size_t cursor = 0;
    for (const void *language, *names; ValDictionaryNext(languages, &cursor, &language, &names);) {
        Json &kinds = localized[Text(As<ValString>(language, kValTypeString)).value_or("")];
        size_t inner = 0;
        const auto *dictionary = As<ValDictionary>(names, kValTypeDictionary);
        for (const void *key, *name; ValDictionaryNext(dictionary, &inner, &key, &name);)
            kinds[NameOfKey(key)] = FromText(name);
    }
    return localized;
}

// ---- the table --------------------------------------------------------------------------------------

constexpr FaceProperty kProperties[] = {
    {"postscriptName", &kVLFontPropertyName, FromText},
    {"familyName", &kVLFontPropertyFamilyName, FromText},
    {"fullName", &kVLFontPropertyFullName, FromText},
    {"subfamilyName", &kVLFontPropertySubfamilyName, FromText},
    {"versionName", &kVLFontPropertyVersionName, FromText},
    {"copyrightName", &kVLFontPropertyCopyrightName, FromText},
    {"instanceName", &kVLFontPropertyInstanceName, FromText},
    {"localizedNames", &kVLFontPropertyLocalizedNames, FromLocalizedNames},
    {"traits", &kVLFontPropertyTraits, FromTraits},
    {"url", &kVLFontPropertyURL, FromURL},
    {"uuid", &kVLFontPropertyUUID, FromUUID},
    {"bookmark", &kVLFontPropertyBookmark, FromBytes},
    {"characterSet", &kVLFontPropertyCharacterSet, FromCharacters},
    {"axes", &kVLFontPropertyVariationAxes, FromAxes},
    {"variations", &kVLFontPropertyVariations, FromVariations},
    {"supportedLanguages", &kVLFontPropertySupportedLanguages, FromTexts},
    {"designLanguages", &kVLFontPropertyDesignLanguages, FromTexts},
    {"enabled", &kVLFontPropertyEnabled, FromInteger},
    {"priority", &kVLFontPropertyPriority, FromInteger},
    {"format", &kVLFontPropertyFormat, FromFormat},
    {"stringEncoding", &kVLFontPropertyStringEncoding, FromBits},
    {"ignoreScriptAnalysis", &kVLFontPropertyIgnoreScriptAnalysis, FromBoolean},
    {"fontRef", &kVLFontPropertyFontRef, FromBits},
    {"directory", &kVLFontPropertyDirectory, FromURL},
    {"scope", &kVLFontPropertyScope, FromInteger},
    {"flags", &kVLFontPropertyFlags, FromBits},
    {"unicodeRanges", &kVLFontPropertyUnicodeRanges, FromWords},
};

// The keys that stand in localized names alone.
constexpr FaceProperty kOtherNames[] = {
    {"manufacturerName", &kVLFontPropertyManufacturerName, FromText},
    {"designerName", &kVLFontPropertyDesignerName, FromText},
};

const char *NameOfKey(const void *key) {
    for (const FaceProperty &property : kProperties)
        if (ValEqual(key, *property.key)) return property.name;
    for (const FaceProperty &property : kOtherNames)
        if (ValEqual(key, *property.key)) return property.name;
    return "other";
}

} // namespace

std::span<const FaceProperty> FaceProperties() noexcept {
    return kProperties;
}

Json PropertyOf(const ValDictionary *properties, const ValString *key) {
    for (const FaceProperty &property : kProperties)
        if (ValEqual(*property.key, key)) return property.to_json(ValDictionaryGetValue(properties, key));
    return nullptr;
}

Json ToJson(const ValString *string) {
    const auto text = Text(string);
    return text ? Json(*text) : Json(nullptr);
}

Json ToJson(const ValArray *texts) {
    if (!texts) return nullptr;
    Json list = Json::array();
    for (size_t i = 0; i < ValArrayGetCount(texts); ++i)
        list.push_back(FromText(ValArrayGetValue(texts, i)));
    return list;
}

Json ToJson(const ValCharacterSet *characters) {
    if (!characters) return nullptr;
    return {{"count", ValCharacterSetGetCount(characters)}, {"ranges", RangesOf(characters)}};
}

} // namespace vellum::tool
