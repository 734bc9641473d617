// SPDX-License-Identifier: MIT
// Writes the table of small letters (platform/val/lowercase_runs.hpp) as a source file, from GLib's Unicode
// functions. It runs while the library is built. ASCII is left out: who asks has dealt with it.
//
//     generate_lowercase_runs OUTPUT
#include "platform/val/lowercase_runs.hpp"

#include <glib.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

using vellum::LowercaseRun;

namespace {

// Whether a letter goes on with a run, and lies at the run's step, which the second letter decides.
bool Extend(LowercaseRun &run, char32_t letter, char32_t lower) {
    if (lower - letter != run.lower_first - run.first) return false;
    const char32_t step = letter - run.last;
    if (run.last == run.first ? step > 2 : step != run.step) return false;
    run.step = step;
    run.last = letter;
    return true;
}

std::vector<LowercaseRun> Runs() {
    std::vector<LowercaseRun> runs;
    for (char32_t letter = 0x80; letter <= 0x10FFFF; ++letter) {
        const char32_t lower = g_unichar_tolower(letter);
        if (lower == letter || (!runs.empty() && Extend(runs.back(), letter, lower))) continue;
        runs.push_back({letter, letter, 1, lower});
    }
    return runs;
}

void Write(std::ostream &out, const std::vector<LowercaseRun> &runs) {
    out << "// SPDX-License-Identifier: MIT\n// Made by generate_lowercase_runs with GLib "
        << glib_major_version << '.' << glib_minor_version
        << ".\n#include \"platform/val/lowercase_runs.hpp\"\n\n"
        << "namespace vellum {\n\nconst LowercaseRun kLowercaseRuns[] = {\n"
        << std::hex << std::showbase;
    for (const LowercaseRun &run : runs)
        out << "    {" << static_cast<uint32_t>(run.first) << ", " << static_cast<uint32_t>(run.last)
            << ", " << static_cast<uint32_t>(run.step) << ", " << static_cast<uint32_t>(run.lower_first)
            << "},\n";
    out << "};\nconst size_t kLowercaseRunCount = " << std::dec << runs.size()
        << ";\n\n} // namespace vellum\n";
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: generate_lowercase_runs OUTPUT\n");
        return EXIT_FAILURE;
    }
    std::ofstream out(arguments[1], std::ios::binary | std::ios::trunc);
    Write(out, Runs());
    out.close();
    if (out) return EXIT_SUCCESS;
    std::fprintf(stderr, "generate_lowercase_runs: cannot write %s\n", arguments[1]);
    std::remove(arguments[1]); // half a file would pass for a whole one
    return EXIT_FAILURE;
}
