// SPDX-License-Identifier: MIT
// Prints what the library knows of languages, for languages_oracle.py: a line "supported LANGUAGE" for each
// of the supported ones; then, for each line that is read, "GIVEN<tab>CANONICAL<tab>RANGES", where the
// ranges of the exemplar set are hexadecimal and separated by spaces.
#include "platform/locale/exemplars.hpp"
#include "platform/locale/locale_names.hpp"

#include <cinttypes>
#include <cstdio>
#include <iostream>
#include <string>

using namespace vellum;

namespace {

void PrintRanges(const ValCharacterSet *set) {
    uint32_t first = UINT32_MAX;
    uint32_t last = UINT32_MAX;
    const char *separator = "";
    while (ValCharacterSetNextRange(set, &first, &last)) {
        std::printf("%s%" PRIX32 "-%" PRIX32, separator, first, last);
        separator = " ";
    }
}

} // namespace

int main() {
    for (size_t i = 0; i < CountSupportedLanguages(); ++i)
        std::printf("supported %s\n", std::string(SupportedLanguageAt(i)).c_str());
    for (std::string given; std::getline(std::cin, given);) {
        const std::string canonical = CanonicalLanguageIdentifier(given);
        std::printf("%s\t%s\t", given.c_str(), canonical.c_str());
        PrintRanges(CreateExemplarSet(canonical).Get());
        std::printf("\n");
    }
}
