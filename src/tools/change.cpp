// SPDX-License-Identifier: MIT
#include "tools/change.hpp"

#include "tools/file_faces.hpp"
#include "tools/font_set.hpp"
#include "tools/server.hpp"

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::vector<std::string> paths;
    std::string scope = "user";
    std::string face;
    bool dry_run = false;
    bool json = false;
    bool jsonl = false;
};

// What a verb does with one file.
enum class Action { kRegister, kUnregister, kEnable, kDisable };

struct Verb {
    Action action;
    const char *name;
    const char *done; // for results
    const char *help;
    const char *footer;
};

constexpr Verb kVerbs[] = {
    {Action::kRegister, "register", "registered", "Make font files known, and their fonts available.",
     "A file that is registered already is a problem, and stays as it is.\n\nExample:\n"
     "  vellum register ~/Downloads/Inter.ttc\n"},
    {Action::kUnregister, "unregister", "unregistered", "Take font files out again. No file is removed.",
     "Example:\n  vellum unregister ~/Downloads/Inter.ttc\n"},
    {Action::kEnable, "enable", "enabled", "Bring disabled fonts back.",
     "Example:\n  vellum enable /usr/share/fonts/truetype/Inter.ttc\n"},
    {Action::kDisable, "disable", "disabled", "Hide fonts that stay registered from every program.",
     "Example:\n  vellum disable --face Inter-Thin /usr/share/fonts/truetype/Inter.ttc\n"},
};

// What came of one file.
struct Item {
    std::string path;
    std::vector<std::string> faces; // PostScript names, or what else the faces are called
    bool succeeded = false;
    std::string problem;
};

bool PicksFaces(Action action) {
    return action == Action::kEnable || action == Action::kDisable;
}

// The faces of files by their paths, with their URLs: only those of a PostScript name, unless it is empty.
std::map<std::string, std::vector<FoundFont>> FindFaces(const FontFiles &files, const std::string &wanted) {
    std::map<std::string, std::vector<FoundFont>> faces;
    const void *const keys[] = {kVLFontPropertyURL, kVLFontPropertyName, kVLFontPropertyFullName};
    const auto key_set = Adopt(ValSetCreate(keys, std::size(keys)));
    ForEachFace(FontFiles{files.paths, {}}, key_set.Get(), [&](const ValDictionary *properties) {
        FoundFont face;
        face.url = Bytes(ValURLGetString(URLAt(properties, kVLFontPropertyURL)));
        face.path = PathOf(URLAt(properties, kVLFontPropertyURL));
        face.postscript_name = Text(StringAt(properties, kVLFontPropertyName)).value_or("");
        face.full_name = Text(StringAt(properties, kVLFontPropertyFullName)).value_or("");
        if (wanted.empty() || face.postscript_name == wanted) faces[face.path].push_back(face);
    });
    return faces;
}

Ref<const ValURL> URLOf(const std::string &text) {
    return Adopt(
        ValURLCreateWithString(Adopt(ValStringCreateWithUTF8(text.data(), text.size())).Get(), nullptr));
}

