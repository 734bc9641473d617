// SPDX-License-Identifier: MIT
#include "tools/activate.hpp"

#include "tools/arguments.hpp"
#include "tools/change_results.hpp"
#include "tools/document_names.hpp"
#include "tools/exit_code.hpp"
#include "tools/index_verb.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"
#include "tools/wanted_font.hpp"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::vector<std::string> names;
    std::string document;
    std::string scope = "user";
    bool yes = false;
    bool dry_run = false;
    bool json = false;
};

// What was found, and what came of the files that were not active yet.
struct Activation {
    std::vector<WantedFont> fonts;
    std::vector<std::string> files; // those to be activated, each once
    std::vector<Changed> changed;

    bool LacksFonts() const {
        return std::ranges::count(fonts, WantedFont::State::kMissing, &WantedFont::state) != 0;
    }
};

Activation Find(const std::vector<std::string> &names) {
    Activation activation;
    for (const std::string &name : names) {
        WantedFont font = FindWantedFont(name);
        if (font.state == WantedFont::State::kFound)
            for (const std::string &path : font.files)
                if (std::ranges::count(activation.files, path) == 0) activation.files.push_back(path);
        activation.fonts.push_back(std::move(font));
    }
    return activation;
}

// ---- showing ----

void Show(std::ostream &out, const WantedFont &font) {
    out << Printable(font.name);
    switch (font.state) {
    case WantedFont::State::kMissing:
        out << "  is nowhere to be found\n";
        return;
    case WantedFont::State::kActive:
        out << "  is there already: " << Printable(font.files.front()) << '\n';
        return;
    case WantedFont::State::kFound:
        out << (font.is_offered ? "  is offered by a program:\n" : "  is found:\n");
    }
    for (const std::string &path : font.files)
        out << "  " << Printable(path) << (IsDownloaded(path) ? "  (downloaded)" : "") << '\n';
}

void ShowDocument(const Options &options, const Activation &activation) {
    Json fonts = Json::array(), items = Json::array();
    for (const WantedFont &font : activation.fonts) fonts.push_back(ToJson(font));
    for (const Changed &file : activation.changed) items.push_back(ToJson(file));
    const Json document = {{"schema", {{"name", "vellum.activate"}, {"version", 1}}},
                           {"scope", options.scope},
                           {"dryRun", options.dry_run},
                           {"fonts", fonts},
                           {"items", items}};
    std::cout << Dump(document, 2) << '\n';
}

void Show(const Changed &file) {
    if (file.problem)
        std::cerr << "vellum: " << Printable(file.path) << ": " << file.problem->reason << '\n';
    else
        std::cout << "activated  " << ToLine(file) << '\n';
}

// ---- asking ----

const char *WordsFor(const std::string &scope) {
    return scope == "user" ? "for good" : scope == "session" ? "for this session" : "for this run";
}

// Whether whoever sits at the terminal wants it. Silence, and anything but a yes, is no.
bool Confirm(const Options &options, size_t files) {
    std::cerr << "Activate " << Counted(files, "file", "files") << ' ' << WordsFor(options.scope)
              << "? [y/N] ";
    std::string answer;
    if (!std::getline(std::cin, answer)) std::cerr << '\n';
    return answer == "y" || answer == "Y" || answer == "yes";
}

// Why the files are not activated, as an exit code; nothing when they may be.
std::optional<int> Objection(const Options &options, size_t files) {
    if (ScopeOf(options.scope) != kVLScopeProcess && !ServerRuns()) {
        ReportNoServer("--dry-run shows what would be activated");
        return kNoServer;
    }
    if (options.yes) return std::nullopt;
    if (!::isatty(STDIN_FILENO) || !::isatty(STDERR_FILENO)) {
        std::cerr << "vellum: nobody is there to be asked; --yes activates without\n";
        return kRefused;
    }
    if (Confirm(options, files)) return std::nullopt;
    std::cerr << "vellum: nothing was activated\n";
    return kRefused;
}

// ---- doing ----

