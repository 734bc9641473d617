// SPDX-License-Identifier: MIT
#include "tools/change.hpp"

#include "tools/arguments.hpp"
#include "tools/change_results.hpp"
#include "tools/changer.hpp"
#include "tools/exit_code.hpp"
#include "tools/server.hpp"

#include <memory>
#include <string>

namespace vellum::tool {

namespace {

struct Verb {
    Action action;
    VerbNames names;
    const char *help;
    const char *footer;
};

constexpr Verb kVerbs[] = {
    {Action::kRegister,
     {"register", "registered"},
     "Make font files known, and their fonts available.",
     "A file that is registered already is a problem, and stays as it is. A link is a file of its own.\n\n"
     "Example:\n  vellum register ~/Downloads/Inter.ttc\n"},
    {Action::kUnregister,
     {"unregister", "unregistered"},
     "Take font files out again. No file is removed.",
     "A file that is gone can be taken out, too.\n\n"
     "Example:\n  vellum unregister ~/Downloads/Inter.ttc\n"},
    {Action::kEnable,
     {"enable", "enabled"},
     "Bring disabled fonts back.",
     "Example:\n  vellum enable /usr/share/fonts/truetype/Inter.ttc\n"},
    {Action::kDisable,
     {"disable", "disabled"},
     "Hide fonts that stay registered from every program.",
     "Example:\n  vellum disable --face Inter-Thin /usr/share/fonts/truetype/Inter.ttc\n"},
};

bool PicksFaces(Action action) {
    return action == Action::kEnable || action == Action::kDisable;
}

int RunVerb(const Verb &verb, const ChangeOptions &options) {
    if (!options.dry_run && ScopeOf(options.scope) != kVLScopeProcess && !ServerRuns()) {
        ReportNoServer("--scope process or --dry-run tries it out");
        return kNoServer;
    }
    // The register answers for a file that is gone: it may still have it.
    const Gone gone = verb.action == Action::kRegister ? Gone::kRefused : Gone::kKept;
    const FontFiles files = FindFontFiles(options.paths, gone);
    const FileContents contents(files.paths);
    const Changer changer(verb.action, options);
    ChangeResults results(verb.names, options);
    for (const Refusal &refusal : files.refusals) results.Add({refusal.path, {}, refusal});
    for (const std::string &path : files.paths) results.Add(changer.Change(path, contents));
    return results.Finish();
}

void AddVerb(CLI::App &app, const Verb &verb, int &result) {
    auto options = std::make_shared<ChangeOptions>();
    CLI::App *command = app.add_subcommand(verb.names.name, verb.help);
    command->add_option("PATH", options->paths, "font files, or folders with font files")
        ->type_name("PATH...")
        ->required()
        ->check(IsPath());
    AddScopeOption(*command, options->scope);
    if (PicksFaces(verb.action))
        command->add_option("--face", options->face, "the face of that PostScript name, not the whole file")
            ->type_name("NAME");
    command->add_flag("--dry-run", options->dry_run,
                      "ask the register and say what would be done, and do nothing");
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
