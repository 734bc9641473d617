// SPDX-License-Identifier: MIT
#include "tools/list.hpp"

#include "tools/face.hpp"
#include "tools/file_faces.hpp"
#include "tools/font_set.hpp"
#include "tools/request.hpp"

#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::string what = "families";
    FontChoice fonts;
    std::vector<std::string> words; // the request, in the form of ReadWishes
    std::vector<std::string> languages;
    std::vector<std::string> characters;
    std::vector<std::string> where;
    bool json = false;
    bool jsonl = false;
};

// A property and the value that it must show: --where format=opentype-truetype.
class Condition {
public:
    explicit Condition(const std::string &text)
        : question_(NameIn(text)), value_(text.substr(text.find('=') + 1)) {}

    Ref<const ValSet> Keys() const { return question_.Keys(); }

    // Whether `properties`, with those keys, show the value: as the answer itself, or as one of a list.
    bool Holds(const ValDictionary *properties) const {
        const Json answer = ReadFace(properties, question_).at(question_.Name());
        if (ToLine(answer) == value_) return true;
        if (!answer.is_array()) return false;
        return std::ranges::any_of(answer, [this](const Json &item) { return ToLine(item) == value_; });
    }

private:
    static std::string NameIn(const std::string &text) {
        const size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw CLI::ValidationError("--where", "'" + Printable(text) + "' is not of the form KEY=VALUE");
        return text.substr(0, equals);
    }

    FaceQuestion question_;
    std::string value_;
};

void KeepWhere(std::vector<Ref<const ValURL>> &fonts, const Condition &condition, VLScope scope) {
    const auto keys = condition.Keys();
    std::erase_if(fonts, [&](const Ref<const ValURL> &font) {
        const auto properties = Adopt(VLCopyPropertiesForFont(font.Get(), keys.Get(), scope));
        return !condition.Holds(properties.Get());
    });
}

// All fonts that fit the words and the conditions, best first.
std::vector<Ref<const ValURL>> FindFonts(const Options &options, VLScope scope) {
    std::vector<Condition> conditions;
    for (const std::string &text : options.where) conditions.emplace_back(text);
    const auto request = MakeRequest(ReadWishes(options.words));
    const auto urls = Adopt(VLCopyFontsWithProperties(request.Get(), scope, kActivateNothing));
    std::vector<Ref<const ValURL>> fonts;
    for (size_t i = 0; i < ValArrayGetCount(urls.Get()); ++i)
        fonts.push_back(Retain(static_cast<const ValURL *>(ValArrayGetValue(urls.Get(), i))));
    for (const Condition &condition : conditions) KeepWhere(fonts, condition, scope);
    return fonts;
}

// What is listed of a font; empty where it has no such name.
std::string ItemOf(const FoundFont &font, std::string_view what) {
    if (what == "files") return font.path;
    return what == "names" ? font.postscript_name : font.family;
}

std::vector<std::string> ListFonts(const Options &options, VLScope scope) {
    std::vector<std::string> items;
    std::unordered_set<std::string> seen;
    for (const auto &font : FindFonts(options, scope)) {
        std::string item = ItemOf(Describe(font.Get(), scope), options.what);
        if (!item.empty() && seen.insert(item).second) items.push_back(std::move(item));
    }
    return items;
}

// Everything of one kind, as the library lists it.
std::vector<std::string> ListAll(const std::string &what, VLScope scope) {
    const auto list = Adopt(what == "families" ? VLCopyAvailableFamilyNames(scope)
                            : what == "names"  ? VLCopyAvailableFontNames(scope)
                                               : VLCopyAvailableFontURLs(scope));
    std::vector<std::string> items;
    std::unordered_set<std::string> seen; // a collection's faces lie in one file
    for (size_t i = 0; i < ValArrayGetCount(list.Get()); ++i) {
        const void *value = ValArrayGetValue(list.Get(), i);
        std::string item = what == "files" ? PathOf(static_cast<const ValURL *>(value))
                                           : Text(static_cast<const ValString *>(value)).value_or("");
        if (seen.insert(item).second) items.push_back(std::move(item));
    }
    if (what == "files") std::ranges::sort(items);
    return items;
}

void Show(const std::vector<std::string> &items, const Options &options, const FontSet &fonts) {
    if (options.json) {
        const Json document = {{"schema", {{"name", "vellum.list"}, {"version", 1}}},
                               {options.what, items},
                               {"refused", ToJson(fonts.Refusals())}};
        std::cout << Dump(document, 2) << '\n';
        return;
    }
    for (const std::string &item : items)
        std::cout << (options.jsonl ? Dump(Json(item), -1) : Printable(item)) << '\n';
}

// The first word may say what is listed.
void TakeKind(Options &options) {
    if (options.words.empty()) return;
    const std::string first = options.words.front();
    if (first != "families" && first != "names" && first != "files") return;
    options.what = first;
    options.words.erase(options.words.begin());
}

void AddWords(Options &options, const std::string &subject, const std::vector<std::string> &texts) {
    for (const std::string &text : texts) options.words.push_back(subject + text);
}

int List(const Options &options) {
    const FontSet fonts(options.fonts);
    const bool is_everything = options.words.empty() && options.where.empty();
    const auto items =
        is_everything ? ListAll(options.what, fonts.Scope()) : ListFonts(options, fonts.Scope());
    Show(items, options, fonts);
    if (!items.empty()) return fonts.Found();
    if (!options.json) std::cerr << "vellum: no font fits\n";
    return fonts.NotFound();
}

} // namespace

void AddList(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("list", "List which fonts there are.");
    verb->add_option(
            "WHAT", options->words,
            "families, names (PostScript) or files; families when it is left out. Then a request:\n"
            "only fonts that fit, such as family=Inter, bold, lang=ja, char=é")
        ->type_name("[REQUEST]");
    verb->add_option("--lang", options->languages, "only fonts for a language, as lang=L")
        ->type_name("L")
        ->allow_extra_args(false);
    verb->add_option("--char", options->characters, "only fonts with a character, as char=C")
        ->type_name("C")
        ->allow_extra_args(false);
    verb->add_option("--where", options->where,
                     "only fonts of which vellum inspect --property KEY shows VALUE, or has it in a list")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    AddFontSetOptions(*verb, options->fonts);
    auto *json = verb->add_flag("--json", options->json, "one JSON document");
    verb->add_flag("--jsonl", options->jsonl, "one JSON string a line")->excludes(json);
    verb->footer(
        "Families are sorted as your language sorts them, PostScript names by their letters, files\n"
        "by their paths; with a request, the fonts that fit it best come first.\n\n" +
        RequestHelp() +
        "\nExit codes: 0 something is listed; 1 nothing fits, or some files of --in were refused;\n"
        "2 wrong usage; 4 what --in names may not be read; 5 it is no font.\n\n"
        "Example:\n"
        "  vellum list families --lang ja\n"
        "  vellum list files --where format=opentype-postscript bold\n");
    verb->callback([options, &result] {
        TakeKind(*options);
        AddWords(*options, "lang=", options->languages);
        AddWords(*options, "char=", options->characters);
        result = List(*options);
    });
}

} // namespace vellum::tool