std::vector<Changed> Register(const Options &options, const std::vector<std::string> &files) {
    ChangeOptions change;
    change.scope = options.scope;
    const FileContents contents(files);
    const Changer changer(Action::kRegister, change);
    std::vector<Changed> changed;
    for (const std::string &path : files) changed.push_back(changer.Change(path, contents));
    return changed;
}

int Judge(const Activation &activation) {
    const bool has_problem = std::ranges::any_of(
        activation.changed, [](const Changed &file) { return file.problem.has_value(); });
    return has_problem || activation.LacksFonts() ? kNothingFound : kDone;
}

// Where no index is kept, a font that is missing may well be somewhere.
void ReportMissing(const Activation &activation) {
    if (activation.LacksFonts() && !Adopt(VLCopyFontIndexStatus(0, UINT32_MAX))) ReportNoIndex();
}

int Activate(const Options &options, const std::vector<std::string> &names) {
    Activation activation = Find(names);
    if (!options.json)
        for (const WantedFont &font : activation.fonts) Show(std::cout, font);
    ReportMissing(activation);
    std::optional<int> objection;
    if (!activation.files.empty() && !options.dry_run) {
        std::cout.flush();
        objection = Objection(options, activation.files.size());
        if (!objection) activation.changed = Register(options, activation.files);
    }
    if (options.json)
        ShowDocument(options, activation);
    else
        for (const Changed &file : activation.changed) Show(file);
    return objection.value_or(Judge(activation));
}

int Run(const Options &options) {
    if (options.names.empty() == options.document.empty()) {
        std::cerr << "vellum: either names of fonts are wanted, or --document and a file that names them; "
                     "'vellum activate --help' has examples\n";
        return kUsage;
    }
    if (options.document.empty()) return Activate(options, options.names);
    try {
        const auto names = NamesInDocument(options.document);
        if (names.empty()) std::cerr << "vellum: " << Printable(options.document) << " names no font\n";
        return names.empty() ? kNothingFound : Activate(options, names);
    } catch (const UnreadableDocument &problem) {
        std::cerr << "vellum: " << Printable(options.document) << ": " << problem.what() << '\n';
        return problem.is_permission ? kRefused : kBadFont;
    }
}

// Text, and not empty.
CLI::Validator IsName() {
    return CLI::Validator(
        [](std::string &text) -> std::string {
            const bool is_text =
                static_cast<bool>(Adopt(ValStringCreateWithUTF8(text.data(), text.size())));
            return text.empty() || !is_text ? "a font's name is text in UTF-8, and not empty" : "";
        },
        "");
}

} // namespace

void AddActivate(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb =
        app.add_subcommand("activate", "Find missing fonts by their names, and make them known.");
    verb->add_option("NAME", options->names, "PostScript, full or family names, as they are spelled")
        ->type_name("NAME...")
        ->check(IsName());
    verb->add_option(
            "--document", options->document,
            "every font that a document names: OpenDocument, Office Open XML, SVG, HTML, a style sheet, "
            "or a text with a name a line")
        ->type_name("FILE")
        ->check(IsPath());
    AddScopeOption(*verb, options->scope);
    verb->add_flag("--yes", options->yes, "activate without asking");
    verb->add_flag("--dry-run", options->dry_run,
                   "show what would be activated, and from where, and do nothing");
    verb->add_flag("--json", options->json, "one JSON document");
    verb->footer("Fonts are looked for at programs that provide fonts ('vellum provider list'), then among "
                 "the files in "
                 "your folders\n('vellum index status'). What is there already is left as it is.\n\n"
                 "Exit codes: 0 all fonts are there; 1 some are missing, or could not be activated; 2 "
                 "wrong usage; 3 a "
                 "font\nserver is needed and none runs; 4 you said no, or nobody could be asked; 5 the "
                 "document can't "
                 "be understood.\n\n"
                 "Example:\n  vellum activate 'Source Serif Pro'\n  vellum activate --document letter.odt "
                 "--dry-run\n");
    verb->callback([options, &result] { result = Run(*options); });
}

} // namespace vellum::tool
