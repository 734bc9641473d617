// SPDX-License-Identifier: MIT
#include "query/model_matching.hpp"

#include "support/values.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_set.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vellum::test {
namespace {

constexpr double kTraitTolerance = 0.0001;
constexpr double kAxisTolerance = 0.01;

bool MatchesName(const ModelFace &face, size_t kind, const void *value) {
    const auto *name = Cast<ValString>(value);
    return name && std::ranges::any_of(face.names[kind],
                                       [&](const ModelName &own) { return own.text == TextOf(name); });
}

bool MatchesURL(const ModelFace &face, const void *value) {
    const auto *url = Cast<ValURL>(value);
    const auto requested = ModelPlainPathOf(url);
    const auto own = ModelPlainPathOf(face.url.Get());
    if (!url || !requested || !own || *requested != *own) return false;
    const auto fragment = ModelFragmentOf(url);
    return !fragment || ModelMatchesFragment(face, *fragment);
}

bool MatchesCharacters(const ModelFace &face, const void *value) {
    const auto &name = face.preferred[kModelPostScript];
    if (name && name->text == "Endstop") return false;
    const auto *set = Cast<ValCharacterSet>(value);
    uint32_t first = 0, last = UINT32_MAX;
    while (ValCharacterSetNextRange(set, &first, &last)) {
        if (!ModelCovers(face, {first, last})) return false;
    }
    return set != nullptr;
}

bool HasLanguage(const ModelFace &face, const void *language) {
    return Cast<ValString>(language) && std::ranges::count(*face.languages, TextOf(language)) != 0;
}

bool MatchesLanguages(const ModelFace &face, const void *value) {
    if (!face.languages) return false;
    if (const auto *array = Cast<ValArray>(value))
        return std::ranges::all_of(Elements(array),
                                   [&](const void *item) { return HasLanguage(face, item); });
    if (const auto *set = Cast<ValSet>(value)) {
        size_t cursor = 0;
        for (const void *member; ValSetNext(set, &cursor, &member);) {
            if (!HasLanguage(face, member)) return false;
        }
        return true;
    }
    return HasLanguage(face, value);
}

// A parameter with a name; none when the parameter asks for something else.
std::optional<bool> MatchesNameParameter(const ModelFace &face, const std::string &key,
                                         const std::string &value) {
    static constexpr const char *kParameters[] = {"postscript-name", "family-name", "full-name",
                                                  "subfamily-name"};
    const auto found = std::ranges::find(kParameters, key);
    if (found == std::end(kParameters)) return std::nullopt;
    const auto &own = face.preferred[static_cast<size_t>(found - kParameters)];
    return own && ValStringCompare(own->object.Get(), String(value).Get(), kValCompareCaseInsensitive) == 0;
}

bool MatchesAxisParameter(const ModelFace &face, const std::string &axis, const std::string &value) {
    if (!face.variations) return false;
    auto place = face.variations->find(axis);
    for (const ModelAxis &own : face.axes) {
        if (place == face.variations->end() && own.tag == axis) place = face.variations->find(own.name);
    }
    if (place == face.variations->end()) return false;
    double number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return std::fabs(place->second - number) < kAxisTolerance;
}

bool MatchesParameter(const ModelFace &face, const std::string &parameter) {
    const auto pieces = ModelPieces(parameter, '=');
    if (pieces.size() != 2) return true;
    if (const auto answer = MatchesNameParameter(face, pieces[0], pieces[1])) return *answer;
    if (!pieces[0].starts_with("var:")) return true;
    return MatchesAxisParameter(face, pieces[0].substr(4), pieces[1]);
}

// Whether the face stands on an axis where the value says; a boolean is no place.
bool StandsAt(const ModelFace &face, const std::string &axis, const void *value) {
    const auto place = face.variations->find(axis);
    return place != face.variations->end() && Cast<ValNumber>(value) && place->second == ModelReal(value);
}

// One identifier of a request for variations: some axis must have it, and each that has stand there.
bool StandsAtIdentifier(const ModelFace &face, const void *identifier, const void *value) {
    bool found = false;
    for (const ModelAxis &axis : face.axes) {
        if (axis.identifier != static_cast<int32_t>(ModelBits(identifier))) continue;
        found = true;
        if (!StandsAt(face, axis.name, value)) return false;
    }
    return found;
}

} // namespace

std::vector<std::string> ModelPieces(const std::string &text, char separator) {
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (c == separator)
            pieces.emplace_back();
        else
            pieces.back() += c;
    }
    return pieces;
}

bool ModelCovers(const ModelFace &face, CodeRange requested) {
    const auto after = std::ranges::upper_bound(face.coverage, requested.first, {}, &CodeRange::first);
    return after != face.coverage.begin() && std::prev(after)->second >= requested.second;
}

bool ModelMatchesTraits(const ModelFace &face, const ValDictionary *requested) {
    if (!face.traits) return false;
    if (!requested) return true;
    const void *value = nullptr;
    if (ValDictionaryGetValueIfPresent(requested, kVLFontTraitSymbolic, &value) &&
        (ModelBits(value) & ~face.traits->symbolic) != 0)
        return false;
    const std::pair<const ValString *, double> own[] = {{kVLFontTraitWeight, face.traits->weight},
                                                        {kVLFontTraitWidth, face.traits->width},
                                                        {kVLFontTraitSlant, face.traits->slant}};
    return std::ranges::all_of(own, [&](const auto &trait) {
        return !ValDictionaryGetValueIfPresent(requested, trait.first, &value) ||
               std::fabs(ModelReal(value) - trait.second) <= kTraitTolerance;
    });
}

bool ModelMatchesFragment(const ModelFace &face, const std::string &fragment) {
    return std::ranges::all_of(ModelPieces(fragment, ';'), [&](const std::string &parameter) {
        return MatchesParameter(face, parameter);
    });
}

bool ModelMatchesVariations(const ModelFace &face, const ValDictionary *requested) {
    if (!face.variations) return false;
    bool by_name = true, by_identifier = ValDictionaryGetCount(requested) != 0;
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(requested, &cursor, &key, &value);) {
        by_name = by_name && Cast<ValString>(key) && StandsAt(face, TextOf(key), value);
        by_identifier = by_identifier && Cast<ValNumber>(key) && StandsAtIdentifier(face, key, value);
    }
    return by_name || by_identifier;
}

bool ModelMatches(const ModelFace &face, size_t number, const void *value) {
    switch (number) {
    case 1:
    case 2:
    case 3:
    case 5:
    case 6:
        return MatchesName(face, number - 1, value);
    case 9:
        return Cast<ValDictionary>(value) && ModelMatchesTraits(face, Cast<ValDictionary>(value));
    case 10:
        return MatchesURL(face, value);
    case 13:
        return MatchesCharacters(face, value);
    case 14:
        return face.axes_object && ValEqual(face.axes_object.Get(), value);
    case 15:
        return face.variations.has_value();
    case 16:
        return MatchesLanguages(face, value);
    default:
        return false;
    }
}

} // namespace vellum::test
