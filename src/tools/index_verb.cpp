// SPDX-License-Identifier: MIT
#include "tools/index_verb.hpp"

#include "tools/exit_code.hpp"
#include "tools/json.hpp"
#include "tools/lines.hpp"
#include "tools/progress.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace vellum::tool {

namespace {

constexpr std::string_view kAttributes = "com_orrery_fount_name_";

// What a font may be called by someone who looks for it.
constexpr const char *kNamesOfFonts[] = {"postscript", "full", "family"};

// How often a rebuild is looked at.
constexpr uint32_t kBetweenLooks = 100; // milliseconds

Ref<const ValString> String(std::string_view text) {
    return Adopt(ValStringCreateWithUTF8(text.data(), text.size()));
}

// How the index is.
class Status {
public:
    explicit Status(uint32_t patience = 0, uint32_t changes = UINT32_MAX)
        : entries_(Adopt(VLCopyFontIndexStatus(patience, changes))) {}

    explicit operator bool() const { return static_cast<bool>(entries_); }
    uint64_t Number(const char *key) const {
        return static_cast<uint64_t>(NumberAt(entries_.Get(), String(key).Get()));
    }
    std::string State() const { return Bytes(StringAt(entries_.Get(), String("state").Get())); }
    std::vector<std::string> Roots() const {
        std::vector<std::string> roots;
        const ValArray *array = ArrayAt(entries_.Get(), String("roots").Get());
        for (size_t i = 0; i < ValArrayGetCount(array); ++i)
            roots.push_back(Bytes(static_cast<const ValString *>(ValArrayGetValue(array, i))));
        return roots;
    }

private:
    const Ref<const ValDictionary> entries_;
};

int MissService() {
    ReportNoIndex();
    return kNoServer;
}

void ShowStatus(const Status &status) {
    std::cout << Counted(status.Number("faces"), "font", "fonts") << " in "
              << Counted(status.Number("files"), "file", "files") << '\n';
    Lines lines(std::cout);
    lines.Add("state", status.State() == "no room" ? "the index cannot be written; the log says why"
                                                   : status.State());
    if (status.State() == "crawling")
        lines.Add("progress", Grouped(status.Number("folders-read")) + " folders read, " +
                                  Grouped(status.Number("folders-waiting")) + " known to wait");
    for (const std::string &root : status.Roots()) lines.Add("root", Printable(root));
    lines.Add("process", std::to_string(status.Number("process")));
}

int ShowStatus(bool as_json) {
    const Status status;
    if (!status) return MissService();
    if (!as_json) {
        ShowStatus(status);
        return kDone;
    }
    Json document = {{"schema", {{"name", "vellum.index.status"}, {"version", 1}}},
                     {"state", status.State()},
                     {"roots", status.Roots()}};
    for (const char *key :
         {"files", "faces", "folders-read", "folders-waiting", "files-read", "process", "crawler"})
        document[key] = status.Number(key);
    std::cout << Dump(document, 2) << '\n';
    return kDone;
}

struct File {
    std::string type;
    double modified = 0;
};
using Files = std::map<std::string, File>; // by path

// False when there was no answer.
bool Find(const std::string &query, Files &files) {
    const auto found = Adopt(VLCopyIndexedFontFiles(String(query).Get()));
    for (size_t i = 0; i < ValArrayGetCount(found.Get()); ++i) {
        const auto *file = static_cast<const ValDictionary *>(ValArrayGetValue(found.Get(), i));
        files[PathOf(URLAt(file, String("url").Get()))] = {Bytes(StringAt(file, String("type").Get())),
                                                           NumberAt(file, String("modified").Get())};
    }
    return static_cast<bool>(found);
}

// A query as it is; what is none is a name.
bool FindQueryOrName(const std::string &text, Files &files) {
    if (text.starts_with(kAttributes)) return Find(text, files);
    return std::ranges::all_of(kNamesOfFonts, [&](const char *name) {
        return Find(std::string(kAttributes) + name + " == \"" + text + '"', files);
    });
}

int Search(const std::string &text, bool as_json) {
    if (text.empty() || !String(text)) {
        std::cerr << "vellum: a name is text in UTF-8, and not empty\n";
        return kUsage;
    }
    const Status status;
    if (!status) return MissService();
    Files files;
    if (!FindQueryOrName(text, files)) {
        std::cerr
            << "vellum: the index of font files does not answer; 'vellum index status' shows how it is\n";
        return kTimeOut;
    }
    if (as_json) {
        Json list = Json::array();
        for (const auto &[path, file] : files)
            list.push_back({{"path", path}, {"type", file.type}, {"modified", file.modified}});
        std::cout << Dump({{"schema", {{"name", "vellum.index.search"}, {"version", 1}}}, {"files", list}},
                          2)
                  << '\n';
    } else {
        for (const auto &[path, file] : files) std::cout << Printable(path) << '\n';
    }
    if (files.empty() && status.State() != "idle")
        std::cerr << "vellum: not all folders are read yet; 'vellum index status' shows how it is\n";
    return files.empty() ? kNothingFound : kDone;
}

int Rebuild() {
    const Status before;
    if (!before || !VLRebuildFontIndex()) return MissService();
    const uint64_t total = before.Number("files"), read_before = before.Number("files-read");
    Progress progress(total, ::isatty(STDERR_FILENO));
    for (uint64_t done = 0;;) {
        const Status now(kBetweenLooks);
        if (!now) {
            std::cerr << "vellum: the index of font files has ended; it goes on when it is begun again\n";
            return kNoServer;
        }
        const uint64_t read = std::min(now.Number("files-read") - read_before, total);
        if (read > done) progress.Advance(read - done);
        done = std::max(read, done);
        if (now.Number("rebuilds") == before.Number("rebuilds")) continue;
        if (now.State() == "no room") {
            std::cerr << "vellum: the index cannot be written; it goes on when there is room on the disk\n";
            return kNothingFound;
        }
        if (now.State() == "idle") return kDone;
    }
}

} // namespace

void ReportNoIndex() {
    std::cerr
        << "vellum: no index of font files is kept; 'systemctl --user enable --now vellum-beacon.socket' "
           "has one kept\n";
}

void AddIndex(CLI::App &app, int &result) {
    CLI::App *verb = app.add_subcommand("index", "Search the font files in your folders, used or not.");
    verb->require_subcommand(1);
    auto json = std::make_shared<bool>(false);
    auto text = std::make_shared<std::string>();
    CLI::App *status = verb->add_subcommand("status", "say what is in the index, and what it is doing");
    status->add_flag("--json", *json, "one JSON document");
    status->callback([json, &result] { result = ShowStatus(*json); });
    CLI::App *search = verb->add_subcommand("search", "find the files of a font by its name");
    search
        ->add_option("QUERY-OR-NAME", *text,
                     "a PostScript, full or family name, as it is spelled; or a query:\n"
                     "com_orrery_fount_name_family == \"Foo\" && "
                     "com_orrery_fount_name_style == \"Bold\"")
        ->required();
    search->add_flag("--json", *json, "one JSON document");
    search->callback([json, text, &result] { result = Search(*text, *json); });
    verb->add_subcommand("rebuild", "read every font file again, and wait until that is done")
        ->callback([&result] { result = Rebuild(); });
    verb->footer("Exit codes: 0 found or done; 1 nothing found, or it could not be done; 2 wrong usage; 3 "
                 "no index is "
                 "kept;\n6 no answer in time.\n\n"
                 "Example:\n  vellum index search 'Source Serif Pro'\n");
}

} // namespace vellum::tool
