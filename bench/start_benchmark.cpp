// SPDX-License-Identifier: MIT
// What it costs to begin: the first answer that a new process gets, a new server's first answer, and the
// memory that a server needs.
//
//     start_benchmark [FOLDER...]
//
// The fonts are those of the installed packages, or those below the folders. Beside fontconfig, which reads
// the same files: with a warm cache where a process asks, without one where a server starts. fontconfig is
// loaded before its time begins, Vellum within it.
#include "font_files.hpp"
#include "ipc/client/global_glyphary_imp.hpp"
#include "machine.hpp"
#include "rotation.hpp"

#include <fontconfig/fontconfig.h>

#include <array>
#include <cstdint>
#include <utility>

using namespace vellum;
using namespace vellum::bench;

namespace {

namespace fs = std::filesystem;

constexpr int kProcesses = 41, kColdStarts = 5;

// Whom first_answer asks for what: a font that is on both machines.
struct Side {
    const char *name, *library, *question;
};
const Side kFontconfig = {"fontconfig", "libfontconfig.so.1", "DejaVu Sans"};

struct FirstAnswer {
    double milliseconds = 0;
    double memory = 0, own_memory = 0; // kilobytes
};

// Of a process that is started for this; one that gets no answer ends the benchmark.
FirstAnswer Ask(const Side &side) {
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "first_answer";
    const std::string command =
        program.string() + " " + side.name + " " + side.library + " '" + side.question + "'";
    std::FILE *output = ::popen(command.c_str(), "r");
    long long nanoseconds = 0;
    FirstAnswer answer;
    const bool is_read = output && std::fscanf(output, "%lld %lf %lf", &nanoseconds, &answer.memory,
                                               &answer.own_memory) == 3;
    if (!is_read || ::pclose(output) != 0) {
        std::fprintf(stderr, "no answer: %s\n", command.c_str());
        std::exit(1);
    }
    answer.milliseconds = static_cast<double>(nanoseconds) / 1e6;
    return answer;
}

FirstAnswer MedianOf(std::vector<FirstAnswer> &answers) {
    FirstAnswer median;
    for (double FirstAnswer::*figure :
         {&FirstAnswer::milliseconds, &FirstAnswer::memory, &FirstAnswer::own_memory}) {
        std::ranges::sort(answers, {}, figure);
        median.*figure = answers[answers.size() / 2].*figure;
    }
    return median;
}

// The machine's fonts are second names of the files, or links where those lie on another volume: copies
// would take up a gigabyte.
void AddFonts(const Machine &machine, const TFiles &files) {
    for (size_t i = 0; i < files.size(); ++i) {
        const fs::path name =
            machine.SystemFonts() + "/" + std::to_string(i) + fs::path(files[i]).extension().string();
        std::error_code error;
        fs::create_hard_link(files[i], name, error);
        if (error) fs::create_symlink(files[i], name);
    }
}

// fontconfig as it is installed, but with these fonts and a cache of its own.
void ConfigureFontconfig(const Machine &machine) {
    const std::string path = machine.Folder() + "/fonts.conf";
    std::ofstream(path) << "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n"
                        << "<fontconfig><dir>" << machine.SystemFonts() << "</dir><cachedir>"
                        << machine.Folder() << "/cache</cachedir>"
                        << "<include ignore_missing=\"yes\">/etc/fonts/conf.d</include></fontconfig>\n";
    ::setenv("FONTCONFIG_FILE", path.c_str(), 1);
}

// What a process has for itself, in kilobytes.
long OwnMemory(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    long sum = 0, kilobytes = 0;
    for (std::string line; std::getline(file, line);)
        if (std::sscanf(line.c_str(), "Private_Clean: %ld", &kilobytes) == 1 ||
            std::sscanf(line.c_str(), "Private_Dirty: %ld", &kilobytes) == 1)
            sum += kilobytes;
    return sum;
}

size_t CountFaces() {
    return ValArrayGetCount(TGlobalGlypharyImp().CopyAvailableFontURLs(kVLScopeUser).Get());
}

void CompareFirstAnswers(const Side &vellum) {
    const Side in_toolkit = {"toolkit", vellum.library, vellum.question};
    const std::array<std::pair<const char *, Side>, 3> sides = {{
        {"fontconfig", kFontconfig},
        {"Vellum", vellum},
        {"Vellum, in a toolkit's process", in_toolkit},
    }};
    std::array<std::vector<FirstAnswer>, sides.size()> answers;
    for (int round = 0; round <= kProcesses; ++round)
        for (size_t i = 0; i < sides.size(); ++i) {
            const FirstAnswer answer = Ask(sides[i].second);
            if (round > 0) answers[i].push_back(answer); // the first one makes fontconfig's cache
        }
    const FirstAnswer theirs = MedianOf(answers[0]);
    for (size_t i = 0; i < sides.size(); ++i) {
        const FirstAnswer one = MedianOf(answers[i]);
        std::printf("  %-30s %8.3f ms x%.2f   resident %7.0f kB x%.2f, written %7.0f kB x%.2f\n",
                    sides[i].first, one.milliseconds, one.milliseconds / theirs.milliseconds, one.memory,
                    one.memory / theirs.memory, one.own_memory, one.own_memory / theirs.own_memory);
    }
}

void CompareColdStarts(Machine &machine, const Side &vellum) {
    std::vector<TSide> sides = {{"fontconfig, no cache",
                                 [&] {
                                     fs::remove_all(machine.Folder() + "/cache");
                                     return Ask(kFontconfig).milliseconds > 0 ? size_t{1} : size_t{0};
                                 }},
                                {"font server, nothing kept", [&] {
                                     machine.Forget();
                                     return machine.Start() && Ask(vellum).milliseconds > 0 ? size_t{1}
                                                                                            : size_t{0};
                                 }}};
    Rotate(sides, kColdStarts);
    Print(sides);
}

} // namespace

int main(int count, char **arguments) {
    const std::string library = BuiltBeside("libvellum.so");
    const Side vellum = {"vellum", library.c_str(), "DejaVuSans"};
    const TFiles all = FindFontFiles({arguments + 1, arguments + count});
    TFiles few;
    for (const std::string &file : all)
        if (file.find("DejaVuSans.ttf") != std::string::npos) few.push_back(file);
    if (few.empty()) {
        std::fprintf(stderr, "DejaVuSans.ttf is not among the fonts\n");
        return 1;
    }

    std::printf("beside fontconfig %d.%d.%d\n", FC_MAJOR, FC_MINOR, FC_REVISION);
    std::array<size_t, 2> faces{};
    std::array<long, 2> memory{};
    for (const size_t which : {size_t{0}, size_t{1}}) {
        Machine machine(BuiltBeside("server/vellum-fontserver"));
        AddFonts(machine, which ? all : few);
        ConfigureFontconfig(machine);
        if (!machine.Start()) return 1;
        Ask(vellum);
        memory[which] = OwnMemory(machine.Server());
        faces[which] = CountFaces();
        std::printf("first answer of a process, %zu faces\n", faces[which]);
        CompareFirstAnswers(vellum);
        if (!which) continue;
        std::printf("from a start without anything to the first answer, %zu faces\n", faces[which]);
        CompareColdStarts(machine, vellum);
    }
    const long more = memory[1] - memory[0];
    std::printf("memory of a server's own: %ld kB with %zu faces, %.0f bytes a face more\n", memory[1],
                faces[1], 1024.0 * static_cast<double>(more) / static_cast<double>(faces[1] - faces[0]));
}
