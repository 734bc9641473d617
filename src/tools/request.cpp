// SPDX-License-Identifier: MIT
#include "tools/request.hpp"

#include "tools/text.hpp"

#include <hb.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string_view>

namespace vellum::tool {

namespace {

Ref<const ValString> MakeText(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

[[noreturn]] void Refuse(const std::string &term, const std::string &why) {
    throw CLI::ValidationError("REQUEST", "'" + Printable(term) + "': " + why);
}

// ---- values -----------------------------------------------------------------------------------------

struct NamedNumber {
    std::string_view name;
    double value;
};

// What the library derives from the classes that fonts state: a font of class 700 has the weight 0.4.
constexpr NamedNumber kWeights[] = {
    {"thin", -0.8},     {"extralight", -0.5}, {"light", -0.4},    {"regular", 0.0}, {"medium", 0.23},
    {"semibold", 0.25}, {"bold", 0.4},        {"extrabold", 0.5}, {"black", 0.62},
};
constexpr NamedNumber kWidths[] = {
    {"ultracondensed", -0.7}, {"extracondensed", -0.5}, {"condensed", -0.2},
    {"semicondensed", -0.1},  {"normal", 0.0},          {"semiexpanded", 0.1},
    {"expanded", 0.4},        {"extraexpanded", 0.6},   {"ultraexpanded", 0.8},
};

std::optional<double> Named(std::string_view name, std::span<const NamedNumber> numbers) {
    for (const NamedNumber &number : numbers)
        if (number.name == name) return number.value;
    return std::nullopt;
}

std::string NamesOf(std::span<const NamedNumber> numbers) {
    std::string names;
    for (const NamedNumber &number : numbers)
        names += (names.empty() ? "" : ", ") + std::string(number.name);
    return names;
}

Ref<const void> ReadNumber(const std::string &term, const std::string &text,
                           std::span<const NamedNumber> names) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_number =
        error == std::errc() && end == text.data() + text.size() && std::isfinite(number);
    const auto named = Named(text, names);
    if (!named && !(is_number && std::abs(number) <= 1))
        Refuse(term,
               "a number from -1 to 1 is wanted" + (names.empty() ? "" : ", or one of: " + NamesOf(names)));
    return Adopt(ValNumberCreateFloat64(named.value_or(number)));
}

Ref<const void> ReadWeight(const std::string &term, const std::string &text) {
    return ReadNumber(term, text, kWeights);
}
Ref<const void> ReadWidth(const std::string &term, const std::string &text) {
    return ReadNumber(term, text, kWidths);
}
Ref<const void> ReadSlant(const std::string &term, const std::string &text) {
    return ReadNumber(term, text, {});
}
Ref<const void> ReadText(const std::string &, const std::string &text) {
    return MakeText(text);
}
Ref<const void> ReadFile(const std::string &, const std::string &path) {
    return FileURL(path);
}
Ref<const void> ReadOneCharacter(const std::string &, const std::string &text) {
    const uint32_t character = ReadCharacter("REQUEST", text);
    return Adopt(ValCharacterSetCreateWithRange(character, character));
}
Ref<const void> ReadCharacters(const std::string &, const std::string &text) {
    return CharactersOf(text);
}

// ---- the words --------------------------------------------------------------------------------------

// What stands before the "=".
struct Subject {
    std::string_view name;
    std::string_view help;
    const ValString *const *key;
    const ValString *const *trait; // null: the property itself
    Ref<const void> (*read)(const std::string &term, const std::string &text);
};

constexpr Subject kSubjects[] = {
    {"name", "PostScript name; else a family, full or style name", &kVLFontPropertyName, nullptr, ReadText},
    {"family", "family name", &kVLFontPropertyFamilyName, nullptr, ReadText},
    {"full", "full name", &kVLFontPropertyFullName, nullptr, ReadText},
    {"style", "style (subfamily) name", &kVLFontPropertySubfamilyName, nullptr, ReadText},
    {"weight", "-1 to 1, or thin, light, regular, medium, bold, black, ...", &kVLFontPropertyTraits,
     &kVLFontTraitWeight, ReadWeight},
    {"width", "-1 to 1, or condensed, normal, expanded, ...", &kVLFontPropertyTraits, &kVLFontTraitWidth,
     ReadWidth},
    {"slant", "-1 to 1", &kVLFontPropertyTraits, &kVLFontTraitSlant, ReadSlant},
    {"char", "has this character: é, or U+00E9", &kVLFontPropertyCharacterSet, nullptr, ReadOneCharacter},
    {"text", "has every character of a text", &kVLFontPropertyCharacterSet, nullptr, ReadCharacters},
    {"lang", "supports a language: ja, zh-Hant", &kVLFontPropertySupportedLanguages, nullptr, ReadText},
    {"version", "version name, to the letter", &kVLFontPropertyVersionName, nullptr, ReadText},
    {"copyright", "copyright notice, to the letter", &kVLFontPropertyCopyrightName, nullptr, ReadText},
    {"file", "lies in this file, or below this folder", &kVLFontPropertyURL, nullptr, ReadFile},
};

// Words that stand alone.
struct Style {
    std::string_view name;
    int32_t bit;
};
constexpr Style kStyles[] = {
    {"italic", kVLFontTraitItalic},       {"bold", kVLFontTraitBold},
    {"expanded", kVLFontTraitExpanded},   {"condensed", kVLFontTraitCondensed},
    {"monospace", kVLFontTraitMonospace},
};

Wish ReadWish(const std::string &word) {
    for (const Style &style : kStyles)
        if (style.name == word)
            return {word, kVLFontPropertyTraits, kVLFontTraitSymbolic,
                    Adopt(ValNumberCreateSInt32(style.bit))};
    const size_t equals = word.find('=');
    if (equals == std::string::npos) return {word, kVLFontPropertyName, nullptr, MakeText(word)};
    const std::string name = word.substr(0, equals), text = word.substr(equals + 1);
    for (const Subject &subject : kSubjects) {
        if (subject.name != name) continue;
        if (text.empty()) Refuse(word, "there is nothing after the '='");
        return {word, *subject.key, subject.trait ? *subject.trait : nullptr, subject.read(word, text)};
    }
    Refuse(word,
           "there is no '" + Printable(name) + "' to ask for; vellum match --help lists what there is");
}

// ---- the dictionary ---------------------------------------------------------------------------------

void Set(ValDictionary *dictionary, const void *key, const void *value) {
    if (!value || !ValDictionarySetValue(dictionary, key, value)) throw std::bad_alloc();
}

void SetTrait(ValDictionary *traits, const Wish &wish) {
    if (wish.trait != kVLFontTraitSymbolic) return Set(traits, wish.trait, wish.value.Get());
    const auto bits = static_cast<int32_t>(NumberAt(traits, wish.trait)) |
                      ValNumberGetSInt32(static_cast<const ValNumber *>(wish.value.Get()));
    Set(traits, wish.trait, Adopt(ValNumberCreateSInt32(bits)).Get());
}

void AddLanguage(ValDictionary *request, const Wish &wish) {
    auto languages = Adopt(ValArrayCreateMutable(0, nullptr));
    ValArrayAppendArray(languages.Get(), ArrayAt(request, wish.key));
    if (!ValArrayAppend(languages.Get(), wish.value.Get())) throw std::bad_alloc();
    Set(request, wish.key, languages.Get());
}

void AddCharacters(ValDictionary *request, const Wish &wish) {
    auto characters = Adopt(ValCharacterSetCreateMutable());
    const void *former = ValDictionaryGetValue(request, wish.key);
    for (const void *set : {former, wish.value.Get()})
        if (set && !ValCharacterSetUnion(characters.Get(), static_cast<const ValCharacterSet *>(set)))
            throw std::bad_alloc();
    Set(request, wish.key, characters.Get());
}

} // namespace

std::vector<Wish> ReadWishes(const std::vector<std::string> &words) {
    std::vector<Wish> wishes;
    for (const std::string &word : words) {
        wishes.push_back(ReadWish(word));
        if (!wishes.back().value) Refuse(word, "this is no Unicode text");
    }
    return wishes;
}

Ref<const ValDictionary> MakeRequest(const std::vector<Wish> &wishes) {
    auto request = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
    auto traits = Adopt(ValDictionaryCreateMutable(0, nullptr, nullptr));
    for (const Wish &wish : wishes) {
        if (wish.trait)
            SetTrait(traits.Get(), wish);
        else if (wish.key == kVLFontPropertySupportedLanguages)
            AddLanguage(request.Get(), wish);
        else if (wish.key == kVLFontPropertyCharacterSet)
            AddCharacters(request.Get(), wish);
        else
            Set(request.Get(), wish.key, wish.value.Get());
    }
    if (ValDictionaryGetCount(traits.Get()) > 0) Set(request.Get(), kVLFontPropertyTraits, traits.Get());
    return request;
}

std::string RequestHelp() {
    std::string help = "A request is words, all of which the font must fit:\n"
                       "  NAME             as name=NAME\n";
    for (const Subject &subject : kSubjects) {
        std::string line = "  " + std::string(subject.name) + "=...";
        line.resize(std::max<size_t>(line.size() + 1, 19), ' ');
        help += line + std::string(subject.help) + '\n';
    }
    help += "  ";
    for (const Style &style : kStyles)
        help += std::string(style.name) + (&style == &kStyles[4] ? "\n" : ", ");
    return help;
}

std::u32string Decode(const std::string &argument, const std::string &text) {
    if (!MakeText(text)) throw CLI::ValidationError(argument, "this is no UTF-8 text");
    const std::unique_ptr<hb_buffer_t, decltype(&hb_buffer_destroy)> buffer(hb_buffer_create(),
                                                                            hb_buffer_destroy);
    hb_buffer_add_utf8(buffer.get(), text.data(), static_cast<int>(text.size()), 0, -1);
    if (!hb_buffer_allocation_successful(buffer.get())) throw std::bad_alloc();
    unsigned count = 0;
    const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
    std::u32string characters;
    for (const hb_glyph_info_t &info : std::span(infos, count)) characters += info.codepoint;
    return characters;
}

Ref<const ValCharacterSet> CharactersOf(const std::string &text) {
    auto set = Adopt(ValCharacterSetCreateMutable());
    for (const char32_t character : Decode("REQUEST", text))
        if (!ValCharacterSetAddRange(set.Get(), character, character)) throw std::bad_alloc();
    return set;
}

uint32_t ReadCharacter(const std::string &argument, const std::string &text) {
    if (const auto characters = Decode(argument, text); characters.size() == 1) return characters.front();
    uint32_t number = 0;
    const bool is_marked = text.starts_with("U+") || text.starts_with("u+");
    const char *end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(is_marked ? text.data() + 2 : end, end, number, 16);
    const bool is_scalar = number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
    if (!is_marked || error != std::errc() || stopped != end || !is_scalar)
        throw CLI::ValidationError(
            argument, "'" + Printable(text) + "' is no character; one is written as itself, or as U+00E9");
    return number;
}

} // namespace vellum::tool
