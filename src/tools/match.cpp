// SPDX-License-Identifier: MIT
#include "tools/match.hpp"

#include "tools/explain.hpp"
#include "tools/file_faces.hpp"
#include "tools/text.hpp"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::vector<std::string> words;
    FontChoice fonts;
    std::optional<std::string> why_not;
    bool all = false;
    bool explain = false;
    bool substitute = false;
    bool json = false;
};

// What was asked, and what came of it.
struct Match {
    std::vector<Wish> wishes; // those that the fonts fit
    TracedAnswer answer;
    std::vector<std::string> given_up; // the words that a substitute does not fit

    bool IsFound() const { return ValArrayGetCount(answer.fonts.Get()) > 0; }
};

Match Find(std::vector<Wish> wishes, VLScope scope) {
    const auto request = MakeRequest(wishes);
    return {std::move(wishes), FindTraced(request.Get(), scope), {}};
}

// What is given up first: how a font looks, then what it is called, then what it can write.
int Importance(const Wish &wish) {
    if (wish.trait || wish.key == kVLFontPropertySubfamilyName) return 0;
    if (wish.key == kVLFontPropertySupportedLanguages) return 2;
    return wish.key == kVLFontPropertyCharacterSet ? 3 : 1;
}

// The font for a request of which as little as possible is given up; where nothing is left of it, the best
// one for Latin letters.
Match FindSubstitute(const std::vector<Wish> &wishes, VLScope scope) {
    std::vector<Wish> kept = wishes;
    std::vector<std::string> given_up;
    while (!kept.empty()) {
        const auto least = std::ranges::min_element(kept, {}, Importance);
        given_up.push_back(least->words);
        kept.erase(least);
        if (kept.empty())
            kept.push_back(
                {"", kVLFontPropertyCharacterSet, nullptr, CharactersOf("abcdefghijklmnopqrstuvwxyz")});
        Match match = Find(kept, scope);
        match.given_up = given_up;
        if (match.IsFound() || kept.front().words.empty()) return match;
    }
    return {};
}

std::string Joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) text += (text.empty() ? "" : " ") + Printable(word);
    return text;
}

// ---- why not ----------------------------------------------------------------------------------------

// The faces that a name or a path stands for.
Ref<const ValArray> FindNamed(const std::string &name, VLScope scope) {
    std::error_code ignored;
    const bool is_path = name.find('/') != std::string::npos || std::filesystem::exists(name, ignored);
    const std::string word =
        is_path ? "file=" + std::filesystem::absolute(name).lexically_normal().string() : "name=" + name;
    return Adopt(VLCopyFontsWithProperties(MakeRequest(ReadWishes({word})).Get(), scope, kActivateNothing));
}

Json WhyNotEach(const Options &options, const Match &match, VLScope scope) {
    const auto fonts = FindNamed(*options.why_not, scope);
    Json reasons = Json::array();
    for (size_t i = 0; i < ValArrayGetCount(fonts.Get()); ++i) {
        const auto *font = static_cast<const ValURL *>(ValArrayGetValue(fonts.Get(), i));
        Json reason = ToJson(Describe(font, scope));
        reason["name"] = NameOf(Describe(font, scope));
        reason["whyNot"] = WhyNot(font, match.wishes, match.answer, scope);
        reasons.push_back(std::move(reason));
    }
    return reasons;
}

// ---- showing ----------------------------------------------------------------------------------------

void ShowText(const Options &options, const Match &match, const std::vector<FoundFont> &fonts,
              VLScope scope) {
    if (!match.IsFound()) std::cerr << "vellum: no font fits " << Joined(options.words) << '\n';
    for (const FoundFont &font : fonts)
        std::cout << (match.given_up.empty() ? "" : "substitute: ") << ToLine(font) << '\n';
    if (match.IsFound() && !match.given_up.empty())
        std::cout << "  it does not fit: " << Joined(match.given_up) << '\n';
    if (options.explain)
        for (const std::string &line : Explain(match.answer, scope)) std::cout << line << '\n';
    if (!options.why_not) return;
    const Json reasons = WhyNotEach(options, match, scope);
    if (reasons.empty()) std::cout << Printable(*options.why_not) << ": there is no such font here\n";
    for (const Json &reason : reasons)
        std::cout << reason.at("name").get<std::string>() << ": " << reason.at("whyNot").get<std::string>()
                  << '\n';
}

void ShowDocument(const Options &options, const Match &match, const std::vector<FoundFont> &found,
                  const FontSet &fonts) {
    Json document = {{"schema", {{"name", "vellum.match"}, {"version", 1}}},
                     {"request", options.words},
                     {"substitute", match.IsFound() && !match.given_up.empty()},
                     {"givenUp", match.given_up},
                     {"fonts", Json::array()},
                     {"refused", ToJson(fonts.Refusals())}};
    for (const FoundFont &font : found) document["fonts"].push_back(ToJson(font));
    if (options.explain) document["explanation"] = Explain(match.answer, fonts.Scope());
    if (options.why_not) document["whyNot"] = WhyNotEach(options, match, fonts.Scope());
    std::cout << Dump(document, 2) << '\n';
}

int RunMatch(const Options &options) {
    const auto wishes = ReadWishes(options.words);
    if (options.why_not && options.why_not->empty())
        throw CLI::ValidationError("--why-not", "a font's name or path is wanted");
    const FontSet fonts(options.fonts);
    Match match = Find(wishes, fonts.Scope());
    if (!match.IsFound() && options.substitute) match = FindSubstitute(wishes, fonts.Scope());
    std::vector<FoundFont> found = DescribeAll(match.answer.fonts.Get(), fonts.Scope());
    if (!options.all && found.size() > 1) found.erase(found.begin() + 1, found.end());
    if (options.json)
        ShowDocument(options, match, found, fonts);
    else
        ShowText(options, match, found, fonts.Scope());
    return match.IsFound() ? fonts.Found() : fonts.NotFound();
}

} // namespace

void AddMatch(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("match", "Find the font that is best for a request.");
    verb->add_option("REQUEST", options->words, "what the font must be: family=Inter, bold, lang=ja")
        ->required();
    verb->add_flag("--all", options->all, "every font that fits, best first");
    verb->add_flag("--explain", options->explain, "tell how the answer came about");
    verb->add_option("--why-not", options->why_not,
                     "tell why another font, a name or a path, is not the answer")
        ->type_name("FONT");
    verb->add_flag(
        "--substitute", options->substitute,
        "when nothing fits, the font that fits as much of the request as can be, marked as such");
    AddFontSetOptions(*verb, options->fonts);
    verb->add_flag("--json", options->json, "one JSON document");
    verb->footer(
        RequestHelp() +
        "\nA font that does not fit is never shown in the place of one that does, unless --substitute\n"
        "asks for it.\n\n"
        "Exit codes: 0 a font is shown; 1 no font fits, or some files of --in were refused; 2 wrong usage; "
        "4 what --in names may not be read;\n"
        "5 it is no font.\n\n"
        "Example:\n"
        "  vellum match family='DejaVu Sans' bold --explain\n"
        "  vellum match lang=ja weight=light --all --in ~/fonts\n"
        "  vellum match char=U+1F600 --why-not 'DejaVu Sans'\n");
    verb->callback([options, &result] { result = RunMatch(*options); });
}

} // namespace vellum::tool
