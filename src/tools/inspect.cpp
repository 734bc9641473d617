// SPDX-License-Identifier: MIT
#include "tools/inspect.hpp"

#include "tools/arguments.hpp"
#include "tools/face.hpp"
#include "tools/file_faces.hpp"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

struct Options {
    std::vector<std::string> paths;
    std::optional<std::string> property; // none: all
    bool json = false;
    bool jsonl = false;
};

// Calls show(face) for every face of the files.
template <class Show>
Outcome InspectAll(const FontFiles &files, const FaceQuestion &question, Show show) {
    return ForEachFace(files, question.Keys().Get(),
                       [&](const ValDictionary *properties) { show(ReadFace(properties, question)); });
}

Outcome ShowDocument(const FontFiles &files, const FaceQuestion &question) {
    FaceDocument document(std::cout, "vellum.inspect", 1);
    Outcome outcome = InspectAll(files, question, [&](const Json &face) { document.Add(face); });
    document.Finish(ToJson(outcome.refusals));
    return outcome;
}

Outcome ShowLines(const FontFiles &files, const FaceQuestion &question) {
    return InspectAll(files, question, [](const Json &face) { std::cout << Dump(face, -1) << '\n'; });
}

Outcome ShowAnswers(const FontFiles &files, const FaceQuestion &question) {
    return InspectAll(files, question,
                      [&](const Json &face) { std::cout << ToLine(face.at(question.Name())) << '\n'; });
}

Outcome ShowText(const FontFiles &files, const FaceQuestion &question) {
    if (!question.IsAboutEverything()) return ShowAnswers(files, question);
    const bool colour = ::isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR");
    bool first = true;
    return InspectAll(files, question, [&](const Json &face) {
        std::cout << (first ? "" : "\n") << ToText(face, colour);
        first = false;
    });
}

int Inspect(const Options &options) {
    const auto question = options.property ? FaceQuestion(*options.property) : FaceQuestion();
    const FontFiles files = FindFontFiles(options.paths);
    const Outcome outcome = options.json    ? ShowDocument(files, question)
                            : options.jsonl ? ShowLines(files, question)
                                            : ShowText(files, question);
    Report(outcome.refusals);
    return Judge(outcome);
}

} // namespace

void AddInspect(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("inspect", "Show what font files hold, face by face.");
    verb->add_option("PATH", options->paths, "font files, or folders to look through")
        ->required()
        ->check(IsPath());
    auto *json = verb->add_flag("--json", options->json, "one JSON document");
    verb->add_flag("--jsonl", options->jsonl, "one JSON object a face and line")->excludes(json);
    verb->add_option("--property", options->property,
                     "only this property: its name in the JSON document, or its key")
        ->type_name("KEY");
    verb->footer("Nothing is registered beyond this process, and no file is changed.\n\n"
                 "Exit codes: 0 every file was read; 1 some were refused, or there were none;\n"
                 "2 wrong usage; 4 a file may not be read; 5 what was named is no font.\n\n"
                 "Example:\n"
                 "  vellum inspect --json /usr/share/fonts | jq '.faces[].familyName'\n"
                 "  vellum inspect --property supportedLanguages Foo.ttf\n");
    verb->callback([options, &result] { result = Inspect(*options); });
}

} // namespace vellum::tool
