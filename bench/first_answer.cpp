// SPDX-License-Identifier: MIT
// A process that asks one question and ends: what start_benchmark starts, again and again. It is linked to
// neither library, so that loading one is part of what is measured.
//
//     first_answer vellum LIBRARY NAME       the font of that name, of those that all processes share
//     first_answer toolkit LIBRARY NAME      the same, where HarfBuzz, GLib and expat are loaded before
//     first_answer fontconfig LIBRARY NAME   the match for that family; the library is loaded before
//
// Prints the nanoseconds, and by how many kilobytes the memory grew: all that is resident, the code of
// libraries included, and what the process has written.
#include <vellum/vellum.h>

#include <dlfcn.h>
#include <fontconfig/fontconfig.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

struct Memory {
    long all = 0, own = 0; // kilobytes; own: written by the process

    static Memory Now() {
        std::ifstream file("/proc/self/smaps_rollup");
        Memory memory;
        for (std::string line; std::getline(file, line);) {
            long kilobytes = 0;
            if (std::sscanf(line.c_str(), "Rss: %ld", &kilobytes) == 1) memory.all = kilobytes;
            if (std::sscanf(line.c_str(), "Anonymous: %ld", &kilobytes) == 1) memory.own = kilobytes;
        }
        return memory;
    }
};

void *Load(const char *path) {
    void *library = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) std::fprintf(stderr, "%s\n", ::dlerror()), std::exit(1);
    return library;
}

template <class Function>
Function *Find(void *library, const char *name) {
    auto *function = reinterpret_cast<Function *>(::dlsym(library, name));
    if (!function) std::fprintf(stderr, "%s\n", ::dlerror()), std::exit(1);
    return function;
}

bool AskVellum(const char *path, const char *name) {
    void *library = Load(path);
    const auto create = Find<decltype(ValStringCreateWithCString)>(library, "ValStringCreateWithCString");
    const auto ask = Find<decltype(VLCopyFontWithName)>(library, "VLCopyFontWithName");
    return ask(create(name), kVLScopeUser, kVLActivationNotFromProviders | kVLActivationNotFromSearch);
}

bool AskFontconfig(void *library, const char *family) {
    const auto parse = Find<decltype(FcNameParse)>(library, "FcNameParse");
    const auto substitute = Find<decltype(FcConfigSubstitute)>(library, "FcConfigSubstitute");
    const auto complete = Find<decltype(FcDefaultSubstitute)>(library, "FcDefaultSubstitute");
    const auto match = Find<decltype(FcFontMatch)>(library, "FcFontMatch");
    if (!Find<decltype(FcInit)>(library, "FcInit")()) return false;
    FcPattern *pattern = parse(reinterpret_cast<const FcChar8 *>(family));
    substitute(nullptr, pattern, FcMatchPattern);
    complete(pattern);
    FcResult result = FcResultNoMatch;
    return match(nullptr, pattern, &result);
}

} // namespace

int main(int count, char **arguments) {
    if (count != 4) return 2;
    const bool is_vellum = std::strcmp(arguments[1], "fontconfig") != 0;
    void *loaded = is_vellum ? nullptr : Load(arguments[2]);
    if (std::strcmp(arguments[1], "toolkit") == 0)
        for (const char *library : {"libharfbuzz.so.0", "libglib-2.0.so.0", "libexpat.so.1"}) Load(library);
    Memory::Now(); // what looking needs is there when it counts
    const Memory before = Memory::Now();
    const auto start = std::chrono::steady_clock::now();
    const bool is_found =
        is_vellum ? AskVellum(arguments[2], arguments[3]) : AskFontconfig(loaded, arguments[3]);
    const std::chrono::nanoseconds time = std::chrono::steady_clock::now() - start;
    const Memory after = Memory::Now();
    std::printf("%lld %ld %ld\n", static_cast<long long>(time.count()), after.all - before.all,
                after.own - before.own);
    return is_found ? 0 : 1;
}
