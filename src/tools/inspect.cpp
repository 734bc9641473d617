// SPDX-License-Identifier: MIT
#include "tools/inspect.hpp"

#include "tools/exit_code.hpp"
#include "tools/face.hpp"
#include "tools/font_files.hpp"
#include "tools/progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

// Files are registered, asked and taken out again in batches of this size: a register holds a
// limited number of faces, and a font tree may have more.
constexpr size_t kBatch = 32;

constexpr VLScope kScope = kVLScopeProcess | kVLScopeSilent;

struct Options {
    std::vector<std::string> paths;
    bool json = false;
    bool jsonl = false;
};

struct Outcome {
    size_t faces = 0;
    std::vector<Refusal> refusals;
};

Ref<const ValArray> URLsOf(std::span<const std::string> paths) {
    std::vector<Ref<const ValURL>> urls;
    std::vector<const void *> items;
    for (const std::string &path : paths) items.push_back(urls.emplace_back(FileURL(path)).Get());
    return Adopt(ValArrayCreate(items.data(), items.size()));
}

void ExplainErrors(const ValArray *errors, std::vector<Refusal> &refusals) {
    for (size_t i = 0; i < ValArrayGetCount(errors); ++i)
        refusals.push_back(
            ExplainRefusal(PathOf(static_cast<const ValURL *>(ValArrayGetValue(errors, i)))));
}

// Calls show(face) for every face of the files.
void InspectBatch(std::span<const std::string> paths, const std::function<void(const Face &)> &show,
                  std::vector<Refusal> &refusals) {
    const auto urls = URLsOf(paths);
    const ValArray *failed = nullptr;
    VLRegisterFonts(urls.Get(), 0, kScope, &failed);
    const auto errors = Adopt(failed);
    ExplainErrors(errors.Get(), refusals);

    const auto all = Adopt(VLCopyPropertiesForAllFonts(FaceKeys().Get(), kScope));
    for (size_t i = 0; i < ValArrayGetCount(all.Get()); ++i)
        show(ReadFace(static_cast<const ValDictionary *>(ValArrayGetValue(all.Get(), i))));
    VLUnregisterFonts(urls.Get(), 0, kScope, nullptr);
}

Outcome InspectAll(const FontFiles &files, const std::function<void(const Face &)> &show) {
    Outcome outcome{.refusals = files.refusals};
    Progress progress(files.paths.size(), ::isatty(STDERR_FILENO) != 0);
    const std::span<const std::string> paths(files.paths);
    for (size_t at = 0; at < paths.size(); at += kBatch) {
        const auto batch = paths.subspan(at, std::min(kBatch, paths.size() - at));
        InspectBatch(
            batch,
            [&](const Face &face) {
                ++outcome.faces;
                show(face);
            },
            outcome.refusals);
        progress.Advance(batch.size());
    }
    return outcome;
}

std::string Dump(const Json &json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json ToJson(const std::vector<Refusal> &refusals) {
    Json list = Json::array();
    for (const Refusal &refusal : refusals)
        list.push_back({{"path", refusal.path}, {"reason", refusal.reason}});
    return list;
}

Outcome ShowDocument(const FontFiles &files) {
    Json faces = Json::array();
    Outcome outcome = InspectAll(files, [&](const Face &face) { faces.push_back(ToJson(face)); });
    const Json document = {
        {"schema", {{"name", "vellum.inspect"}, {"version", 1}}},
        {"faces", std::move(faces)},
        {"refused", ToJson(outcome.refusals)},
    };
    std::cout << Dump(document, 2) << '\n';
    return outcome;
}

Outcome ShowLines(const FontFiles &files) {
    return InspectAll(files, [](const Face &face) { std::cout << Dump(ToJson(face), -1) << '\n'; });
}

Outcome ShowText(const FontFiles &files) {
    const bool colour = ::isatty(STDOUT_FILENO) != 0 && !std::getenv("NO_COLOR");
    bool first = true;
    return InspectAll(files, [&](const Face &face) {
        std::cout << (first ? "" : "\n") << ToText(face, colour);
        first = false;
    });
}

ExitCode Judge(const Outcome &outcome) {
    if (outcome.faces > 0) return outcome.refusals.empty() ? kDone : kNothingFound;
    const auto &refusals = outcome.refusals;
    if (std::ranges::any_of(refusals, &Refusal::permission)) return kRefused;
    return std::ranges::any_of(refusals, &Refusal::is_file) ? kBadFont : kNothingFound;
}

int Inspect(const Options &options) {
    const FontFiles files = FindFontFiles(options.paths);
    const Outcome outcome = options.json    ? ShowDocument(files)
                            : options.jsonl ? ShowLines(files)
                                            : ShowText(files);
    for (const Refusal &refusal : outcome.refusals)
        std::cerr << "vellum: " << Printable(refusal.path) << ": " << refusal.reason << '\n';
    return Judge(outcome);
}

} // namespace

void AddInspect(CLI::App &app, int &result) {
    auto options = std::make_shared<Options>();
    CLI::App *verb = app.add_subcommand("inspect", "Show what font files hold, face by face.");
    verb->add_option("PATH", options->paths, "font files, or folders to look through")->required();
    auto *json = verb->add_flag("--json", options->json, "one JSON document");
    verb->add_flag("--jsonl", options->jsonl, "one JSON object a face and line")->excludes(json);
    verb->footer("Nothing is registered beyond this process, and no file is changed.\n\n"
                 "Exit codes: 0 every file was read; 1 some were refused, or there were none;\n"
                 "2 wrong usage; 4 a file may not be read; 5 what was named is no font.\n\n"
                 "Example:\n"
                 "  vellum inspect --json /usr/share/fonts | jq '.faces[].familyName'\n");
    verb->callback([options, &result] { result = Inspect(*options); });
}

} // namespace vellum::tool
