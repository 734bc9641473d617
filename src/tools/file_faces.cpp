// SPDX-License-Identifier: MIT
#include "tools/file_faces.hpp"

#include "tools/progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <span>
#include <string>

namespace vellum::tool {

namespace {

// Files are registered, asked and taken out again in batches of this size: a register holds a
// limited number of faces, and a font tree may have more.
constexpr size_t kBatch = 32;

constexpr VLScope kScope = kVLScopeProcess | kVLScopeLegacyTold | kVLScopeSilent;

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

using Show = std::function<void(const ValDictionary *properties)>;

void ShowBatch(std::span<const std::string> paths, const ValSet *keys, const Show &show, Outcome &outcome) {
    const auto urls = URLsOf(paths);
    const ValArray *failed = nullptr;
    VLRegisterFonts(urls.Get(), 0, kScope, &failed);
    const auto errors = Adopt(failed);
    ExplainErrors(errors.Get(), outcome.refusals);

    const auto all = Adopt(VLCopyPropertiesForAllFonts(keys, kScope));
    for (size_t i = 0; i < ValArrayGetCount(all.Get()); ++i, ++outcome.faces)
        show(static_cast<const ValDictionary *>(ValArrayGetValue(all.Get(), i)));
    VLUnregisterFonts(urls.Get(), 0, kScope, nullptr);
}

} // namespace

Outcome ForEachFace(const FontFiles &files, const ValSet *keys, const Show &show) {
    Outcome outcome{.refusals = files.refusals};
    Progress progress(files.paths.size(), ::isatty(STDERR_FILENO) != 0);
    const std::span<const std::string> paths(files.paths);
    for (size_t at = 0; at < paths.size(); at += kBatch) {
        const auto batch = paths.subspan(at, std::min(kBatch, paths.size() - at));
        ShowBatch(batch, keys, show, outcome);
        progress.Advance(batch.size());
    }
    return outcome;
}

Json ToJson(const std::vector<Refusal> &refusals) {
    Json list = Json::array();
    for (const Refusal &refusal : refusals)
        list.push_back({{"path", refusal.path}, {"reason", refusal.reason}});
    return list;
}

void Report(const std::vector<Refusal> &refusals) {
    for (const Refusal &refusal : refusals)
        std::cerr << "vellum: " << Printable(refusal.path) << ": " << refusal.reason << '\n';
}

ExitCode Judge(const Outcome &outcome) {
    if (outcome.faces > 0) return outcome.refusals.empty() ? kDone : kNothingFound;
    const auto &refusals = outcome.refusals;
    if (std::ranges::any_of(refusals, &Refusal::permission)) return kRefused;
    return std::ranges::any_of(refusals, &Refusal::is_file) ? kBadFont : kNothingFound;
}

} // namespace vellum::tool