Ref<const ValArray> Targets(const Item &item, const std::vector<FoundFont> &faces, bool whole) {
    std::vector<Ref<const ValURL>> urls;
    if (whole)
        urls.push_back(FileURL(item.path));
    else
        for (const FoundFont &face : faces) urls.push_back(URLOf(face.url));
    std::vector<const void *> items;
    for (const auto &url : urls) items.push_back(url.Get());
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

class Changer {
public:
    Changer(const Verb &verb, const Options &options)
        : verb_(verb), options_(options), scope_(ScopeOf(options.scope)) {}

    // Changes a file with these faces.
    Item Change(const std::string &path, const std::vector<FoundFont> &faces) const {
        Item item{path, {}, false, {}};
        for (const FoundFont &face : faces) item.faces.push_back(NameOf(face));
        if (faces.empty() && verb_.action != Action::kUnregister)
            item.problem = options_.face.empty() ? "" : "has no face " + Printable(options_.face);
        else if (options_.dry_run)
            item.succeeded = true;
        else
            Apply(item, Targets(item, faces, options_.face.empty()).Get());
        return item;
    }

private:
    // A register of this run alone begins empty: what is to be taken out of it must be in it.
    void Rehearse(const ValArray *targets) const {
        const VLScope silent = kVLScopeProcess | kVLScopeLegacyTold | kVLScopeSilent;
        if (scope_ != kVLScopeProcess || verb_.action == Action::kRegister) return;
        VLRegisterFonts(targets, 0, silent, nullptr);
        if (verb_.action == Action::kEnable) VLDisableFonts(targets, 0, silent);
    }

    void Apply(Item &item, const ValArray *targets) const {
        Rehearse(targets);
        const auto *first = static_cast<const ValURL *>(ValArrayGetValue(targets, 0));
        switch (verb_.action) {
        case Action::kRegister:
            item.succeeded = VLRegisterFonts(targets, 0, scope_, nullptr);
            if (!item.succeeded && (VLGetScopeForFont(first) & scope_))
                item.problem = "is registered already";
            return;
        case Action::kUnregister:
            if (!(VLGetScopeForFont(first) & scope_))
                item.problem = "is not registered";
            else
                item.succeeded = VLUnregisterFonts(targets, 0, scope_, nullptr);
            return;
        case Action::kEnable:
            VLEnableFonts(targets, 0, scope_);
            item.succeeded = IsEnabled(first);
            if (!item.succeeded) item.problem = "is not registered";
            return;
        case Action::kDisable:
            if (!IsEnabled(first)) {
                item.problem = "is not registered, or disabled already";
                return;
            }
            VLDisableFonts(targets, 0, scope_);
            item.succeeded = !IsEnabled(first);
            return;
        }
    }

    bool IsEnabled(const ValURL *font) const {
        const void *const key[] = {kVLFontPropertyEnabled};
        const auto properties =
            Adopt(VLCopyPropertiesForFont(font, Adopt(ValSetCreate(key, std::size(key))).Get(), scope_));
        return NumberAt(properties.Get(), kVLFontPropertyEnabled) != 0;
    }

    const Verb &verb_;
    const Options &options_;
    const VLScope scope_;
};

Json ToJson(const Item &item) {
    return {{"path", item.path},
            {"done", item.succeeded},
            {"faces", item.faces},
            {"problem", item.problem.empty() ? Json() : Json(item.problem)}};
}

std::string FacesInWords(const Item &item) {
    if (item.faces.size() == 1) return item.faces.front();
    return item.faces.empty() ? "" : Grouped(item.faces.size()) + " faces";
}

// Shows each result when it is there.
class Results {
public:
    Results(const Verb &verb, const Options &options) : verb_(verb), options_(options) {}

    void Add(const Item &item) {
        if (item.succeeded) ++done_;
        if (options_.json)
            items_.push_back(ToJson(item));
        else if (options_.jsonl)
            std::cout << Dump(ToJson(item), -1) << '\n';
        else if (item.succeeded)
            std::cout << (options_.dry_run ? "would be " : "") << verb_.done << "  " << Printable(item.path)
                      << "  " << FacesInWords(item) << '\n';
        if (!item.succeeded) refusals_.push_back(Explain(item));
    }

    int Finish(const std::vector<Refusal> &not_found) {
        refusals_.insert(refusals_.begin(), not_found.begin(), not_found.end());
        Report(refusals_);
        if (options_.json) {
            const Json document = {{"schema", {{"name", "vellum.change"}, {"version", 1}}},
                                   {"action", verb_.name},
                                   {"scope", options_.scope},
                                   {"dryRun", options_.dry_run},
                                   {"items", items_},
                                   {"refused", ToJsonRefusals()}};
            std::cout << Dump(document, 2) << '\n';
        }
        if (refusals_.empty() && done_ > 0) return kDone;
        return done_ > 0 ? kNothingFound : Judge({0, refusals_});
    }

private:
    static Refusal Explain(const Item &item) {
        if (item.problem.empty()) return ExplainRefusal(item.path);
        return {item.path, item.problem, false, false};
    }
    Json ToJsonRefusals() const { return tool::ToJson(refusals_); }

    const Verb &verb_;
    const Options &options_;
    Json items_ = Json::array();
    std::vector<Refusal> refusals_;
    size_t done_ = 0;
};

int RunVerb(const Verb &verb, const Options &options) {
    if (!options.dry_run && ScopeOf(options.scope) != kVLScopeProcess && !ServerRuns()) {
        ReportNoServer("--scope process or --dry-run tries it out");
        return kNoServer;
    }
    const FontFiles files = FindFontFiles(options.paths);
    auto faces = FindFaces(files, options.face);
    const Changer changer(verb, options);
    Results results(verb, options);
    for (const std::string &path : files.paths) results.Add(changer.Change(path, faces[path]));
    return results.Finish(files.refusals);
}

void AddVerb(CLI::App &app, const Verb &verb, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand(verb.name, verb.help);
    command->add_option("PATH", options->paths, "font files, or folders with font files")
        ->type_name("PATH...")
        ->required();
    AddScopeOption(*command, options->scope);
    if (PicksFaces(verb.action))
        command->add_option("--face", options->face, "the face of that PostScript name, not the whole file")
            ->type_name("NAME");
    command->add_flag("--dry-run", options->dry_run, "say what would be done, and do nothing");
    auto *json = command->add_flag("--json", options->json, "one JSON document");
    command->add_flag("--jsonl", options->jsonl, "one JSON object a file and line")->excludes(json);
    command->footer(
        std::string("Exit codes: 0 all was done; 1 some was not; 2 wrong usage; 3 a font server "
                    "is needed\nand none runs; 4 a file may not be read; 5 none is a font.\n\n") +
        verb.footer);
    command->callback([&verb, options, &result] { result = RunVerb(verb, *options); });
}

} // namespace

void AddChanges(CLI::App &app, int &result) {
    for (const Verb &verb : kVerbs) AddVerb(app, verb, result);
}

} // namespace vellum::tool
