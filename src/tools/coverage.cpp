// SPDX-License-Identifier: MIT
#include "tools/coverage.hpp"

#include "tools/arguments.hpp"
#include "tools/file_faces.hpp"
#include "tools/lines.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::vector<std::string> paths;
    std::optional<std::string> language; // none: all that are known
    bool missing = false;
    bool json = false;
};

// A language and what it is written with.
struct Language {
    std::string name;
    Ref<const ValCharacterSet> exemplars;
};

// What a face has of a language.
struct Share {
    const Language *language;
    size_t needed;
    Ref<const ValCharacterSet> missing;

    size_t Lacking() const { return ValCharacterSetGetCount(missing.Get()); }
    size_t Covered() const { return needed - Lacking(); }
    double Percent() const { return 100.0 * static_cast<double>(Covered()) / static_cast<double>(needed); }
};

Ref<const ValString> MakeText(const std::string &text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

std::vector<Language> OneLanguage(const std::string &name) {
    auto exemplars = Adopt(VLCopyExemplarCharacterSet(MakeText(name).Get()));
    if (!exemplars)
        throw CLI::ValidationError("--lang", "it is not known what characters '" + Printable(name) +
                                                 "' is written with; try a code such as ja or zh-Hant");
    return {{name, std::move(exemplars)}};
}

std::vector<Language> AllLanguages() {
    const auto names = Adopt(VLCopyExemplarLanguages());
    std::vector<Language> languages;
    for (size_t i = 0; i < ValArrayGetCount(names.Get()); ++i) {
        const auto *name = static_cast<const ValString *>(ValArrayGetValue(names.Get(), i));
        languages.push_back({Bytes(name), Adopt(VLCopyExemplarCharacterSet(name))});
    }
    return languages;
}

// The members of a small set that another one lacks.
Ref<const ValCharacterSet> Without(const ValCharacterSet *set, const ValCharacterSet *others) {
    auto rest = Adopt(ValCharacterSetCreateMutable());
    uint32_t first = UINT32_MAX, last = UINT32_MAX;
    while (ValCharacterSetNextRange(set, &first, &last)) {
        for (uint32_t character = first; character <= last; ++character) {
            const bool covered = ValCharacterSetContains(others, character);
            if (!covered && !ValCharacterSetAddRange(rest.Get(), character, character))
                throw std::bad_alloc();
        }
    }
    return rest;
}

std::vector<Share> SharesOf(const ValCharacterSet *coverage, const std::vector<Language> &languages) {
    std::vector<Share> shares;
    for (const Language &language : languages)
        shares.push_back({&language, ValCharacterSetGetCount(language.exemplars.Get()),
                          Without(language.exemplars.Get(), coverage)});
    return shares;
}

// ---- for programs -----------------------------------------------------------------------------------

Json ToJson(const Share &share) {
    return {{"language", share.language->name},
            {"characters", share.needed},
            {"covered", share.Covered()},
            {"missing", RangesOf(share.missing.Get())}};
}

Json ToJson(const ValDictionary *face, const std::vector<Share> &shares) {
    Json languages = Json::array();
    for (const Share &share : shares) languages.push_back(ToJson(share));
    return {{"path", PathOf(URLAt(face, kVLFontPropertyURL))},
            {"url", Text(ValURLGetString(URLAt(face, kVLFontPropertyURL))).value_or("")},
            {"postscriptName", Text(StringAt(face, kVLFontPropertyName)).value_or("")},
            {"languages", std::move(languages)}};
}

// ---- for people -------------------------------------------------------------------------------------

std::string Measure(const Share &share) {
    char percent[16];
    std::snprintf(percent, sizeof percent, "%.1f", share.Percent());
    return Grouped(share.Covered()) + " of " + Grouped(share.needed) + " characters (" + percent + " %)";
}

// "U+3042 あ"; the blank is one that lines are not broken at, and that marks can stand on.
std::string Show(uint32_t character) {
    char number[16];
    std::snprintf(number, sizeof number, "U+%04X", character);
    const std::string shown = UTF8(character);
    const bool is_visible = character > 0x20 && Printable(shown) == shown;
    return is_visible ? number + ("\u00A0" + shown) : number;
}

std::string Show(const ValCharacterSet *characters) {
    std::string text;
    uint32_t first = UINT32_MAX, last = UINT32_MAX;
    while (ValCharacterSetNextRange(characters, &first, &last)) {
        for (uint32_t character = first; character <= last; ++character) text += Show(character) + "  ";
    }
    return text;
}

std::string NameOf(const ValDictionary *face) {
    for (const ValString *key : {kVLFontPropertyFullName, kVLFontPropertyName})
        if (const auto *name = StringAt(face, key)) return Printable(Bytes(name));
    return "(without a name)";
}

void ShowOne(const Share &share, bool missing) {
    Lines lines(std::cout);
    lines.Add(share.language->name, Measure(share));
    if (missing) lines.Add("missing", Show(share.missing.Get()));
}

// Those that it can write, by name; then those that it nearly can, the nearest first.
void ShowAll(std::vector<Share> shares, bool missing) {
    std::string complete;
    for (const Share &share : shares)
        if (share.Lacking() == 0) complete += share.language->name + ' ';
    const auto count = std::ranges::count(shares, size_t{0}, &Share::Lacking);
    Lines lines(std::cout);
    lines.Add("writes", std::to_string(count) + " of " + std::to_string(shares.size()) + " languages" +
                            (count ? ": " : "") + complete);
    std::ranges::stable_sort(shares, std::greater<>(), &Share::Percent);
    for (const Share &share : shares)
        if (share.Lacking() != 0 && share.Percent() >= 50) ShowOne(share, missing);
}

// Shows each face in its turn, in one form or the other.
class Shower {
public:
    explicit Shower(const Options &options)
        : options_(options),
          languages_(options.language ? OneLanguage(*options.language) : AllLanguages()) {
        if (options.json) document_.emplace(std::cout, "vellum.coverage", 1);
    }

    void Show(const ValDictionary *face) {
        const auto *coverage =
            static_cast<const ValCharacterSet *>(ValDictionaryGetValue(face, kVLFontPropertyCharacterSet));
        const auto shares = SharesOf(coverage, languages_);
        complete_ = complete_ &&
                    std::ranges::all_of(shares, [](const Share &share) { return share.Lacking() == 0; });
        if (document_) return document_->Add(ToJson(face, shares));
        std::cout << NameOf(face) << ": " << Grouped(ValCharacterSetGetCount(coverage)) << " characters\n";
        if (options_.language)
            ShowOne(shares.front(), options_.missing);
        else
            ShowAll(shares, options_.missing);
    }

    void Finish(const std::vector<Refusal> &refusals) {
        if (document_) document_->Finish(tool::ToJson(refusals));
    }

    // Whether every face has all of the language that was asked for.
    bool IsComplete() const { return complete_ || !options_.language; }

private:
    const Options &options_;
    const std::vector<Language> languages_;
    std::optional<FaceDocument> document_;
    bool complete_ = true;
};

int Coverage(const Options &options) {
    const void *const keys[] = {kVLFontPropertyURL, kVLFontPropertyName, kVLFontPropertyFullName,
                                kVLFontPropertyCharacterSet};
    const auto key_set = Adopt(ValSetCreate(keys, std::size(keys)));
    Shower shower(options);
    const Outcome outcome = ForEachFace(FindFontFiles(options.paths), key_set.Get(),
                                        [&](const ValDictionary *face) { shower.Show(face); });
    shower.Finish(outcome.refusals);
    Report(outcome.refusals);
    const ExitCode code = Judge(outcome);
    return code == kDone && !shower.IsComplete() ? kNothingFound : code;
}

} // namespace

void AddCoverage(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb =
        app.add_subcommand("coverage", "Show which languages fonts can write, and what they lack.");
    verb->add_option("FONT", options->paths, "font files, or folders to look through")
        ->required()
        ->check(IsPath());
    verb->add_option("--lang", options->language, "only this language: ja, zh-Hant, sr-Latn")
        ->type_name("L");
    verb->add_flag("--missing", options->missing, "list the characters that are lacking");
    verb->add_flag("--json", options->json, "one JSON document; the characters that are lacking are in it");
    verb->footer("A font can write a language when it has every character of the language's standard set.\n"
                 "Languages of which it has less than half are not shown, but in JSON.\n\n"
                 "Exit codes: 0 every file was read, and has all of the language that --lang names;\n"
                 "1 something is lacking, some files were refused, or there were none;\n"
                 "2 wrong usage; 4 a file may not be read; 5 what was named is no font.\n\n"
                 "Example:\n"
                 "  vellum coverage --lang vi --missing Foo.ttf\n");
    verb->callback([options, &result] { result = Coverage(*options); });
}

} // namespace vellum::tool
