// SPDX-License-Identifier: MIT
#include "tools/runs.hpp"

#include "tools/file_faces.hpp"
#include "tools/font_set.hpp"
#include "tools/request.hpp"
#include "tools/text.hpp"

#include <hb.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::string text;
    std::optional<std::string> font;
    FontChoice fonts;
    bool json = false;
};

// A part of the text, and what draws it.
struct Run {
    std::u32string characters;
    Ref<const ValURL> font;  // null: nothing
    bool is_visible = false; // there is something to draw in it
};

hb_unicode_general_category_t CategoryOf(char32_t character) {
    return hb_unicode_general_category(hb_unicode_funcs_get_default(), character);
}

// What a font need not have: line ends, and what only says how its neighbours are drawn.
bool IsInvisible(char32_t character) {
    switch (CategoryOf(character)) {
    case HB_UNICODE_GENERAL_CATEGORY_CONTROL:
    case HB_UNICODE_GENERAL_CATEGORY_FORMAT:
    case HB_UNICODE_GENERAL_CATEGORY_LINE_SEPARATOR:
    case HB_UNICODE_GENERAL_CATEGORY_PARAGRAPH_SEPARATOR:
        return true;
    default: // the selectors of variants, which are marks
        return (character >= 0xFE00 && character <= 0xFE0F) ||
               (character >= 0xE0100 && character <= 0xE01EF);
    }
}

// What goes with the text before it, if its font has it: marks stand on letters, and a blank or a full stop
// in another font than the words around it would be seen.
bool FollowsText(char32_t character) {
    const auto category = CategoryOf(character);
    return (category >= HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK &&
            category <= HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK) ||
           (category >= HB_UNICODE_GENERAL_CATEGORY_CONNECT_PUNCTUATION &&
            category <= HB_UNICODE_GENERAL_CATEGORY_OPEN_PUNCTUATION) ||
           category == HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR;
}

// Cuts a text into runs. Each character is drawn by the preferred font if it has it, else by the best font
// for it.
class RunMaker {
public:
    RunMaker(Ref<const ValURL> preferred, VLScope scope)
        : preferred_(std::move(preferred)), scope_(scope) {}

    void Add(char32_t character) {
        const bool joins =
            !runs_.empty() && (IsInvisible(character) || (FollowsText(character) && LastHas(character)));
        auto font = joins ? runs_.back().font : IsInvisible(character) ? preferred_ : FontFor(character);
        // What can't be seen belongs to whatever comes first that can.
        if (!runs_.empty() && !runs_.back().is_visible) runs_.back().font = font;
        if (runs_.empty() || !ValEqual(runs_.back().font.Get(), font.Get())) runs_.push_back({{}, font});
        runs_.back().characters += character;
        if (!IsInvisible(character)) runs_.back().is_visible = true;
    }

    const std::vector<Run> &Runs() const { return runs_; }

private:
    bool LastHas(char32_t character) {
        return runs_.back().font && Has(runs_.back().font.Get(), character);
    }

    bool Has(const ValURL *font, char32_t character) {
        const std::string name = Bytes(ValURLGetString(font));
        auto [place, is_new] = coverages_.try_emplace(name);
        if (is_new) {
            const void *const keys[] = {kVLFontPropertyCharacterSet};
            place->second =
                Adopt(VLCopyPropertiesForFont(font, Adopt(ValSetCreate(keys, 1)).Get(), scope_));
        }
        const void *coverage = ValDictionaryGetValue(place->second.Get(), kVLFontPropertyCharacterSet);
        return coverage &&
               ValCharacterSetContains(static_cast<const ValCharacterSet *>(coverage), character);
    }

    Ref<const ValURL> FontFor(char32_t character) {
        if (preferred_ && Has(preferred_.Get(), character)) return preferred_;
        return Adopt(VLCopyFontForCharacter(character, scope_, 0));
    }

    const Ref<const ValURL> preferred_;
    const VLScope scope_;
    std::vector<Run> runs_;
    std::unordered_map<std::string, Ref<const ValDictionary>> coverages_;
};

std::string CodePoint(char32_t character) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(character));
    return text;
}

std::string TextOf(const Run &run) {
    std::string text;
    for (const char32_t character : run.characters) text += UTF8(character);
    return text;
}

std::string CodePointsOf(const Run &run) {
    std::string text;
    for (const char32_t character : run.characters)
        text += (text.empty() ? "" : " ") + CodePoint(character);
    return text;
}

void ShowText(const std::vector<Run> &runs, VLScope scope) {
    for (const Run &run : runs) {
        std::cout << Printable(TextOf(run)) << '\n';
        if (run.font)
            std::cout << "    " << ToLine(Describe(run.font.Get(), scope)) << '\n';
        else if (run.is_visible)
            std::cout << "    no font draws " << CodePointsOf(run) << '\n';
        else
            std::cout << "    nothing to draw\n";
    }
}

void ShowDocument(const std::vector<Run> &runs, const FontSet &fonts) {
    Json document = {{"schema", {{"name", "vellum.text"}, {"version", 1}}},
                     {"runs", Json::array()},
                     {"refused", ToJson(fonts.Refusals())}};
    size_t first = 0;
    for (const Run &run : runs) {
        document["runs"].push_back(
            {{"text", TextOf(run)},
             {"first", first}, // counted in characters
             {"characters", run.characters.size()},
             {"font", run.font ? ToJson(Describe(run.font.Get(), fonts.Scope())) : Json()}});
        first += run.characters.size();
    }
    std::cout << Dump(document, 2) << '\n';
}

Ref<const ValURL> FindPreferred(const std::string &name, VLScope scope) {
    const auto text = Adopt(ValStringCreateWithUTF8(name.data(), name.size()));
    auto font = Adopt(VLCopyFontWithName(text.Get(), scope, kActivateNothing));
    if (!font) std::cerr << "vellum: there is no font called '" << Printable(name) << "'\n";
    return font;
}

int RunText(const Options &options) {
    const FontSet fonts(options.fonts);
    Ref<const ValURL> preferred;
    if (options.font && !(preferred = FindPreferred(*options.font, fonts.Scope()))) return fonts.NotFound();
    RunMaker maker(std::move(preferred), fonts.Scope());
    for (const char32_t character : Decode("STRING", options.text)) maker.Add(character);
    if (options.json)
        ShowDocument(maker.Runs(), fonts);
    else
        ShowText(maker.Runs(), fonts.Scope());
    for (const Run &run : maker.Runs())
        if (!run.font && run.is_visible) return fonts.NotFound();
    return fonts.Found();
}

} // namespace

void AddText(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("text", "Show which font draws which part of a text.");
    verb->add_option("STRING", options->text, "the text, in UTF-8")->required();
    verb->add_option("--font", options->font, "the font that draws whatever it has, by one of its names")
        ->type_name("NAME");
    AddFontSetOptions(*verb, options->fonts);
    verb->add_flag("--json", options->json, "one JSON document");
    verb->footer(
        "Blanks, punctuation and marks stay with the text before them where its font has them.\n\n"
        "Exit codes: 0 every character is drawn; 1 some are drawn by no font, or there is no font of\n"
        "the name; 2 wrong usage; 4 what --in names may not be read; 5 it is no font.\n\n"
        "Example:\n"
        "  vellum text 'Grüße, 世界' --font 'DejaVu Serif'\n");
    verb->callback([options, &result] { result = RunText(*options); });
}

} // namespace vellum::tool
