// SPDX-License-Identifier: MIT
#include "tools/doctor.hpp"

#include "tools/exit_code.hpp"
#include "tools/font_files.hpp"
#include "tools/font_set.hpp"
#include "tools/json.hpp"
#include "tools/server.hpp"
#include "tools/text.hpp"

#include <vellum/vellum.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vellum::tool {

namespace {

namespace fs = std::filesystem;

enum class Grade { kGood, kNote, kProblem };

struct Finding {
    Grade grade;
    std::string what;
    std::string advice = {};
};
using Findings = std::vector<Finding>;

// A question is a cheap one when its answer takes no longer than this.
constexpr std::chrono::milliseconds kPatience(100);

void LookAtServer(Findings &findings) {
    if (!ServerRuns()) {
        findings.push_back({Grade::kProblem,
                            "no font server runs: each program uses the machine's fonts alone",
                            "'vellum server start' starts one"});
        return;
    }
    const auto begin = std::chrono::steady_clock::now();
    const bool answers = VLGetFontServerProcess() != 0;
    const auto fonts = Adopt(VLCopyAvailableFontURLs(kVLScopeUser));
    const auto time =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
    if (!answers || ValArrayGetCount(fonts.Get()) == 0)
        findings.push_back(
            {Grade::kProblem, "the font server knows no font", "'vellum server run' shows why"});
    else if (time > kPatience)
        findings.push_back({Grade::kNote, "the font server took " + std::to_string(time.count()) +
                                              " ms to list its fonts; it may have just started"});
    else
        findings.push_back({Grade::kGood, "the font server answers: " +
                                              Counted(ValArrayGetCount(fonts.Get()), "font", "fonts")});
}

enum class Entry { kFree, kForUserAlone };

// Why a folder is not one that nobody else may write to, or enter; empty when it is.
std::string WhyNotPrivate(const std::string &path, Entry entry) {
    struct stat about = {};
    const std::string name = Printable(path);
    if (::lstat(path.c_str(), &about) != 0) return name + ": " + std::strerror(errno);
    if (S_ISLNK(about.st_mode)) return name + " is a symbolic link";
    if (!S_ISDIR(about.st_mode)) return name + " is no folder";
    if (about.st_uid != ::geteuid()) return name + " belongs to somebody else";
    if (about.st_mode & 022) return name + " may be written to by others";
    if (entry == Entry::kForUserAlone && (about.st_mode & 0777) != 0700)
        return name + " has another mode than 700";
    return {};
}

// Sockets lie in a folder that this user alone may enter, within one that nobody else may write to. Where
// one is missing, the first server makes it.
void LookAtRuntimeFolder(Findings &findings) {
    const std::string instead = "/tmp/vellum-" + std::to_string(::geteuid());
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string folder(runtime && *runtime == '/' ? runtime : "");
    while (folder.ends_with('/')) folder.pop_back();
    std::string why, advice;
    if (folder.empty()) {
        findings.push_back(
            {Grade::kNote,
             "XDG_RUNTIME_DIR names no folder: sockets lie in " + instead +
                 ", and what is registered for the session stays until the machine restarts"});
        folder = instead;
    } else if (why = WhyNotPrivate(folder, Entry::kFree); why.empty()) {
        folder += "/vellum";
    } else {
        findings.push_back({Grade::kProblem,
                            "XDG_RUNTIME_DIR is not used, for " + why + ": sockets lie in " + instead,
                            "log in anew, or have it name a folder that is yours alone"});
        folder = instead;
    }
    std::error_code error;
    if (fs::symlink_status(folder, error).type() == fs::file_type::not_found) return;
    if (why = WhyNotPrivate(folder, Entry::kForUserAlone); !why.empty())
        findings.push_back({Grade::kProblem, "no sockets are taken from their folder, for " + why,
                            "remove it, and start the font server anew"});
    else
        findings.push_back({Grade::kGood, "sockets have a folder of their own: " + Printable(folder)});
}

// Fonts that the user has put where fonts belong, and that nobody can use.
void LookAtUserFonts(Findings &findings) {
    const char *data = std::getenv("XDG_DATA_HOME"), *home = std::getenv("HOME");
    const std::string folder = data && *data == '/' ? std::string(data) + "/fonts"
                                                    : std::string(home ? home : "") + "/.local/share/fonts";
    std::error_code error;
    if (!fs::is_directory(folder, error)) return;
    size_t count = 0, broken = 0;
    for (const std::string &path : FindFontFiles({folder}).paths) {
        ++count;
        if (VLRegisterFont(FileURL(path).Get(), 0, kVLScopeProcess | kVLScopeLegacyTold | kVLScopeSilent))
            continue;
        const Refusal refusal = ExplainRefusal(path);
        findings.push_back({Grade::kProblem, Printable(path) + ": " + refusal.reason,
                            refusal.permission ? "'chmod +r' it" : "remove it, or get it anew"});
        ++broken;
    }
    if (broken == 0)
        findings.push_back({Grade::kGood, "all can be read in " + Printable(folder) + ": " +
                                              Counted(count, "font file", "font files")});
}

// Files with the same PostScript name hide each other.
void LookAtNames(Findings &findings) {
    constexpr size_t kMostShown = 5;
    const auto urls = Adopt(VLCopyAvailableFontURLs(kVLScopeUser));
    std::map<std::string, std::vector<std::string>> files;
    for (const FoundFont &font : DescribeAll(urls.Get(), kVLScopeUser))
        if (!font.postscript_name.empty()) files[font.postscript_name].push_back(font.path);
    size_t shared = 0;
    for (const auto &[name, paths] : files) {
        if (paths.size() < 2 || ++shared > kMostShown) continue;
        std::string list;
        for (const std::string &path : paths) list += (list.empty() ? "" : ", ") + Printable(path);
        findings.push_back({Grade::kNote, "several fonts are called " + Printable(name) + ": " + list,
                            "'vellum disable' hides the one that is not wanted"});
    }
    if (shared > kMostShown)
        findings.push_back(
            {Grade::kNote, Grouped(shared - kMostShown) + " more names belong to several fonts"});
    if (shared == 0) findings.push_back({Grade::kGood, "no two fonts have the same name"});
}

const char *NameOf(Grade grade) {
    return grade == Grade::kGood ? "good" : grade == Grade::kNote ? "note" : "problem";
}

Json ToJson(const Findings &findings) {
    Json list = Json::array();
    for (const Finding &finding : findings)
        list.push_back({{"grade", NameOf(finding.grade)},
                        {"what", finding.what},
                        {"advice", finding.advice.empty() ? Json() : Json(finding.advice)}});
    return {{"schema", {{"name", "vellum.doctor"}, {"version", 1}}}, {"findings", list}};
}

void Show(const Findings &findings) {
    for (const Finding &finding : findings) {
        std::cout << NameOf(finding.grade)
                  << std::string(9 - std::string(NameOf(finding.grade)).size(), ' ') << finding.what
                  << '\n';
        if (!finding.advice.empty()) std::cout << "         try: " << finding.advice << '\n';
    }
}

int Examine(bool json) {
    Findings findings;
    LookAtServer(findings);
    LookAtRuntimeFolder(findings);
    LookAtUserFonts(findings);
    LookAtNames(findings);
    if (json)
        std::cout << Dump(ToJson(findings), 2) << '\n';
    else
        Show(findings);
    for (const Finding &finding : findings)
        if (finding.grade == Grade::kProblem) return kNothingFound;
    return kDone;
}

} // namespace

void AddDoctor(CLI::App &app, int &result) {
    auto json = std::make_shared<bool>(false);
    CLI::App *verb = app.add_subcommand("doctor", "Look for what is wrong with the fonts here.");
    verb->add_flag("--json", *json, "one JSON document");
    verb->footer(
        "Looks at the font server, at the folder for its sockets, at the user's own font files and at\n"
        "names that several fonts have. Nothing is changed.\n\n"
        "Exit codes: 0 nothing is wrong; 1 there are problems; 2 wrong usage.\n\n"
        "Example:\n  vellum doctor\n");
    verb->callback([json, &result] { result = Examine(*json); });
}

} // namespace vellum::tool
