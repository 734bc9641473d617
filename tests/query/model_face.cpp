// SPDX-License-Identifier: MIT
// Reading of faces and of values.
#include "query/model_face.hpp"

#include "describe/client_font_entity.hpp"
#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <algorithm>

namespace vellum::test {
namespace {

const ValString *const *const kKeys[] = {&kVLFontPropertyName,
                                         &kVLFontPropertyFamilyName,
                                         &kVLFontPropertyFullName,
                                         &kVLFontPropertySubfamilyName,
                                         &kVLFontPropertyVersionName,
                                         &kVLFontPropertyCopyrightName,
                                         &kVLFontPropertyInstanceName,
                                         &kVLFontPropertyLocalizedNames,
                                         &kVLFontPropertyTraits,
                                         &kVLFontPropertyURL,
                                         &kVLFontPropertyUUID,
                                         &kVLFontPropertyBookmark,
                                         &kVLFontPropertyCharacterSet,
                                         &kVLFontPropertyVariationAxes,
                                         &kVLFontPropertyVariations,
                                         &kVLFontPropertySupportedLanguages,
                                         &kVLFontPropertyDesignLanguages,
                                         &kVLFontPropertyEnabled,
                                         &kVLFontPropertyPriority,
                                         &kVLFontPropertyFormat,
                                         &kVLFontPropertyStringEncoding,
                                         &kVLFontPropertyIgnoreScriptAnalysis,
                                         &kVLFontPropertyFontRef,
                                         &kVLFontPropertyDirectory,
                                         &kVLFontPropertyScope,
                                         &kVLFontPropertyFlags,
                                         &kVLFontPropertyUnicodeRanges};
static_assert(std::size(kKeys) == 27);

constexpr size_t kNumbersOfNoUse[] = {8, 17, 20, 21, 26, 27};

ModelName NameOf(const void *value) {
    const auto *string = Cast<ValString>(value);
    return {TextOf(string), ModelLowercase(string), Retain(string)};
}

void ReadNames(const TClientFontEntity &entity, ModelFace &face) {
    for (size_t kind = 0; kind < kModelNameKinds; ++kind) {
        const auto all = entity.CopyProperty(*kKeys[kind], true);
        for (const void *name : Elements(Cast<ValArray>(all.Get())))
            face.names[kind].push_back(NameOf(name));
        const auto preferred = entity.CopyProperty(*kKeys[kind], false);
        if (preferred) face.preferred[kind] = NameOf(preferred.Get());
    }
}

void ReadTraits(const Ref<const void> &value, ModelFace &face) {
    const auto *traits = Cast<ValDictionary>(value.Get());
    if (!traits) return;
    const auto of = [&](const ValString *key) { return ValDictionaryGetValue(traits, key); };
    face.traits = ModelTraits{ModelBits(of(kVLFontTraitSymbolic)), ModelReal(of(kVLFontTraitWeight)),
                              ModelReal(of(kVLFontTraitWidth)), ModelReal(of(kVLFontTraitSlant))};
}

std::string TagOf(int32_t identifier) {
    std::string tag;
    for (int shift = 24; shift >= 0; shift -= 8)
        tag += static_cast<char>(static_cast<uint32_t>(identifier) >> shift & 0xFF);
    return tag;
}

void ReadAxes(const Ref<const void> &axes, const Ref<const void> &variations, ModelFace &face) {
    face.axes_object = Retain(Cast<ValArray>(axes.Get()));
    for (const void *item : Elements(face.axes_object.Get())) {
        const auto *axis = Cast<ValDictionary>(item);
        const auto identifier =
            static_cast<int32_t>(ModelBits(ValDictionaryGetValue(axis, kVLVariationAxisIdentifier)));
        face.axes.push_back(
            {TextOf(ValDictionaryGetValue(axis, kVLVariationAxisName)), TagOf(identifier), identifier});
    }
    const auto *places = Cast<ValDictionary>(variations.Get());
    if (!places) return;
    face.variations.emplace();
    size_t cursor = 0;
    for (const void *name, *value; ValDictionaryNext(places, &cursor, &name, &value);)
        face.variations->emplace(TextOf(name), ModelReal(value));
}

void ReadLanguages(const Ref<const void> &value, ModelFace &face) {
    const auto *languages = Cast<ValArray>(value.Get());
    if (!languages) return;
    face.languages.emplace();
    for (const void *language : Elements(languages)) face.languages->push_back(TextOf(language));
}

} // namespace

const ValString *ModelKey(size_t number) {
    return *kKeys[number - 1];
}

size_t ModelNumberOfKey(const ValString *key) {
    for (size_t i = 0; i < std::size(kKeys); ++i) {
        if (ValEqual(*kKeys[i], key)) return i + 1;
    }
    return 0;
}

ModelFace ReadModelFace(const Ref<const GxFont> &font) {
    const TClientFontEntity entity(font);
    const auto of = [&](const ValString *key) { return entity.CopyProperty(key, true); };
    ModelFace face;
    face.font = font;
    const auto url = of(kVLFontPropertyURL);
    face.url = Retain(Cast<ValURL>(url.Get()));
    face.url_text = TextOf(ValURLGetString(face.url.Get()));
    face.path = ModelPathOf(face.url.Get());
    ReadNames(entity, face);
    ReadTraits(of(kVLFontPropertyTraits), face);
    const auto coverage = of(kVLFontPropertyCharacterSet);
    face.coverage_object = Retain(Cast<ValCharacterSet>(coverage.Get()));
    face.coverage = ModelRanges(face.coverage_object.Get());
    ReadAxes(of(kVLFontPropertyVariationAxes), of(kVLFontPropertyVariations), face);
    ReadLanguages(of(kVLFontPropertySupportedLanguages), face);
    for (const size_t number : kNumbersOfNoUse) {
        if (auto value = of(ModelKey(number))) face.others.emplace(number, std::move(value));
    }
    return face;
}

std::vector<ModelFace> ReadModelFaces(const ValURL *file) {
    const auto fonts = GxFontCreateFontsWithURL(file);
    std::vector<ModelFace> faces;
    for (const void *font : Elements(fonts.Get()))
        faces.push_back(ReadModelFace(Retain(static_cast<const GxFont *>(font))));
    return faces;
}

std::string ModelLowercase(const ValString *string) {
    return TextOf(Adopt(ValStringCopyLowercase(string)));
}

std::vector<CodeRange> ModelRanges(const ValCharacterSet *set) {
    std::vector<CodeRange> ranges;
    uint32_t first = 0, last = UINT32_MAX;
    while (ValCharacterSetNextRange(set, &first, &last)) ranges.emplace_back(first, last);
    return ranges;
}

uint32_t ModelBits(const void *value) {
    if (const auto *boolean = Cast<ValBoolean>(value)) return ValBooleanGetValue(boolean) ? 1 : 0;
    return static_cast<uint32_t>(ValNumberGetSInt32(Cast<ValNumber>(value)));
}

double ModelReal(const void *value) {
    if (const auto *boolean = Cast<ValBoolean>(value)) return ValBooleanGetValue(boolean) ? 1 : 0;
    return ValNumberGetFloat64(Cast<ValNumber>(value));
}

std::string ModelNormalPath(const std::string &path) {
    std::vector<std::string> kept;
    for (size_t at = 0; at <= path.size();) {
        const size_t end = std::min(path.find('/', at), path.size());
        const std::string part = path.substr(at, end - at);
        if (part == ".." && !kept.empty()) kept.pop_back();
        if (!part.empty() && part != "." && part != "..") kept.push_back(part);
        at = end + 1;
    }
    std::string normal;
    for (const std::string &part : kept) normal += "/" + part;
    return normal;
}

std::optional<std::string> ModelPlainPathOf(const ValURL *url) {
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    const auto path = Adopt(ValURLCopyFileSystemPath(absolute.Get()));
    if (!path) return std::nullopt;
    return TextOf(path);
}

std::string ModelPathOf(const ValURL *url) {
    return ModelNormalPath(ModelPlainPathOf(url).value_or(""));
}

std::optional<std::string> ModelFragmentOf(const ValURL *url) {
    const auto absolute = Adopt(ValURLCopyAbsolute(url));
    const auto fragment = Adopt(ValURLCopyDecodedFragment(absolute.Get()));
    if (!fragment) return std::nullopt;
    return TextOf(fragment);
}

} // namespace vellum::test
